"""What the program, its manual page, its completion and the documents say of each other."""

import re
import subprocess

import pytest

from conftest import ROOT, keyed_table, needs_proc

DOCUMENTS = {str(path.relative_to(ROOT)): path for path in [*ROOT.glob("*.md"), *ROOT.glob("docs/*.md")]}
COMMANDS = ["check", "install", "uninstall", "run"]
COMPLETE = """\
. /usr/share/bash-completion/bash_completion; . packaging/wb-trial.bash
COMP_WORDS=("$@") COMP_CWORD=$(($# - 1)) COMP_LINE=$* COMP_POINT=${#COMP_LINE}
_wb_trial "$1" "${@: -1}" "${@: -2:1}" 2>/dev/null; printf '%s\\n' "${COMPREPLY[@]}"
"""


def printed_by(*command):
    return subprocess.run(command, cwd=ROOT, check=True, capture_output=True, text=True).stdout


@pytest.fixture
def complete(site):
    """Gives what bash completes the words by."""
    program = str(site.program / "wb-trial")
    return lambda *words: set(printed_by("bash", "-c", COMPLETE, "-", program, *words).split())


@pytest.fixture
def help_of(site):
    return lambda *command: site.wb_trial(*command, "--help").text


@pytest.fixture(scope="module")
def manual():
    return re.sub(".\b", "", printed_by("mandoc", "-T", "utf8", "docs/wb-trial.1"))


def options_in(text):
    """The options at the begin of a line, with their arguments."""
    lines = re.findall("^ *(-[-,a-zA-Z].*?)(?:  |$)", text, re.M)
    return {option for line in lines for option in re.findall("--[a-z-]+(?: [A-Z=]+)?", line)}


def test_manual_has_no_faults():
    assert printed_by("mandoc", "-T", "lint", "docs/wb-trial.1") == ""


@needs_proc
def test_options(help_of, complete, manual):
    options = options_in("".join(help_of(*command) for command in ([], ["run"], ["check"])))
    assert options_in(manual) == options
    names = {option.split()[0] for option in options}
    assert complete("run", "--") | complete("check", "--") == names
    for document in ("README.md", "docs/packaging.md"):
        lines = [line for line in DOCUMENTS[document].read_text().splitlines() if "cmake" not in line]
        assert set(re.findall("--[a-z][a-z-]+", "\n".join(lines))) <= names


def test_version(site):
    assert f"\n## {site.wb_trial('--version').lines[0]}, " in DOCUMENTS["CHANGELOG.md"].read_text()


@needs_proc
def test_commands_and_actions(help_of, complete):
    commands = help_of().split("Subcommands:")[1]
    assert complete("") == set(re.findall("^  ([a-z]+) ", commands, re.M))
    [actions] = re.findall(r"ACTION .*?\{(.*?)\}", help_of("run"))
    assert complete("run", "a.toml", "") == set(actions.split(","))


@needs_proc
def test_variables(complete):
    document = DOCUMENTS["docs/host.md"].read_text()
    variables = set(re.findall(r"^\| `(\w+)` \| (?:the installer|.*; the user) \|", document, re.M))
    assert {name.rstrip("=") for name in complete("run", "--set", "")} == variables
    items = re.findall(r"^\.It Va (.*)", (ROOT / "docs/wb-trial.1").read_text(), re.M)
    assert set(" , ".join(items).split(" , ")) == variables


@keyed_table("name, document", DOCUMENTS)
def test_what_is_linked_to_is_there(name, document):
    for file, heading in re.findall(r"\]\(([^)# :]*)(?:#([^) ]*))?\)", document.read_text()):
        target = document.parent / file if file else document
        assert target.exists(), file
        headings = re.findall("^#+ (.*)", target.read_text(), re.M) if heading else []
        slugs = [re.sub(r"[^\w-]", "", title.lower().replace(" ", "-")) for title in headings]
        assert not heading or heading in slugs, f"{file}#{heading}"
