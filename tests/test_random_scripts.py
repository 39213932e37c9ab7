"""Random scripts, the same ones every time, or new ones for FUZZ_SECONDS: a check says what a comparison says."""

import os
import subprocess
import time

from conftest import IS_ROOT

from hypothesis import given, settings
from hypothesis import strategies as st

SECONDS = float(os.environ.get("FUZZ_SECONDS", 0))
COMMANDS = [
    "echo 1 >{0}",
    "echo 2 >>{0}",
    "rm -rf {0}",
    "mkdir {0}",
    "mv {0} {1}",
    "cp -p {0} {1}",
    "chmod {mode} {0}",
    "ln -s {0} {1}",
    "ln {0} {1}",
    "setfattr -n user.a -v {mode} {0}",
    "setfattr -x user.a {0}",
]
NAMES = st.sampled_from(["file", "file2", "dir", "dir/file", "dir/other", "."])
MODES = st.sampled_from(["0", "500", "644", "755", "4711"])
STEPS = st.lists(st.builds(str.format, st.sampled_from(COMMANDS), NAMES, NAMES, mode=MODES), max_size=6)


TAR = "tar c --sort=name --mtime=@0 --hard-dereference --xattrs --acls".split()
TAR += ["--pax-option=exthdr.name=%d/PaxHeaders/%f,delete=atime,delete=ctime"]


def facts(folder):
    """All that can be known of what is in it, but for times."""
    as_root = [] if IS_ROOT else ["unshare", "-r"]
    return subprocess.check_output([*as_root, *TAR, "-C", folder, "."])


def in_workbench(report):
    return [change for change in report.changes if "./workbench" in change]


def test_random_scripts(site, sandbox):
    @settings(max_examples=25, derandomize=not SECONDS, deadline=None, database=None)
    @given(STEPS, STEPS, st.booleans())
    def agree(setup, uninstall, restores):
        """An uninstall that restores everything begins with all that was there."""
        site.shell("chmod -R u+rwX .")
        keep, restore = ["cp -a . ~/kept"], ["rm -rf *", "cp -a ~/kept/. ."]
        if restores:
            setup, uninstall = keep + setup, restore + uninstall
        site.lay("\n".join([*setup, ":"]), "\n".join([*uninstall, ":"]))
        inside = sandbox(site)
        site.give_to(sandbox.user)
        before = facts(site.workbench)
        real = site.wb_trial("check", "--no-sandbox", "s.toml", user=sandbox.user)
        expected = "as it was" if facts(site.workbench) == before else "changed"
        assert (inside.verdict, real.verdict) == (expected, expected), real.text
        if sandbox.user == 0:  # an ordinary user may not read everything on the real disk
            assert in_workbench(inside) == in_workbench(real)

    end = time.monotonic() + SECONDS / 2  # for each of two users
    agree()
    while time.monotonic() < end:
        agree()
