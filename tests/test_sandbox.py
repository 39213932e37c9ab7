"""A sandbox, in which everything may change as far as the kernel lets, and of which nothing is left."""

import os
import re
import subprocess

import pytest
from conftest import ORDINARY_USER, Way, as_user, first, says, table

NO_LOG = {"log_file": ""}  # its folder would have to be covered too
BESIDE = "check: the uninstall leaves changes beside the workbench and the product"


def preview(site, sandbox, before, setup, **how):
    """The Report of an install into a workbench that the line `before` has prepared."""
    site.lay(setup)
    site.shell(f"cd workbench; {before}")
    return sandbox(site, "install", "--preview", **how)


def by_the_script(report):
    """The changes but for those that the integration itself makes, as seen from the workbench."""
    lines = [line for line in report.changes if not re.search(" ./product/|/wr-qev", line)]
    return [line.replace("./workbench/", "") for line in lines]


CHANGES = {
    "only touched": (":", "touch dir/file; chmod 755 dir", []),
    "mode": (":", "chmod 1600 dir/file", ["M dir/file (mode 0644 -> 1600)"]),
    "bytes": (r"printf 1\\0 >x", "echo >>x", ["M x (content 2 B -> 3 B)"]),
    "much text": ("seq 999999 >x", "seq 9 >x", ["M x (content 6,888,888 B -> 18 B)"]),
    "new folder": (":", "mkdir x; echo >x/1; ln -s a x/b", ["A x/ (2 files, 1 B)"]),
    "that nobody can enter": (":", "mkdir x; chmod 0 x", ["A x/ (0 files, 0 B)"]),
    "many": ("mkdir x; touch $(seq -f x/%g 1000)", "rm -r x", ["D x/ (1,000 files, 0 B)"]),
    "a file now": ("mkdir x; seq 9 >x/y", "rm -r x; >x", ["T x (was a directory: 1 file, 18 B)"]),
    "hole": (
        "truncate -s 9K x",
        "printf y | dd of=x seek=9 conv=notrunc",
        ["M x (content 9,216 B -> 9,216 B)"],
    ),
    "exchanged": ("rm dir/other; mkdir x", "mv x y; mv dir x; mv y dir", ["D dir/file", "A x/file"]),
    "link": ("ln -s tex x", "ln -sfn dir x", ["M x (link tex -> dir)"]),
    "name of two lines": (":", 'touch "$(printf "a\\nb")"', ["A a\\nb"]),
    "attribute": (":", "setfattr -n user.a -v 1 dir", ["M dir/ (attribute user.a)"]),
    "HOME": ("echo a >~/x; chmod 600 ~/x", "echo >~/x", ["M ./home/x (text that others cannot read)"]),
    "TMPDIR": (":", 'mkdir "$TMPDIR/x"', ["A ./tmp/x/ (0 files, 0 B)"]),
    "/var/tmp": (":", "echo >/var/tmp/x.wb-trial", ["A /var/tmp/x.wb-trial"]),
    "/dev/shm": (":", "echo >/dev/shm/x.wb-trial", ["A /dev/shm/x.wb-trial"]),
}


@table("before, setup, changes", CHANGES)
def test_changes(site, sandbox, before, setup, changes):
    assert by_the_script(preview(site, sandbox, before, setup)) == changes


def test_changes_by_root(site, root_sandbox):
    setup = "chown 1:2 dir/file; chgrp 3 .; touch /etc/x.wb-trial /root/x.wb-trial"
    assert by_the_script(preview(site, root_sandbox, ":", setup)) == [
        "A /etc/x.wb-trial",
        "M  (group 0 -> 3)",
        "M dir/file (owner 0 -> 1, group 0 -> 2)",
        "A /root/x.wb-trial",
    ]
    assert not os.path.exists("/etc/x.wb-trial")


def test_devices(site, root_sandbox):
    """An overlay does not show 0:0. In a sandbox nobody can make another one."""
    whiteout = "mknod dir/0 c 0 0", "rm -r dir; mkdir dir; touch dir/file dir/other"
    assert by_the_script(preview(site, root_sandbox, *whiteout)) == []
    site.lay("rm x; mknod x c 1 5")
    site.shell("mknod workbench/x c 1 3")
    assert "M x (device 1:3 -> 1:5)" in by_the_script(site.wb_trial("check", "--no-sandbox", "s.toml"))


@pytest.mark.parametrize("log", ["/dev/null", "/var/tmp/x.log", "x.log", "link", "workbench/dangling"])
def test_log_is_no_change(site, sandbox, log):
    before = "mkdir ../logs; ln -s ../logs/absent dangling; echo >../logs/old; ln -s logs/old ../link"
    assert by_the_script(preview(site, sandbox, before, ":", variables={"log_file": log})) == []


DIFFERENCES = {
    "no line end": ("echo a >x", "printf b >x", "-a\n+b\n\\ No newline at end of file"),
    "control characters": ("echo a >x", r"printf '\033[1m\n' >x", "-a\n" r"+\x1b[1m"),
    "long line": ("echo a >x", "printf '%0400d\n' 0 >x", "-a\n+" + 299 * "0"),
    "many lines": ("yes a | head -n 20 >x", "yes | head -n 21 >x", 20 * "-a\n" + "21 more lines"),
}


@table("before, setup, difference", DIFFERENCES)
def test_difference(site, sandbox, before, setup, difference):
    report = preview(site, sandbox, before, setup)
    shown = re.search(r"  M ./workbench/x\n((?:      .*\n)*)", report.text)[1]
    assert [line[6:] for line in shown.splitlines()] == difference.splitlines()


def test_differences_of_more_files_than_can_be_open(site, sandbox):
    setup = "for file in dir/*; do echo >$file; done"
    report = preview(site, sandbox, "touch $(seq -f dir/%g 300)", setup, within=["prlimit", "--nofile=256"])
    assert report.text.count("\n      +\n") == 302


UNREADABLE = {
    "file": ("echo b >x; chmod 0 x", "M ./workbench/x (mode 0644 -> 0000, content 2 B -> 2 B)"),
    "folder": ("chmod 0 dir", "M ./workbench/dir (not known: Permission denied)"),
}


@table("setup, change", UNREADABLE)
def test_what_cannot_be_read_is_a_change(site, setup, change):
    """Without a sandbox, in which its owner may read it."""
    site.lay(setup)
    site.shell("echo a >workbench/x")
    assert change in Way(ORDINARY_USER, ["--no-sandbox"])(site).changes


SESSION_KEYRING = "import ctypes; print(ctypes.CDLL(None).syscall(250, 0, -3, 0))"


FOUND_BY_A_SCRIPT = {
    "few processes": "[ $(ls -d /proc/[0-9]* | wc -w) -lt 20 ]",
    "nothing of wb-trial": "! readlink /proc/[12]/exe /proc/[12]/fd/*",
    "no devices": "! mknod x b 8 1",
    "no further namespaces": "! unshare -m true",
    "its user": "[ $(id -u):$(id -g) = $user:$user ]",
    "another user": "[ $user != 0 ] || { useradd -m wb-trial-x && su wb-trial-x -c id; }",
    "message queues of its own": "[ $(readlink /proc/self/ns/ipc) != $queues ]",
    "session keyring of its own": f"[ $(/usr/bin/python3 -c '{SESSION_KEYRING}') != $keyring ]",
    "/run and /dev as they are": "! touch /run/x.wb-trial && ! touch /dev/x.wb-trial",
    "no memory in place of a disk": "! grep '^tmpfs /[a-z]* .*mode=700' /proc/mounts",
    "no network settings": "! ip link set lo mtu $(cat /sys/class/net/lo/mtu)",
    "default ACL": "echo >../x; [ $(stat -c %a ../x) = 640 ]",
    "limit of open files as it was": "[ $(ulimit -n) = 30 ]",
    "TMPDIR as it was": "! mktemp",
}


@table("setup", FOUND_BY_A_SCRIPT)
def test_what_a_script_finds(site, sandbox, setup):
    site.lay(setup)
    site.shell("setfacl -d -m g::r,o::- .")
    ask = ["/usr/bin/python3", "-c", SESSION_KEYRING]
    keyring = subprocess.check_output([*as_user(sandbox.user), *ask], text=True)
    outside = {"user": f"{sandbox.user}", "queues": os.readlink("/proc/self/ns/ipc"), "keyring": keyring}
    environment = outside | {"TMPDIR": "/nonexistent"}
    report = sandbox(site, within=["prlimit", "--nofile=30:4096"], environment=environment)
    assert "perform_integration returned 0" in report.lines, report.text


PROCESSES = {
    "kills all": ("kill -9 -1", 1, "wb-trial: signal 9 ended the sandbox"),
    "kills its group": ("trap 'kill 0' EXIT", 1, "ended by signal 15 (Terminated)"),
    "leaves a process": ("sleep 98.5 >/dev/null 2>&1 &", 0, "note: still running: sleep 98.5"),
}


@table("setup, status, sentence", PROCESSES)
def test_process(site, sandbox, setup, status, sentence):
    report = preview(site, sandbox, ":", setup)
    assert (report.status, sentence in report.text) == (status, True), report.text


def test_folder_with_a_name_that_begins_as_the_workbenchs(site, sandbox):
    site.lay("echo >../workbench-2/x")
    site.shell("mkdir workbench-2")
    assert sandbox(site).failures == [f"{BESIDE}: A ./workbench-2/x"]


def test_product_that_is_not_the_whole_disk(site, sandbox):
    site.lay("echo >~/x")
    site.edit('"/suite/part"', f'"{site.product}/suite/part"')
    installed = {"VORN_INSTALL_DIR": "/", "VORN_INSTALL_SUBDIR": f"{site.product}/suite"}
    assert sandbox(site, variables=installed).failures == [f"{BESIDE}: A ./home/x"]


MOUNTS = {
    "read-only": ("mount -t tmpfs -o ro a dir", "! echo >dir/x"),
    "flags": (
        "mount -t tmpfs -o nosuid,nodev,noexec a dir",
        "grep 'dir overlay .*nodev,noexec' /proc/mounts",
    ),
    "owner": ("mount -t tmpfs -o uid=1,gid=2 a dir", "[ $(stat -c %u:%g dir) = 1:2 ]"),
    "no overlay": ("mount -t proc a dir", "test -e dir/self && ! echo >dir/x"),
    "a file": ("mount --bind $setup dir/file", "grep mount dir/file && ! echo >dir/file"),
    "a file beside": ("mount --bind ../s.toml ~/file", "grep SUPPORTED ~/file && ! echo >~/file"),
    "one in another, with an odd name": (
        r"mount -t tmpfs a dir; mkdir 'dir/a,b:c\d'; cd dir/a*; mount -t tmpfs b $PWD; echo b >$PWD/b; cd ../..",
        "cat dir/a*/b && echo >dir/x && rm dir/x",
    ),
    "hidden": (
        "mount -t tmpfs a dir; mkdir dir/in; mount -t tmpfs b dir/in; mount -t tmpfs c dir; mkdir dir/in",
        "echo >dir/in/x && rm dir/in/x",
    ),
}


@table("mounting, setup", MOUNTS)
def test_mount(site, root_sandbox, mounting, setup):
    site.lay(setup)
    site.shell("touch home/file")
    report = root_sandbox(site, within=first(f"cd workbench; {mounting}; cd .."))
    assert (report.verdict, report.failures) == ("as it was", []), report.text


HARMLESS_MOUNTS = {
    "hidden": "cd workbench; mount -t tmpfs a $PWD; mkdir $PWD/in; mount -t tmpfs b $PWD/in\n"
    "mount -t tmpfs c $PWD; mkdir $PWD/in; echo name=3.1 >$PWD/install.properties; cd ..",
    "of a name that begins alike": "mount -t tmpfs a workbench-2",
}


@table("mounting", HARMLESS_MOUNTS)
def test_mount_that_is_in_nobodys_way(site, sandbox, mounting):
    site.shell("mkdir workbench-2")
    report = sandbox(site, within=["unshare", "-Urm", *first(mounting)], variables=NO_LOG)
    assert report.verdict == "as it was", report.text


def test_mount_in_home_and_in_temporary_directory(site, sandbox):
    site.lay('echo "$TMPDIR"; echo >~/file')
    site.shell("mkdir home/share tmp/mount")
    mounting = "mount -t tmpfs x home/share; mount -t tmpfs x tmp/mount"
    report = sandbox(site, within=["unshare", "-Urm", *first(mounting)], variables=NO_LOG)
    says(report.notes, "because of the mount at ./home/share\nbecause of the mount at ./tmp/mount")
    assert report.output[0] in ("/tmp", "/var/tmp")
    assert "Read-only file system" in report.output[1]
    assert report.verdict == "as it was"


def test_mount_in_a_directory_that_the_user_cannot_enter(site, root_sandbox):
    site.give_to(ORDINARY_USER)
    mounting = "mkdir -p closed/in; mount -t tmpfs a closed/in; chmod 0 closed"
    within = [*first(mounting), *as_user(ORDINARY_USER)]
    report = site.wb_trial("check", "s.toml", within=within, variables=NO_LOG)
    assert report.verdict == "as it was", report.text


CONFINED = {
    "no right to mount": ["setpriv", "--bounding-set=-sys_admin"],
    "no right to give away": ["setpriv", "--bounding-set=-chown"],
    "root of a namespace": ["unshare", "-Ur"],
}


@table("words", CONFINED)
def test_root_whose_rights_are_confined_has_a_users_sandbox(site, root_sandbox, words):
    site.lay("rm -r dir; mkdir dir; touch dir/file dir/other; grep ' 1$' /proc/self/uid_map")
    report = root_sandbox(site, within=words)
    assert (report.verdict, report.failures) == ("as it was", []), report.text


OVERLAY = "lowerdir=workbench,upperdir=tmp/$n,workdir=tmp/w$n"
OVERLAYS = f"for n in 1 2; do mkdir tmp/$n tmp/w$n; mount -t overlay -o userxattr,{OVERLAY} x workbench; done"
NO_NAMESPACES = "echo 0 >/proc/sys/user/max_user_namespaces"


LIMITS = {
    "mount": ("mount -t tmpfs x workbench/dir", "because of the mount at ./workbench/dir"),
    "overlay on overlays": (f"mount -t tmpfs x tmp; {OVERLAYS}", "the overlay over ./workbench is refused"),
    "no namespace": (NO_NAMESPACES, "user.max_user_namespaces is 0; change it"),
    "few open files": ("ulimit -n 10", "open files; raise the limit with ulimit -n"),
}


@table("limit, cause", LIMITS)
def test_refusal(site, sandbox, limit, cause):
    """Where there can be no sandbox nothing is run, on the disk neither."""
    site.lay("echo run")
    report = sandbox(site, within=["unshare", "-Urm", *first(limit)], variables=NO_LOG)
    says(report.lines, f"wb-trial: there can be no sandbox: ... {cause}")
    assert ("--no-sandbox" in report.refusal) == ("ulimit" not in cause)


def test_user_who_may_start_no_thread(site, root_sandbox):
    site.give_to(4711)
    within = [*as_user(4711), "prlimit", "--nproc=1"]
    report = site.wb_trial("check", "s.toml", within=within, variables=NO_LOG)
    assert report.refusal.startswith("there can be no sandbox: it cannot be prepared: "), report.text


MANY = "cd workbench; for d in 1 2 3 4 5 6 7 8; do mkdir $d; touch $d/x; chmod 666 $d/x; chown 4711:4711 $d; done"
ABOVE = "mkdir a; mv workbench a; ln -s a/* .; chown 12345 a; chmod 311 ."


AMONG_OTHERS = {
    "group": ("chgrp 1 workbench; chmod 775 workbench", [], 2, "(group daemon); run it as root"),
    "group of all": ("chgrp -R 1 .; chmod 775 workbench", [], 2, "in sg daemon -c '...', or as root"),
    "owner": ("chown 0 workbench; chmod 777 workbench", [], 2, "./workbench (owner 0); run it as"),
    "file in the product": ("umask 0; touch product/x", [], 2, "./product/x (owner 0);"),
    "its group": ("chgrp 1 $copied", [], 2, "$copied (group daemon);"),
    "ACL": ("setfacl -m u:12:r $copied", [], 2, "$copied (others have rights"),
    "ACL for itself": ("setfacl -m u:4711:r $copied", [], 0, "as it was."),
    "folder": ("mkdir -m 777 workbench/x", [], 2, "./workbench/x (owner 0);"),
    "default ACL": ("setfacl -d -m u:12:r workbench/dir", [], 2, "(others have rights"),
    "link to others' file": ("umask 0; touch y; ln -s ../y workbench/y", [], 0, "as it was."),
    "folder not to be listed": ("mkdir -m 700 workbench/y; touch workbench/y/z", [], 0, "as it was."),
    "own in such a folder": ("cd workbench; mkdir x; mv dir x", [], 2, "x/dir (others have rights"),
    "file not to be written": ("chown 0 $copied", [], 0, "as it was."),
    "not to be written": ("chown 0 workbench", [], 1, 'PATH_STATUS = "notwritable"'),
    "folder above": (ABOVE, [], 0, "as it was."),
    "in many folders": (MANY, [], 2, "./workbench/1/x (owner 0) and 7 more;"),
    "copied file": ("chown 0 $copied", ["--no-sandbox"], 0, "as it was."),
}


@table("before, option, status, sentence", AMONG_OTHERS)
def test_user_among_others(site, root_sandbox, before, option, status, sentence):
    """What a user with a further group could change outside and not in a sandbox, or could not copy."""
    site.lay("echo >x", "rm x")
    site.give_to(4711)
    site.shell(before.replace("$copied", "workbench/dir/file"))
    within = ["setpriv", "--reuid=4711", "--regid=4711", "--groups=4711,1"]
    report = site.wb_trial("check", *option, "s.toml", within=within, variables=NO_LOG)
    assert report.status == status, report.text
    assert sentence.replace("$copied", "./workbench/dir/file") in report.text
    assert list(site.root.glob("tmp/*")) == []


def test_nobody(site, root_sandbox):
    """To the user 65534 what others own looks in a user namespace like its own."""
    site.give_to(65534)
    site.shell("chown -R 0:0 workbench; chmod 666 workbench/dir/file")
    report = site.wb_trial("check", "s.toml", user=65534)
    assert "./workbench/dir/file (owner 0); run it as root" in report.refusal, report.text


def test_root_without_the_right_to_mount_among_others(site, root_sandbox):
    site.shell("chown 1 workbench/dir/file")
    report = site.wb_trial("check", "s.toml", within=["setpriv", "--bounding-set=-sys_admin"])
    assert "(owner 1); run it in a container that allows CAP_SYS_ADMIN" in report.refusal, report.text


def test_working_directory_that_cannot_be_entered(site, root_sandbox):
    site.give_to(4711)
    within = [*first("mkdir -m 700 closed; cd closed"), *as_user(4711)]
    report = site.wb_trial("check", str(site.session), within=within)
    assert "./closed: Permission denied" in report.refusal, report.text


def test_scratch_folder(site, sandbox):
    """It is on the disk where memory keeps no attributes. What an earlier run left is removed, unless in use."""
    site.lay("mkdir x; echo >x/y", "rm -r x")
    name = f"/var/tmp/wb-trial-sandbox-{site.root.name}"
    before = f"mkdir -p {name}-left/work/work {name}-used; chmod 0 {name}-left/work/work"
    after = f'flock {name}-used "$@"; ls -d /var/tmp/*; rm -r {name}-used; exit'
    report = sandbox(site, within=first(f"{before}; {after}"), environment={"WB_TRIAL_SCRATCH": "1"})
    assert report.verdict == "as it was"
    assert [line for line in report.lines if line.startswith("/var/tmp/wb-trial-")] == [f"{name}-used"]


@pytest.mark.parametrize("log", ["fifo", "logs/log"])
def test_log_that_can_be_written_outside_alone(site, sandbox, log):
    site.shell("mkfifo fifo; mkdir -p logs/in")
    mounting = ["unshare", "-Urm", *first("mount -t tmpfs x logs/in")]
    report = sandbox(site, within=mounting, variables={"log_file": log})
    assert f"the log ./{log} cannot be written here; its lines go to standard error" in report.notes
    assert (report.verdict, report.failures) == ("as it was", [])


def test_hard_links(site, sandbox):
    site.lay("cp -p a c; echo >>a", "mv c a")
    site.shell("cd workbench; touch a; ln a b")
    assert any("./workbench/a has several hard links" in warning for warning in sandbox(site).warnings)
