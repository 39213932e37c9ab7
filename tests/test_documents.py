"""What the program, its manual page, its completion and the documents say of each other."""

import re
import subprocess

from conftest import ROOT, keyed_table, needs_proc

DOCUMENTS = {str(path.relative_to(ROOT)): path for path in [*ROOT.glob("*.md"), *ROOT.glob("docs/*.md")]}
MANUAL = "docs/wb-trial.1"
COMPLETE = """\
. /usr/share/bash-completion/bash_completion; . packaging/wb-trial.bash
COMP_WORDS=("$@") COMP_CWORD=$(($# - 1)) COMP_LINE=$* COMP_POINT=${#COMP_LINE}
_wb_trial "$1" "${@: -1}" "${@: -2:1}" 2>/dev/null; printf '%s\\n' "${COMPREPLY[@]}"
"""


def printed_by(*command):
    return subprocess.run(command, cwd=ROOT, check=True, capture_output=True, text=True).stdout


def complete(site, *words):
    return set(printed_by("bash", "-c", COMPLETE, "-", f"{site.program}/wb-trial", *words).split())


def options_in(text):
    lines = re.findall("^ *(-[-,a-zA-Z].*?)(?:  |$)", text, re.M)
    return {option for line in lines for option in re.findall("--[a-z-]+(?: [A-Z=]+)?", line)}


@needs_proc
def test_options(site):
    options = options_in("".join(site.wb_trial(*words, "--help").text for words in ([], ["run"], ["check"])))
    assert options_in(re.sub(".\b", "", printed_by("mandoc", "-T", "utf8", MANUAL))) == options
    assert printed_by("mandoc", "-T", "lint", MANUAL) == ""
    names = {option.split()[0] for option in options}
    assert complete(site, "run", "--") | complete(site, "check", "--") == names
    for document in ("README.md", "docs/packaging.md"):
        lines = [line for line in DOCUMENTS[document].read_text().splitlines() if "cmake" not in line]
        assert set(re.findall("--[a-z][a-z-]+", "\n".join(lines))) <= names


@needs_proc
def test_commands_and_actions(site):
    commands = site.wb_trial("--help").text.split("Subcommands:")[1]
    assert complete(site, "") == set(re.findall("^  ([a-z]+) ", commands, re.M))
    [actions] = re.findall(r"ACTION .*?\{(.*?)\}", site.wb_trial("run", "--help").text)
    assert complete(site, "run", "a.toml", "") == set(actions.split(","))


@needs_proc
def test_variables(site):
    document = DOCUMENTS["docs/host.md"].read_text()
    variables = set(re.findall(r"^\| `(\w+)` \| (?:the installer|.*; the user) \|", document, re.M))
    assert {name.rstrip("=") for name in complete(site, "run", "--set", "")} == variables
    items = re.findall(r"^\.It Va (.*)", (ROOT / MANUAL).read_text(), re.M)
    assert set(" , ".join(items).split(" , ")) == variables


def test_version(site):
    assert f"\n## {site.wb_trial('--version').lines[0]}, " in DOCUMENTS["CHANGELOG.md"].read_text()


@keyed_table("name, document", DOCUMENTS)
def test_what_is_linked_to_is_there(name, document):
    for file, heading in re.findall(r"\]\(([^)# :]*)(?:#([^) ]*))?\)", document.read_text()):
        target = document.parent / file if file else document
        assert target.exists(), file
        headings = re.findall("^#+ (.*)", target.read_text(), re.M) if heading else []
        slugs = [re.sub(r"[^\w-]", "", title.lower().replace(" ", "-")) for title in headings]
        assert not heading or heading in slugs, f"{file}#{heading}"
