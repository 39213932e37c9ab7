"""The report has colours on a terminal, unless NO_COLOR is set or the terminal has none."""

import re

import pexpect
from conftest import needs_terminal, table

CHECK = "wb-trial check --no-sandbox s.toml"
COLORS = {
    "terminal": (CHECK, {}, "1 failed failed: perform_integration: -home", "+home A The", "M"),
    "NO_COLOR": (CHECK, {"NO_COLOR": "1"}, "", "", ""),
    "dumb": (CHECK, {"TERM": "dumb"}, "", "", ""),
    "only standard error": (f"sh -c '{CHECK} >x; cat x'", {}, "", "", ""),
}


@table("command, environment, red, green, yellow", COLORS)
@needs_terminal
def test_colors(site, command, environment, red, green, yellow):
    site.lay("exit 3")
    own = site.environment | {"NO_COLOR": "", "TERM": "xterm"} | environment
    printed = pexpect.run(command, cwd=site.root, env=own).decode()
    assert "The workbench is as it was." in re.sub("\x1b[^m]*m", "", printed)
    colored = [set(re.findall(rf"\x1b\[{color}m *([^ =\x1b]*)", printed)) for color in (31, 32, 33)]
    assert colored == [set(words.split()) for words in (red, green, yellow)]
