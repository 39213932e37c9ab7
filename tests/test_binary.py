"""Whether the library is one for programs that are ten years old, and for those that run as root."""

import json
import os
import re
import shutil
import subprocess
from pathlib import Path

import pytest

__test__ = "LIBRARY" in os.environ  # which ctest sets
SOURCE = Path(__file__).parent.parent
LIBRARY = Path(os.environ.get("LIBRARY", ""))
BUILD = LIBRARY.parent


def run(command, *arguments, **options):
    """The command's output; NM, OBJDUMP and CMAKE name those that are not the usual ones."""
    line = [os.environ.get(command.upper(), command), *arguments]
    return subprocess.run(line, check=True, stdout=subprocess.PIPE, text=True, **options).stdout


def names(kind, file=LIBRARY):
    """Of defined symbols, T, or undefined ones, U; the runtimes' names carry a version."""
    symbols = [line.split()[-2:] for line in run("nm", "-D", file).splitlines()]
    return {name for found, name in symbols if found == kind and "@" not in name}


def readable(symbols):
    text = run("c++filt", input="\n".join(symbols)).replace("[abi:cxx11]", "")
    text = re.sub(r"std::(__cxx11::)?basic_string<char, [^()]*?<char> >", "std::string", text)
    return sorted(set(text.split("\n")) - {""})


def test_names_and_version():
    assert readable(names("T")) == (SOURCE / "workbench-int.exports").read_text().splitlines()
    imports = (SOURCE / "workbench-int.imports").read_text().splitlines()
    assert readable(names("U")) == readable(names("U", BUILD / "hostcheck" / LIBRARY.name)) == imports
    version = re.search(r"^project.* VERSION (\S+)", (SOURCE / "CMakeLists.txt").read_text(), re.M)
    assert f"\0workbench-int {version[1]}\0".encode() in LIBRARY.read_bytes()


def test_runtimes():
    elf, symbols = run("readelf", "-hdW", LIBRARY), run("nm", "-D", LIBRARY)
    assert "soname: [libworkbench-int.so.1n]" in elf
    runtimes = {"libstdc++.so.6", "libgcc_s.so.1", "libc.so.6", "ld-linux-aarch64.so.1"}
    assert set(re.findall(r"NEEDED.*\[(.*)\]", elf)) <= runtimes
    oldest = {"GLIBC": [2, 17] if "AArch64" in elf else [2, 14], "GLIBCXX": [3, 4, 21]}
    for runtime, version in re.findall(r"@(GLIBC|GLIBCXX)_([0-9.]+)", symbols):
        # The older string type brings newer runtime names with it.
        assert "cxx11" not in symbols or list(map(int, version.split("."))) <= oldest[runtime]


def test_hardening():
    elf = run("readelf", "-hdlrW", LIBRARY)
    assert "GNU_RELRO" in elf and not re.search(r"BIND_NOW|FLAGS.*\bNOW\b", elf)
    assert re.search("GNU_STACK.* RW ", elf)
    assert "__stack_chk_fail" in run("nm", "-D", LIBRARY)
    # Its own functions are called directly, and each exported one is a landing of indirect calls.
    assert not names("T") & set(re.findall(r"(?:JUMP_SLO|GLOB_DAT)\S* +\S+ (\S+)", elf))
    landing = "(?:bti|paciasp)" if "AArch64" in elf else "endbr64"
    code = run("objdump", "-d", "--no-show-raw-insn", LIBRARY)
    assert names("T") <= set(re.findall(rf"<(\S+)>:\n.*\t{landing}\b", code))
    # The binary does not show these.
    for entry in json.loads((BUILD / "compile_commands.json").read_text()):
        options = set(entry["command"].split())
        is_program = re.search("/(installer|sandbox|trial)/", entry["file"])
        if "-Dworkbench_int_EXPORTS" in options or is_program:
            assert {"-D_FORTIFY_SOURCE=2", "-fstack-clash-protection"} <= options


def test_program_exports_the_hosts_operations_alone():
    program = BUILD / "wb-trial"
    if not program.exists():
        pytest.skip("is built with this machine's own headers and architecture")
    assert readable(names("T", program)) == (SOURCE / "workbench-int.imports").read_text().splitlines()
    elf = run("readelf", "-dlW", program)
    assert "GNU_RELRO" in elf and re.search(r"FLAGS_1.* NOW PIE", elf) and re.search("GNU_STACK.* RW ", elf)
    assert "__stack_chk_fail" in run("nm", "-D", program)


def test_two_builds_are_the_same_bytes(tmp_path):
    if "GENERATOR" not in os.environ:
        pytest.skip("is tried with this machine's own headers and architecture")
    copy = tmp_path / "a longer [and odd] name that's elsewhere"
    for folder in ["host", "hostcheck", "actions", "workbench"]:
        shutil.copytree(SOURCE / folder, copy / folder)
    for file in ["CMakeLists.txt", "workbench-int.map"]:
        shutil.copy(SOURCE / file, copy)
    options = ["CMAKE_BUILD_TYPE=Release", "BUILD_TESTING=OFF", "WORKBENCH_INT_BUILD_TRIAL=OFF"]
    configure = ["-S", copy, "-B", copy / "build", "-G", os.environ["GENERATOR"]]
    run("cmake", *configure, *["-D" + option for option in options])
    run("cmake", "--build", copy / "build", "--target", "workbench-int")
    assert (copy / "build" / LIBRARY.name).read_bytes() == LIBRARY.read_bytes()
