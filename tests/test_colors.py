"""The report has colours on a terminal, unless NO_COLOR is set or the terminal has none."""

import re

import pexpect
from conftest import needs_terminal, table

CHECK = "wb-trial check --no-sandbox s.toml"
RED, GREEN, YELLOW = "31", "32", "33"
FAILED = {
    RED: ["-home", "1", "failed", "failed:", "perform_integration:"],
    GREEN: ["+home", "A", "The"],
    YELLOW: ["M"],
}
PASSED = {RED: ["-home"], GREEN: ["+home", "A", "The", "passed"], YELLOW: ["M"]}


@table(
    "command, setup, environment, colors",
    {
        "terminal": (CHECK, "exit 3", {}, FAILED),
        "good end": (CHECK, ":", {}, PASSED),
        "NO_COLOR": (CHECK, ":", {"NO_COLOR": "1"}, {}),
        "dumb": (CHECK, ":", {"TERM": "dumb"}, {}),
        "only standard error": (f"sh -c '{CHECK} >x; cat x'", ":", {}, {}),
    },
)
@needs_terminal
def test_colors(site, command, setup, environment, colors):
    site.lay(setup)
    own = site.environment | {"NO_COLOR": "", "TERM": "xterm"} | environment
    printed = pexpect.run(command, cwd=site.root, env=own).decode()
    assert "The workbench is as it was." in re.sub("\x1b[^m]*m", "", printed)
    found = set(re.findall(r"\x1b\[(3\d)m *([^ =\x1b]*)", printed))
    assert found == {(color, word) for color in colors for word in colors[color]}
