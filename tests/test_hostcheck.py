"""hostcheck over a small host: what that breaks is said by the line of its promise, and no other."""

import os
import re
import subprocess
from pathlib import Path

import pytest

__test__ = "SMALL_HOST" in os.environ  # which ctest sets

SOURCE = Path(__file__).parent
# What the small host can do wrong: the operation whose promise that breaks, and a name.
BREAKS = re.findall(r'breaks\(\s*"(\w+: .*?)"\)', (SOURCE / "small_host.cpp").read_text())


def run(folder, broken="nothing", actions="init_wb_prefs", library="HOSTCHECK", **variables):
    """What the host says, calling the library's actions, and the lines of the report."""
    folder.mkdir(exist_ok=True)
    variables = {"TMPDIR": str(folder), "HOSTCHECK_REPORT": "report"} | variables
    command = [os.environ["SMALL_HOST"], os.environ[library], broken, *actions.split()]
    environment = os.environ | variables
    host = subprocess.run(command, cwd=folder, env=environment, text=True, capture_output=True)
    report = folder / "report"
    lines = report.read_text(errors="replace").splitlines() if report.exists() else []
    return host.stdout + host.stderr, lines


def promises(lines, verdict):
    return [line.partition(" - ")[2] for line in lines if line.startswith(verdict)]


def test_promises_are_those_of_the_document(tmp_path):
    said, lines = run(tmp_path)
    assert said == "init_wb_prefs returned 0\n"
    kept = promises(lines, "ok ")
    document = (SOURCE.parent / "docs/host.md").read_text()
    documented = re.findall("^- `(.*)`(: .*)", document, re.M)
    assert kept == [operation + promise for operation, promise in documented]
    assert '# 3 components, 2 to install, 1 with "workbench", 3 paths' in lines
    log = (tmp_path / "log").read_text(errors="replace")
    assert log.replace("hostcheck: ", "").splitlines() == lines
    assert not list(tmp_path.glob("hostcheck-*"))


def test_each_broken_promise_is_noticed(tmp_path):
    noticed = set()
    for broken in BREAKS:
        said, lines = run(tmp_path / broken, broken)
        assert said.startswith("init_wb_prefs returned 1\n")
        found = promises(lines, "not ok ")
        assert len(found) == 1 and found[0].startswith(broken.partition(":")[0]), (broken, found)
        noticed.update(found)
    assert noticed == {*promises(lines, "ok "), *found}


SAID = {
    "env_get_string: reads more": '  # expected "" (size 0), found "no?ne" (size 5)',
    "throws a number": "  # something came out that is no std::exception",
    "folder_create: gives an old one no mode": "  # made 0755, found 0700: /",
    "leaks descriptors": "# /.* stays: Too many open files",
    "asks for a first word": ".*provider.* # SKIP no component to be installed lists a file",
}


@pytest.mark.parametrize("broken, line", SAID.items())
def test_the_report_says(tmp_path, broken, line):
    pattern = line if "*" in line else re.escape(line)
    assert len([found for found in run(tmp_path, broken)[1] if re.match(pattern, found)]) == 1


def test_a_crash_is_named_by_the_last_line(tmp_path):
    said, lines = run(tmp_path, "crashes with a format")
    assert "returned" not in said  # a sanitizer has its own words
    assert lines[-1] == "# calling print_log"
    assert len(list(tmp_path.glob("hostcheck-*"))) == 1


def test_it_tries_once_and_says_where_it_cannot(tmp_path):
    said, lines = run(tmp_path, actions="find_wb_components perform_deintegration")
    assert said.count("returned 0") == 2 and lines.count("TAP version 13") == 1
    said, _ = run(tmp_path, HOSTCHECK_REPORT="absent/report")
    assert "\n# HOSTCHECK_REPORT cannot be written: absent/report\n" in said
    said, lines = run(tmp_path, TMPDIR="/absent")
    assert "returned 1" in said and lines[-1].startswith("Bail out! ")


def test_an_empty_variable_is_no_workbench(tmp_path):
    said, _ = run(tmp_path, "path: makes . of an empty path", "perform_integration", "PLUGIN")
    assert said == "perform_integration returned -1\n"
    refusal = "workbench_int: workbench path: . does not exist or not a directory"
    assert (tmp_path / "log").read_text().splitlines()[-1] == refusal
    assert [entry.name for entry in tmp_path.iterdir()] == ["log"]
