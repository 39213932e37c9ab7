"""Whether the library is one for programs that are ten years old, and for those that run as root."""

import json
import os
import re
import shutil
import subprocess
from pathlib import Path

import pytest

pytestmark = pytest.mark.skipif("LIBRARY" not in os.environ, reason="is run by ctest")
SOURCE = Path(__file__).parent.parent


def run(*command, **options):
    """The output of the command; NM and OBJDUMP name the tools for another architecture."""
    command = (os.environ.get(command[0].upper(), command[0]), *command[1:])
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True, **options).stdout


def readable(names):
    """The names as source code has them, whichever string type the library was built with."""
    text = run("c++filt", input="\n".join(names)).replace("[abi:cxx11]", "")
    text = re.sub(r"std::(__cxx11::)?basic_string<char, [^()]*?<char> >", "std::string", text)
    return sorted(set(text.split("\n")) - {""})


@pytest.fixture
def library():
    return os.environ["LIBRARY"]


@pytest.fixture
def symbols(library):
    return [line.split()[-2:] for line in run("nm", "-D", library).splitlines()]


@pytest.fixture
def exported(symbols):
    return {name for kind, name in symbols if kind == "T"}


@pytest.fixture
def elf(library):
    return run("readelf", "-hdlrW", library)


def test_names(symbols, exported):
    assert readable(exported) == (SOURCE / "workbench-int.exports").read_text().splitlines()
    # The runtimes' names carry a version; weak ones may stay unresolved.
    imported = [name for kind, name in symbols if kind == "U" and "@" not in name]
    assert readable(imported) == (SOURCE / "workbench-int.imports").read_text().splitlines()


def test_version(library):
    version = re.search(
        r"VERSION (\S+)", (SOURCE / "CMakeLists.txt").read_text().partition("project(")[2]
    )
    assert f"\0workbench-int {version[1]}\0".encode() in Path(library).read_bytes()


def test_runtimes(symbols, elf):
    assert "soname: [libworkbench-int.so.1n]" in elf
    runtimes = {"libstdc++.so.6", "libgcc_s.so.1", "libc.so.6", "ld-linux-aarch64.so.1"}
    assert set(re.findall(r"NEEDED.*\[(.*)\]", elf)) <= runtimes
    text = str(symbols)
    if "cxx11" not in text:
        return  # the older string type brings newer runtime names with it
    oldest = {"GLIBC": [2, 17] if "AArch64" in elf else [2, 14], "GLIBCXX": [3, 4, 21]}
    for runtime, version in re.findall(r"@(GLIBC|GLIBCXX)_([0-9.]+)", text):
        assert [int(part) for part in version.split(".")] <= oldest[runtime], (runtime, version)


def test_hardening(library, symbols, exported, elf):
    assert "__stack_chk_fail" in str(symbols)
    assert "GNU_RELRO" in elf and not re.search(r"BIND_NOW|FLAGS.*\bNOW\b", elf)
    assert re.search("GNU_STACK.* RW ", elf)
    # Its own functions are called directly, and each exported one is a landing of indirect calls.
    assert not exported & set(re.findall(r"(?:JUMP_SLO|GLOB_DAT)\S* +\S+ (\S+)", elf))
    landing = "(?:bti|paciasp)" if "AArch64" in elf else "endbr64"
    code = run("objdump", "-d", "--no-show-raw-insn", library)
    assert exported <= set(re.findall(rf"<(\S+)>:\n.*\t{landing}\b", code))
    # The binary does not show these.
    for command in json.loads(Path(os.environ["BUILD"], "compile_commands.json").read_text()):
        if "workbench_int_EXPORTS" in command["command"]:
            assert " -D_FORTIFY_SOURCE=2 " in command["command"]
            assert " -fstack-clash-protection " in command["command"]


def test_two_builds_are_the_same_bytes(library, tmp_path):
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
    assert (copy / "build" / Path(library).name).read_bytes() == Path(library).read_bytes()
