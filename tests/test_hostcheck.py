"""hostcheck over a small host: what that breaks is said by the line of its promise, and no other."""

import os
import re
import subprocess
from pathlib import Path

import pytest

__test__ = "SMALL_HOST" in os.environ  # which ctest sets

# What the small host breaks, and how the line of the promise begins.
BREAKS = {
    "reads what is not held": "env_get_string: a variable",
    "reads one blank for two": "env_get_string: a value",
    "keeps characters by address": "env_set_string: each value is copied, given as characters",
    "loses strings": "env_set_string: each value is copied, given as a string",
    "forgets other variables": "env_set_string: another",
    "opens no first log": "log_init: lines go to the file",
    "opens no open log": "log_init: lines go to a log",
    "empties the log": "log_init: what",
    "opens no nameless log": "log_init: an empty",
    "ends no line": "print_log: one call",
    "ends lines twice": "print_log: one call",
    "logs a value as a format": "print_log: a value is no",
    "cuts a line": "print_log: a value is written",
    "resolves .. without looking": "path: its form",
    "makes paths absolute": "path: a relative",
    "makes . of an empty path": "path: a relative",
    "is_dir looks at links": "is_dir: ",
    "is_file looks at links": "is_file: ",
    "finds all writable": "is_writable: ",
    "gives a parent no mode": "folder_create: it",
    "gives an old folder no mode": "folder_create: one",
    "empties folders": "folder_create: one",
    "copies no hidden files": "dir_copy: all",
    "copies no links": "dir_copy: all",
    "copies no modes": "dir_copy: the modes",
    "empties the destination": "dir_copy: other",
    "moves": "dir_copy: other",
    "copies no absent source": "dir_copy: it",
    "stores a raw status": "get_command_output: the number",
    "stores -1 for failures": "get_command_output: a number",
    "loses errors": "get_command_output: the output",
    "cuts an output": "get_command_output: 8 MiB",
    "joins blanks": "get_command_output: a shell",
    "cuts a command": "get_command_output: a command",
    "hands on its input": "get_command_output: nothing",
    "waits for the output only": "get_command_output: it",
    "keeps an old value": "IniDb: a key that is there",
    "adds no key": "IniDb: a key that is not",
    "takes homes for home": "IniDb: other",
    "cuts a value": "IniDb: a long",
    "lists other components": "components: ",
    "spoils a name": "installCondition: ",
    "begins no sub-directory with a slash": "subdir: ",
    "lists more files each time": "provider",
    "lists control characters": "provider",
}


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


def test_promises_are_those_of_the_document_and_each_is_broken(tmp_path):
    said, lines = run(tmp_path)
    assert said == "init_wb_prefs returned 0\n"
    kept = promises(lines, "ok ")
    document = (Path(__file__).parent.parent / "docs/host.md").read_text()
    documented = re.findall("^- `(.*)`(: .*)", document, re.M)
    assert kept == [operation + promise for operation, promise in documented]
    assert not [line for line in kept if not line.startswith(tuple(BREAKS.values()))]
    assert '# 3 components, 2 to install, 1 with "workbench", 3 paths' in lines
    log = (tmp_path / "log").read_text(errors="replace")
    assert log.replace("hostcheck: ", "").splitlines() == lines
    assert not list(tmp_path.glob("hostcheck-*"))


@pytest.mark.parametrize("broken", BREAKS)
def test_a_broken_promise_is_noticed(tmp_path, broken):
    said, lines = run(tmp_path, broken)
    assert said.startswith("init_wb_prefs returned 1\n")
    (noticed,) = promises(lines, "not ok ")
    assert noticed.startswith(BREAKS[broken])


@pytest.mark.parametrize(
    "broken, line",
    [
        ("reads what is not held", '  # expected "" (size 0), found "no?ne" (size 5)'),
        ("throws a number", "  # something came out that is no std::exception"),
        ("gives an old folder no mode", "  # made 0755, found 0700: /"),
        ("leaks descriptors", "# /.* stays: Too many open files"),
        ("has no components", ".*provider.* # SKIP no component to be installed lists a file"),
        ("asks for a first word", ".*provider.* # SKIP no component to be installed lists a file"),
    ],
)
def test_the_report_says(tmp_path, broken, line):
    pattern = line if "*" in line else re.escape(line)
    assert len([found for found in run(tmp_path, broken)[1] if re.match(pattern, found)]) == 1


@pytest.mark.parametrize(
    "broken, operation",
    [
        ("crashes with a format", "print_log"),
        ("has a tenth operation", "provider, query, fileList"),
    ],
)
def test_a_crash_is_named_by_the_last_line(tmp_path, broken, operation):
    said, lines = run(tmp_path, broken)
    assert "returned" not in said  # a sanitizer has its own words
    assert lines[-1] == "# calling " + operation
    assert len(list(tmp_path.glob("hostcheck-*"))) == 1


def test_it_tries_once_and_says_where_it_cannot(tmp_path):
    said, lines = run(tmp_path, actions="find_wb_components perform_deintegration")
    assert said.count("returned 0") == 2 and lines.count("TAP version 13") == 1
    said, _ = run(tmp_path, HOSTCHECK_REPORT="absent/report")
    assert "\n# HOSTCHECK_REPORT cannot be written: absent/report\n" in said
    said, lines = run(tmp_path, TMPDIR="/absent")
    assert "returned 1" in said and lines[-1].startswith("Bail out! ")


def test_an_empty_variable_is_no_workbench(tmp_path):
    said, _ = run(tmp_path, "makes . of an empty path", "perform_integration", "PLUGIN")
    assert said == "perform_integration returned -1\n"
    refusal = "workbench_int: workbench path: . does not exist or not a directory"
    assert (tmp_path / "log").read_text().splitlines()[-1] == refusal
    assert [entry.name for entry in tmp_path.iterdir()] == ["log"]
