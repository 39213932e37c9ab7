"""What all tests share. WB_TRIAL_DIR names the build folder whose program is tried."""

import functools
import os
import re
import shutil
import subprocess
import tempfile
from pathlib import Path

import pytest

ROOT = Path(__file__).parent.parent
BUILD = Path(os.environ.get("WB_TRIAL_DIR", ROOT / "build/gcc")).resolve()
IS_ROOT = os.geteuid() == 0
ORDINARY_USER = 4711 if IS_ROOT else os.geteuid()
NO_RIGHTS = ["setpriv", "--bounding-set=-dac_override,-dac_read_search"] if IS_ROOT else []

SESSION = """\
component = [
    { name = "off-workbench", install_condition = false },
    { name = "workbench-part", subdir = "/suite/part", files = ['share\\wr-qev-1.0a\\readme.txt'], files_from = "${SESSION_DIR}/product/suite" }]
[variables]
log_file = "${SESSION_DIR}/log"
DEFAULT_SEARCH_PATH = "/absent ${SESSION_DIR}/workbench"
SUPPORTED_VERSION = "3.1;"
VORN_INSTALL_DIR = "${SESSION_DIR}/product"
VORN_INSTALL_SUBDIR = "/suite"
WB_INSTALL_SUBDIR = "/suite/part"
WORKBENCH_SCRIPT_NAME = "setup"
WB_PREFS = ".prefs"
WB_PREFS_INST_DIR = "home"
"""


def table(names, rows):
    """A test for each row. Its key says what it is, and is the test's name."""
    return pytest.mark.parametrize(names, rows.values(), ids=rows)


def keyed_table(names, rows):
    """A test for each row. Its key is the first argument, and the test's name."""
    return pytest.mark.parametrize(names, rows.items(), ids=rows)


def says(sentences, expected):
    """Fails unless each sentence holds its line of what is expected, " ... " being any text."""
    lines = expected.splitlines()
    assert len(sentences) == len(lines), sentences
    for sentence, line in zip(sentences, lines):
        assert re.search(".*".join(map(re.escape, line.split(" ... "))), sentence), sentence


@functools.cache
def can(*command):
    return subprocess.run(command, capture_output=True).returncode == 0


def as_user(user):
    """The words before a command that have another user run it."""
    if user == os.geteuid():
        return []
    return ["setpriv", f"--reuid={user}", f"--regid={user}", "--clear-groups"]


def sh(line):
    """The words before a command that have a shell run it: "$@" in the line."""
    return ["sh", "-c", line, "-"]


def first(command):
    """The words before a command that have a shell run another one first."""
    return sh(f'set -e; {command}\nexec "$@"')


# A mount of the machine below one of these directories would change what a sandbox can cover.
FRESH = ["unshare", "-m"]
FRESH += first("for d in /tmp /var/tmp /dev/shm; do mount -t tmpfs -o mode=1777 x $d; done")
HAS_NAMESPACES = can("unshare", "-m", "true") if IS_ROOT else can("unshare", "-Urm", "true")
HAS_PROC = Path("/proc/self").exists()
needs_proc = pytest.mark.skipif(not HAS_PROC, reason="there is no /proc here")
needs_strace = pytest.mark.skipif(not can("strace", "true"), reason="strace cannot be used here")
needs_terminal = pytest.mark.skipif(not can("script", "-qec", "true", "/dev/null"), reason="no terminal here")


class Report:
    """What one run of wb-trial printed, on both streams, with "." for the site."""

    def __init__(self, status, text):
        self.status = status
        self.text = text
        self.lines = text.splitlines()
        self.warnings = self._said("warning")
        self.notes = self._said("note")
        self.failures = self._listed(r"\d+ failures?:")
        self.refusal = "".join(re.findall(r"^wb-trial: (.*)", text, re.M)[:1]) if status == 2 else ""
        assert "\npassed" not in text or (status == 0 and not self.failures), text
        assert "\nfailed\n" not in text or status == 1, text

    def _said(self, word):
        return re.findall(rf"^ *{word}: (.*)", self.text, re.M)

    def _listed(self, title):
        """The lines that are indented by two blanks below the title."""
        found = re.search(rf"^{title}\n((?:  .*\n)*)", self.text, re.M)
        return re.findall(r"^  (\S.*)", found[1], re.M) if found else []

    @property
    def verdict(self):
        if self.status not in (0, 1):
            return "none"
        if any("leaves the workbench changed" in failure for failure in self.failures):
            return "changed"
        return "as it was" if "The workbench is as it was." in self.lines else "none"

    @property
    def changes(self):
        """What the uninstall left; of a run that does not uninstall, what was changed."""
        return self._listed(("left" if "\nleft by " in self.text else "changed") + " by the [a-z]+:")

    @property
    def output(self):
        """What the scripts printed."""
        said = re.findall(r"^  runs: .*\n((?:    .*\n)*)", self.text, re.M)
        return [line[4:] for line in "".join(said).splitlines()]


class Site:
    """A workbench, an installed product and a session about them, in a folder of their own."""

    def __init__(self, root, program):
        self.root = root
        self.program = program
        self.workbench = root / "workbench"
        self.product = root / "product"
        self.config = root / "product/suite/part/wr-qev-1.0a"
        self.setup = self.config / "wr-setup/setup.sh"
        self.uninstall = self.config / "wr-setup/uninst_wr_qev.sh"
        self.prefs = self.config / "a.prefs"
        self.script = root / "product/suite/vorn/wb_deintegrate.sh"
        self.copy = root / "workbench/wr-qev-1.0a"
        self.session = root / "s.toml"
        self.log = root / "log"
        self.home = root / "home"
        self.temporary = root / "tmp"
        self.environment = os.environ | {
            "PATH": f"{program}:{os.environ['PATH']}",
            "HOME": str(self.home),
            "TMPDIR": str(self.temporary),
            "LC_ALL": "C.UTF-8",
        }
        for name in "program workbench product config setup uninstall prefs script copy".split():
            self.environment[name] = str(getattr(self, name))
        self.lay()

    def lay(self, setup='echo "setup, arguments: $# $1"', uninstall="echo uninstall"):
        """Lays everything out anew. The two scripts work in the workbench."""
        self.shell("rm -rf ./*; mkdir -p workbench/dir ${script%/*} ${setup%/*} home tmp")
        self.shell(
            "touch workbench/dir/file workbench/dir/other; echo name=3.1 >workbench/install.properties"
        )
        self.prefs.write_text("a=1\nhome=\nb=2")
        self.session.write_text(SESSION)
        self.write_script(self.setup, setup)
        self.write_script(self.uninstall, uninstall)

    @staticmethod
    def write_script(file, text):
        file.write_text(f'#!/bin/sh\ncd "${{0%/*}}/../.."\n{text}\n')
        file.chmod(0o755)

    def edit(self, old, new):
        """Replaces a text in the session file."""
        text = self.session.read_text()
        assert old in text
        self.session.write_text(text.replace(old, new))

    def shell(self, command):
        """Runs a line of shell in the site. $workbench, $product and so on are its files."""
        subprocess.run(["sh", "-ec", command], cwd=self.root, env=self.environment, check=True)

    def give_to(self, user):
        if IS_ROOT:
            subprocess.run(["chown", "-hR", f"{user}:{user}", self.root], check=True)

    def start(self, *arguments, user=os.geteuid(), within=(), variables={}, environment={}):
        """Starts wb-trial in the site. `within` are the words before its own, `variables` are set."""
        settings = [word for name in variables for word in ("--set", f"{name}={variables[name]}")]
        in_sandbox = "--preview" in arguments or ("check" in arguments and "--no-sandbox" not in arguments)
        fresh = FRESH if in_sandbox and IS_ROOT and HAS_NAMESPACES else []
        # The check for leaks cannot look into a process that has entered a namespace or is traced.
        own = {"ASAN_OPTIONS": "detect_leaks=0"} if in_sandbox or within else {}
        return subprocess.Popen(
            [*fresh, *as_user(user), *within, "wb-trial", *arguments, *settings],
            cwd=self.root,
            env=self.environment | own | environment,
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
            process_group=0,  # a script that kills its group does not end the tests
        )

    def wb_trial(self, *arguments, **how):
        """The Report of a run of wb-trial in the site."""
        process = self.start(*arguments, **how)
        try:
            text = process.communicate(timeout=100)[0].decode(errors="surrogateescape")
        finally:
            process.kill()
        return Report(process.returncode, text.replace(str(self.root), "."))

    def run(self, *actions, **how):
        return self.wb_trial("run", "s.toml", *actions, **how)

    def install(self, *options, **how):
        """Installs into the workbench that the user chose."""
        setting = f"WB_INTEGRATION_PATH={self.workbench}"
        return self.wb_trial("install", "s.toml", "--set", setting, *options, **how)

    def integrate(self, workbench=None, **how):
        """Integrates without a detection."""
        setting = f"WB_INTEGRATION_PATH={workbench or self.workbench}"
        return self.run("perform_integration", "--set", setting, **how)

    def tree(self):
        """All that is in the site: what a sandbox must not change."""
        listed = ["find", ".", "-printf", r"%P %i %M %U:%G %s %C@ %l\n"]
        return subprocess.run(listed, cwd=self.root, capture_output=True).stdout


class Way:
    """One of the ways to check: by whom, and in a sandbox or on the real disk."""

    def __init__(self, user, options=()):
        self.user = user
        self.options = options
        self.in_sandbox = not options

    def __call__(self, site, *command, **how):
        """The Report. Without a change of the disk, where nothing was run or in a sandbox. No copies may be left."""
        site.give_to(self.user)
        before = site.tree()
        temporary = list(site.temporary.iterdir())
        report = site.wb_trial(*(command or ["check"]), "s.toml", *self.options, user=self.user, **how)
        if self.in_sandbox or report.refusal:
            assert site.tree() == before
        assert list(site.temporary.iterdir()) == temporary
        site.give_to(os.geteuid())
        return report


WAYS = {
    "sandbox-root": Way(0),
    "sandbox-user": Way(ORDINARY_USER),
    "no-sandbox": Way(os.geteuid(), ["--no-sandbox"]),
}


def way_or_skip(name):
    way = WAYS[name]
    if way.user == 0 and not IS_ROOT:
        pytest.skip("only root can try this")
    if not HAS_PROC:
        pytest.skip("there is no /proc here")
    if way.in_sandbox and not can(*as_user(way.user), "unshare", *(["-U"] if way.user else []), "-m", "true"):
        pytest.skip("no namespaces can be made here")
    return way


@pytest.fixture(params=WAYS)
def way(request):
    return way_or_skip(request.param)


@pytest.fixture(params=["sandbox-root", "sandbox-user"])
def sandbox(request):
    return way_or_skip(request.param)


@pytest.fixture
def root_sandbox():
    return way_or_skip("sandbox-root")


@pytest.fixture(scope="session")
def base():
    """A folder that everybody can enter, whatever folder the project lies in."""
    folder = Path(tempfile.mkdtemp(prefix="wb-trial-tests-", dir="/opt" if IS_ROOT else "/tmp"))
    folder.chmod(0o755)
    yield folder
    subprocess.run(["chmod", "-R", "u+rwX", folder])
    shutil.rmtree(folder)


@pytest.fixture(scope="session")
def program(base):
    """A copy of the program and its libraries that everybody can run."""
    for name in ("wb-trial", "libworkbench-int.so.1n", "hostcheck/libworkbench-int.so.1n"):
        (base / "program" / name).parent.mkdir(exist_ok=True)
        shutil.copyfile(BUILD / name, base / "program" / name)
        (base / "program" / name).chmod(0o755)
    return base / "program"


@pytest.fixture
def site(base, program):
    root = Path(tempfile.mkdtemp(prefix="site-", dir=base))
    root.chmod(0o755)
    return Site(root, program)


def pytest_configure():
    os.umask(0o022)


def pytest_terminal_summary(terminalreporter):
    """Adds what was skipped, and why, to the list with which ./dev ends."""
    if "SKIPPED_TESTS" in os.environ and "PYTEST_XDIST_WORKER" not in os.environ:
        with open(os.environ["SKIPPED_TESTS"], "a") as skipped:
            for report in terminalreporter.stats.get("skipped", []):
                skipped.write(f"{report.nodeid.partition('[')[0]}: {report.longrepr[2]}\n")
