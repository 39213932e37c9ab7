"""The report has colours on a terminal, unless NO_COLOR is set."""

import re

import pexpect
import pytest

CHECK = "wb-trial check --no-sandbox s.toml"


def on_terminal(site, command, **environment):
    """What the command prints on a terminal."""
    own = {name: site.environment[name] for name in site.environment if name != "NO_COLOR"}
    own["TERM"] = "xterm"
    return pexpect.run(command, cwd=site.root, env=own | environment).decode()


def test_colors(site):
    site.lay("exit 3")
    printed = on_terminal(site, f"{CHECK} --set WB_PREFS=.ini").replace("\x1b[0m", "")
    assert re.findall(r"\x1b\[(\d+)m *([^ =\r]*)", printed) == [
        ("33", "warning:"),
        ("31", "failed:"),
        ("32", "A"),
        ("32", "A"),
        ("32", "The"),
        ("33", "1"),
        ("33", "no"),
        ("31", "1"),
        ("31", "perform_integration:"),
        ("31", "failed"),
    ]
    site.lay()
    printed = on_terminal(site, CHECK).replace("\x1b[0m", "")
    found = [("33", "M"), ("31", "-home"), ("32", "+home"), ("32", "A"), ("32", "A"), ("32", "The")]
    assert re.findall(r"\x1b\[(\d+)m *([^ =\r]*)", printed) == [*found, ("32", "passed")]


@pytest.mark.parametrize(
    "command, environment",
    [(CHECK, {"NO_COLOR": "1"}), (CHECK, {"TERM": "dumb"}), (f"sh -c '{CHECK} >x; cat x'", {})],
)
def test_no_colors(site, command, environment):
    """Where they are refused, or only standard error is a terminal."""
    printed = on_terminal(site, command, **environment)
    assert "The workbench is as it was." in printed
    assert "\x1b" not in printed
