"""A sandbox, in which everything may change as far as the kernel lets, and of which nothing is left."""


import re
import subprocess

from pathlib import Path

import pytest
from conftest import ORDINARY_USER, Way, as_user, first, table

only_root = pytest.mark.parametrize("sandbox", ["sandbox-root"], indirect=True)
NO_LOG = {"log_file": ""}  # its folder would have to be covered too
BESIDE = "check: the uninstall leaves changes beside the workbench and the product"


def preview(site, sandbox, before, setup):
    """The Report of an install into a workbench that the line `before` has prepared."""
    site.lay(setup)
    site.shell(f"cd workbench; {before}")
    return sandbox(site, "install", "--preview")


def in_workbench(report):
    return [line for line in report.changes if "./workbench/" in line and "wr-qev" not in line]


@table(
    "before, setup, changes",
    {
        "only touched": (":", "touch dir/file; chmod 755 dir", []),
        "mode": (":", "chmod 1600 dir/file", ["M ./workbench/dir/file (mode 0644 -> 1600)"]),
        "bytes": (r"printf 1\\0 >x", "echo >>x", ["M ./workbench/x (content 2 B -> 3 B)"]),
        "fewer": ("head -c 2048 /dev/zero >x", "echo >x", ["M ./workbench/x (content 2.0 KiB -> 1 B)"]),
        "much text": ("seq 999999 >x", "seq 9 >x", ["M ./workbench/x (content 6.6 MiB -> 18 B)"]),
        "new folder": (":", "mkdir x; echo >x/1; ln -s a x/b", ["A ./workbench/x/ (2 files, 1 B)"]),
        "that nobody can enter": (":", "mkdir x; chmod 0 x", ["A ./workbench/x/ (0 files, 0 B)"]),
        "folder that is gone": ("mkdir x; touch x/y", "rm -r x", ["D ./workbench/x/", "D ./workbench/x/y"]),
        "that was made anew": (":", "rm -r dir; mkdir dir; touch dir/other", ["D ./workbench/dir/file"]),
        "another type": ("touch x", "rm x; mkdir x", ["T ./workbench/x/ (0 files, 0 B)"]),
        "link": ("ln -s tex x", "ln -sfn dir x", ["M ./workbench/x (link tex -> dir)"]),
        "name of two lines": (":", 'touch "$(printf "a\\nb")"', ["A ./workbench/a\\nb"]),
        "attribute": (":", "setfattr -n user.a -v 1 dir", ["M ./workbench/dir/ (attribute user.a)"]),
    },
)
def test_changes(site, sandbox, before, setup, changes):
    assert in_workbench(preview(site, sandbox, before, setup)) == changes


@only_root
@table(
    "before, setup, changes",
    {
        "owner": (":", "chown 1:2 dir/file", ["M ./workbench/dir/file (owner 0 -> 1, group 0 -> 2)"]),
        "group of the workbench": (":", "chgrp 3 .", ["M ./workbench/ (group 0 -> 3)"]),
    },
)
def test_changes_by_root(site, sandbox, before, setup, changes):
    assert in_workbench(preview(site, sandbox, before, setup)) == changes


@table(
    "before, setup, difference",
    {
        "no line end": (
            "echo a >x",
            "printf b >x",
            ["@@ -1 +1 @@", "-a", "+b", "\\ No newline at end of file"],
        ),
        "control characters": ("echo a >x", r"printf '\033[1m\n' >x", ["@@ -1 +1 @@", "-a", r"+\x1b[1m"]),
        "long line": ("echo a >x", "printf '%0400d\n' 0 >x", ["@@ -1 +1 @@", "-a", "+" + 299 * "0"]),
        "many lines": (
            "seq 10 29 >x",
            "seq 40 60 >x",
            ["@@ -1,20 +1,21 @@", *(f"-{number}" for number in range(10, 29)), "22 more lines"],
        ),
    },
)
def test_difference(site, sandbox, before, setup, difference):
    report = preview(site, sandbox, before, setup)
    shown = re.search(r"  M ./workbench/x\n((?:      .*\n)*)", report.text)[1]
    assert [line[6:] for line in shown.splitlines()] == difference


def test_differences_of_more_files_than_can_be_open(site, sandbox):
    site.lay("for file in dir/*; do echo >$file; done")
    site.shell("touch $(seq -f workbench/dir/%g 300)")
    report = sandbox(site, "install", "--preview", within=["prlimit", "--nofile=256"])
    assert report.text.count("@@ -0,0 +1 @@") == 302


def test_what_others_cannot_read_is_not_shown(site, sandbox):
    site.lay('echo x >>"$HOME/key"; echo x >>"$TMPDIR/open"')
    site.shell("echo secret >home/key; chmod 600 home/key; echo told >tmp/open")
    report = sandbox(site)
    assert "M ./home/key (text that others cannot read)" in report.changes
    assert "secret" not in report.text
    assert "told" in report.text


@table(
    "setup, change",
    {
        "file": ("echo b >x; chmod 0 x", "M ./workbench/x (mode 0644 -> 0000, content 2 B -> 2 B)"),
        "folder": ("chmod 0 dir", "M ./workbench/dir (not known: Permission denied)"),
    },
)
def test_what_cannot_be_read_is_a_change(site, setup, change):
    """Without a sandbox, in which its owner may read it."""
    site.lay(setup)
    site.shell("echo a >workbench/x")
    way = Way("no-sandbox-user", ORDINARY_USER, ["--no-sandbox"])
    assert change in way(site).changes


@table(
    "setup",
    {
        "few processes": "[ $(ls -d /proc/[0-9]* | wc -w) -lt 20 ]",
        "wb-trial cannot be looked into": "! readlink /proc/[12]/exe /proc/[12]/fd/*",
        "devices": "! mknod x b 8 1",
        "further namespaces": "! unshare -m true",
        "the kernel's directories": "! touch /run/x.wb-trial /dev/x.wb-trial",
        "no memory left in sight": "! grep '^tmpfs /[a-z]* .*mode=700' /proc/mounts",
        "a temporary directory": 'echo >"$(mktemp)"',
        "/dev/shm": "echo >/dev/shm/x.wb-trial; rm /dev/shm/x.wb-trial",
    },
)
def test_what_a_script_finds(site, sandbox, setup):
    site.lay(setup)
    report = sandbox(site, "install", "--preview")
    assert report.status == 0, report.text


def test_user_and_group(site, sandbox):
    site.lay("id -u; id -g; stat -c '%u:%g' . ..", ":")
    both = f"{sandbox.user}:{sandbox.user}"
    assert sandbox(site).output == [f"{sandbox.user}", f"{sandbox.user}", both, both]


def test_message_queues_of_the_machine(site, sandbox):
    queue = re.findall(r"\d+", subprocess.check_output(["ipcmk", "-Q"], text=True))[0]
    site.lay("ipcrm --all=msg; ! ipcs -q | grep 0x")
    report = sandbox(site)
    subprocess.run(["ipcrm", "-q", queue], check=True)
    assert report.failures == []


@table(
    "setup, sentence",
    {
        "all processes": ("kill -9 -1", "signal 9 ended the sandbox"),
        "its group": ("trap 'kill 0' EXIT", "ended with status 143"),
    },
)
def test_script_that_kills(site, sandbox, setup, sentence):
    site.lay(setup)
    report = sandbox(site)
    assert (report.status, sentence in report.text) == (1, True), report.text


def test_process_that_still_runs(site, sandbox):
    site.lay("sleep 98.5 >/dev/null 2>&1 &")
    assert "still running: sleep 98.5" in sandbox(site, "install", "--preview").notes


@pytest.mark.parametrize("log", ["/dev/null", "/var/tmp/x.log", "x.log", "link", "workbench/dangling"])
def test_log_is_no_change(site, sandbox, log):
    site.lay(":")
    site.shell("mkdir logs; ln -s ../logs/absent workbench/dangling; echo >logs/old; ln -s logs/old link")
    report = sandbox(site, variables={"log_file": log})
    assert report.verdict == "as it was", report.text
    assert [line for line in report.changes if "product" not in line] == []


@table(
    "setup, changes",
    {
        "home": ('echo >"$HOME/x"', ["A ./home/x"]),
        "TMPDIR": ('mkdir "$TMPDIR/x"', ["A ./tmp/x/ (0 files, 0 B)"]),
        "/var/tmp": ("echo >/var/tmp/x.wb-trial", ["A /var/tmp/x.wb-trial"]),
        "/dev/shm": ("echo >/dev/shm/x.wb-trial", ["A /dev/shm/x.wb-trial"]),
        "name that begins as the workbench's": ("echo >../workbench-2/x", ["A ./workbench-2/x"]),
    },
)
def test_change_beside_workbench_and_product(site, sandbox, setup, changes):
    site.lay(setup)
    (site.root / "workbench-2").mkdir()
    report = sandbox(site)
    assert [line for line in report.changes if "product" not in line] == changes
    assert report.failures == [BESIDE]


@only_root
def test_change_anywhere_by_root(site, sandbox):
    site.lay(
        "for place in /etc /opt /usr/share /root; do echo >$place/x.wb-trial; done", "rm /opt/x.wb-trial"
    )
    report = sandbox(site)
    expected = ["A /etc/x.wb-trial", "A /root/x.wb-trial", "A /usr/share/x.wb-trial"]
    assert [line for line in report.changes if "product" not in line] == expected
    assert not list(Path("/").glob("*/x.wb-trial"))


def test_product_below_the_root_directory(site, sandbox):
    """It is not the whole disk."""
    site.lay('echo >"$HOME/x"')
    site.edit("/suite/part", f"{site.product}/suite/part")
    installed = {"VORN_INSTALL_DIR": "/", "VORN_INSTALL_SUBDIR": f"{site.product}/suite"}
    assert BESIDE in sandbox(site, variables=installed).failures


def test_default_acl(site, sandbox):
    site.lay("echo >../x; stat -c %a ../x; rm ../x", ":")
    site.shell("setfacl -d -m g::r,o::- .")
    assert sandbox(site).output == ["640"]


@table(
    "move, name, shown",
    {
        "link": ("ln -s workbench link", "link", "./workbench/x"),
        "odd name": (r"""mv workbench 'a,b:c\d"e f'""", 'a,b:c\\d"e f', './a,b:c\\d"e f/x'),
    },
)
def test_workbench_by_another_name(site, sandbox, move, name, shown):
    site.lay("echo >x")
    site.shell(move)
    report = sandbox(site, variables={"WB_INTEGRATION_PATH": name})
    assert f"A {shown}" in report.changes
    assert report.verdict == "changed"


@only_root
@table(
    "mounting, setup",
    {
        "a mount in a mount": (
            "mount -t tmpfs a dir; mkdir dir/in; mount -t tmpfs b dir/in; echo b >dir/in/name",
            "cat dir/in/name && echo >dir/x && rm dir/x",
        ),
        "read-only": ("mount -t tmpfs -o ro a dir", "! echo >dir/x"),
        "flags": (
            "mount -t tmpfs -o nosuid,nodev,noexec a dir",
            'grep " $workbench/dir overlay" /proc/mounts | grep nosuid,nodev,noexec',
        ),
        "owner": ("mount -t tmpfs -o uid=1,gid=2 a dir", "[ $(stat -c %u:%g dir) = 1:2 ]"),
        "no overlay": ("mount -t proc a dir", "test -e dir/self && ! echo >dir/x"),
        "a file": ("mount --bind ../s.toml dir/file", "grep SUPPORTED dir/file && ! echo >dir/file"),
        "a file beside": ("mount --bind ../s.toml ~/file", "grep SUPPORTED ~/file && ! echo >~/file"),
        "a name that begins alike": ("mount -t tmpfs a ../home-2", "echo >~/x; rm ~/x"),
        "hidden": (
            "mount -t tmpfs a dir; mkdir dir/in; mount -t tmpfs b dir/in; mount -t tmpfs c dir; mkdir dir/in",
            "echo >dir/in/x && rm dir/in/x",
        ),
    },
)
def test_mount(site, sandbox, mounting, setup):
    site.lay(setup)
    site.shell("touch home/file; mkdir home-2")
    report = sandbox(site, within=first(f"cd workbench; {mounting}; cd .."))
    assert (report.verdict, report.failures) == ("as it was", []), report.text


def test_hidden_mount_of_a_user(site, sandbox):
    """It is in nobody's way."""
    site.lay("echo >x", "rm x")
    mounting = "mount -t tmpfs a workbench; mkdir workbench/in; mount -t tmpfs b workbench/in"
    hiding = "mount -t tmpfs c workbench; mkdir workbench/in; echo name=3.1 >workbench/install.properties"
    report = sandbox(site, within=["unshare", "-Urm", *first(f"{mounting}; {hiding}")], variables=NO_LOG)
    assert report.verdict == "as it was", report.text


def test_mount_in_home_and_in_temporary_directory(site, sandbox):
    """It keeps these from changing, and nothing else."""
    site.lay('echo "$TMPDIR"; echo >~/file')
    site.shell("mkdir home/share tmp/mount")
    mounting = "mount -t tmpfs x home/share; mount -t tmpfs x tmp/mount"
    report = sandbox(site, within=["unshare", "-Urm", *first(mounting)], variables=NO_LOG)
    assert {note.split(", because")[1] for note in report.notes if "because" in note} >= {
        " of the mount at ./home/share",
        " of the mount at ./tmp/mount",
    }
    assert report.output[0] in ("/tmp", "/var/tmp")
    assert "Read-only file system" in report.output[1]
    assert report.verdict == "as it was"


@only_root
def test_mount_in_a_directory_that_the_user_cannot_enter(site, sandbox):
    site.give_to(ORDINARY_USER)
    mounting = "mkdir -p closed/in; mount -t tmpfs a closed/in; chmod 0 closed"
    report = site.wb_trial(
        "check", "s.toml", within=[*first(mounting), *as_user(ORDINARY_USER)], variables=NO_LOG
    )
    assert report.verdict == "as it was", report.text


@only_root
@table(
    "words",
    {
        "no right to mount": ["setpriv", "--bounding-set=-sys_admin"],
        "no right to give away": ["setpriv", "--bounding-set=-chown"],
        "root of a namespace": ["unshare", "-Ur"],
    },
)
def test_root_whose_rights_are_confined(site, sandbox, words):
    """Stays confined."""
    site.lay("rm -r dir; mkdir dir; touch dir/file dir/other; ! unshare -m true; cat /proc/self/uid_map")
    report = sandbox(site, within=words)
    assert (report.verdict, report.failures) == ("as it was", []), report.text


@table(
    "limit, cause",
    {
        "a mount": (
            "mount -t tmpfs x workbench/dir",
            "./workbench cannot be covered, because of the mount at ./workbench/dir",
        ),
        "no further namespace": (
            "echo 0 >/proc/sys/user/max_user_namespaces",
            "user.max_user_namespaces is 0; change it with sysctl, or run as root",
        ),
        "few open files": ("ulimit -n 10", "Too many open files"),
    },
)
def test_refusal(site, sandbox, limit, cause):
    """Where there can be no sandbox nothing is run, on the disk neither."""
    site.lay("echo run")
    report = sandbox(site, within=["unshare", "-Urm", *first(limit)], variables=NO_LOG)
    assert report.status == 2, report.text
    assert report.refusal.startswith("there can be no sandbox: ")
    assert cause in report.refusal
    assert len(report.lines) == 1


FURTHER_GROUP = ["setpriv", "--reuid=4711", "--regid=4711", "--groups=4711,1"]


@only_root
@table(
    "before, option, status, sentence",
    {
        "group": ("chgrp 1 workbench; chmod 775 workbench", [], 2, "./workbench belongs to the group daemon"),
        "group of all": (
            "chgrp -R 1 .; chmod 775 workbench",
            [],
            2,
            "run it in sg daemon -c '...', or as root",
        ),
        "owner": (
            "chown 0 workbench; chmod 777 workbench",
            [],
            2,
            "./workbench belongs to the owner 0; run it as",
        ),
        "not to be written": ("chown 0 workbench", [], 1, 'PATH_STATUS = "notwritable"'),
        "owner of a file": (
            "chown 0 workbench/dir/file",
            ["--no-sandbox"],
            2,
            "run as root, for this user's copy differs: ./workbench/dir/file (owner 4711 -> 0)",
        ),
        "mode of a file": (
            "chown 0 workbench/dir/file; chmod 600 workbench/dir/file",
            ["--no-sandbox"],
            2,
            "cp: ./workbench cannot be copied",
        ),
        "no temporary directory": ("rm -r tmp", ["--no-sandbox"], 2, "TMPDIR names no directory"),
        "folder above": (
            "mkdir others; mv workbench others; ln -s others/workbench .; chown 12345 others; chmod 311 .",
            [],
            0,
            "The workbench is as it was.",
        ),
    },
)
def test_user_among_others(site, sandbox, before, option, status, sentence):
    """What a user could change outside and not in a sandbox."""
    site.lay("echo >x", "rm x")
    site.give_to(4711)
    site.shell(before)
    report = site.wb_trial("check", *option, "s.toml", within=FURTHER_GROUP, variables=NO_LOG)
    assert (report.status, sentence in report.text) == (status, True), report.text
    assert not site.temporary.exists() or not list(site.temporary.iterdir())


@only_root
def test_working_directory_that_cannot_be_entered(site, sandbox):
    site.give_to(4711)
    report = site.wb_trial(
        "check", str(site.session), within=[*first("mkdir -m 700 closed; cd closed"), *as_user(4711)]
    )
    assert (report.status, "./closed: Permission denied" in report.refusal) == (2, True), report.text


@only_root
def test_mode_of_a_copy_that_belongs_to_somebody_else(site, sandbox):
    site.give_to(4711)
    site.shell("mkdir -m 777 $copy")
    report = site.integrate(user=4711)
    assert report.notes == [
        'the mode of "./workbench/wr-qev-1.0a" stays 0777, for the folder is somebody else\'s'
    ]


@only_root
def test_without_proc(site, sandbox):
    mounting = ["unshare", "-m", *first("mount -t tmpfs x /proc")]
    report = site.wb_trial("check", "--no-sandbox", "s.toml", within=mounting)
    assert report.notes[0] == "there is no /proc: what still runs after the uninstall is not seen"


def test_scratch_folder(site, sandbox):
    """It is on the disk where memory keeps no attributes, as before Linux 6.6. What an earlier run left behind is
    removed, and what is in use is not."""
    site.lay("mkdir x; echo >x/y", "rm -r x")
    names = f"/var/tmp/wb-trial-sandbox-{site.root.name}"
    folders = f"mkdir -p {names}-left/work/work {names}-used; chmod 0 {names}-left/work/work"
    after = f'flock {names}-used "$@"; ls -d {names}*; rm -r {names}-used; exit'
    report = sandbox(site, within=first(f"{folders}; {after}"), environment={"WB_TRIAL_SCRATCH": "1"})
    assert report.verdict == "as it was"
    assert report.lines[-1] == f"{names}-used"
