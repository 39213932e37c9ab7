"""What the plug-in does not notice by design: the action goes on, wb-trial says what failed, and no
file that was there before is lost or half written. And what is copied and set without a failure."""

import os
import stat
import subprocess

import pytest

from conftest import IS_ROOT, NO_RIGHTS, ORDINARY_USER, keyed_table, says, sh

FULL_DISK = sh("trap '' XFSZ; ulimit -f 0; exec \"$@\"")


def contents(site):
    files = [path for path in site.root.rglob("*") if path.is_file() and os.access(path, os.R_OK)]
    return {path: path.read_bytes() for path in files if path != site.log}


def fails(site, action, failures, within=NO_RIGHTS):
    """Fails unless the action fails so, and all files are as they were but for new ones."""
    before = contents(site)
    report = site.run(action, variables={"WB_INTEGRATION_PATH": site.workbench}, within=within)
    says(report.failures, failures)
    assert report.status == (1 if failures else 0)
    assert before.items() <= contents(site).items() and not list(site.root.rglob(".wb-trial-*"))


UNINSTALL = 'the uninstall script "./workbench/wr-qev-1.0a/wr-setup/uninst_wr_qev.sh"'
SCRIPT = 'the de-integration script "./product/suite/vorn/wb_deintegrate.sh"'


@keyed_table(
    "command, failures",
    {
        "chmod 555 workbench": "folder_create ... failed: Permission denied",
        "ln -s /absent $copy": "folder_create ... failed: Not a directory",
        "mkdir -m 700 outside $copy; ln -s ../../outside $copy/wr-setup": (
            'dir_copy ... failed: Not a directory: "./workbench/wr-qev-1.0a/wr-setup"'
        ),
        "mkdir -p $copy/a.prefs": 'dir_copy ... failed: Is a directory: "./workbench/wr-qev-1.0a/a.prefs"',
        "rm -r workbench; ln -s $config workbench": "dir_copy ... failed: Invalid argument",
        "mkfifo $config/fifo": 'wr-qev-1.0a/fifo" is a FIFO, a socket or a device; leave it out',
        "echo 'kill -9 $$' >>$setup": "ended by signal 9 (Killed)",
        "rm $uninstall": f"{UNINSTALL} is not there, so nothing undoes",
        "rm $uninstall; mkdir $uninstall": f"{UNINSTALL} is no regular file, so nothing undoes",
        "chmod -x $uninstall": f"{UNINSTALL} cannot be executed (Permission denied), so nothing undoes",
        "rm -r product/suite/vorn": f'{SCRIPT} cannot be written: ... vorn" is not there',
        "chmod 555 product/suite/vorn": f"{SCRIPT} cannot be written (Permission denied)",
        "mkdir $script": f"{SCRIPT} is no regular file; remove it",
    },
)
def test_integration(site, command, failures):
    site.shell(command)
    fails(site, "perform_integration", failures)


def test_integration_on_a_full_disk(site):
    fails(
        site,
        "perform_integration",
        "the log cannot be written\ndir_copy ... failed: File too large",
        FULL_DISK,
    )


def test_integration_over_another_product(site):
    site.shell("mkdir $copy; touch $copy/x")
    says(site.install().failures, '"./workbench/wr-qev-1.0a" is there, and not by this product')
    assert [file.name for file in site.copy.iterdir()] == ["x"]


@keyed_table(
    "command, failures",
    {
        "rm -r second": "",
        "rm -r second; ln -s workbench second": "",
        ":": (
            'the earlier integration in "./second/wr-qev-1.0a" has lost its de-integration script to this one'
        ),
        "chmod 444 $script": (
            f"{SCRIPT} cannot be written (Permission denied)\n"
            'the earlier integration in "./second/wr-qev-1.0a" has lost'
        ),
    },
)
def test_integration_after_one_in_another_workbench(site, command, failures):
    site.shell("cp -R workbench second")
    assert site.integrate("./second").status == 0
    site.shell(command)
    report = site.integrate(within=NO_RIGHTS)
    says(report.failures, failures)


def test_script_that_removes_another_copy(site):
    site.shell("cp -R workbench second")
    site.integrate("./second")
    library = site.broken_library(b"/vorn/wb_deintegrate", b"/vorn/wb_deintegrata")
    report = site.run(
        "perform_integration", "--plugin", library, variables={"WB_INTEGRATION_PATH": "workbench"}
    )
    assert f'{SCRIPT} removes "./second/wr-qev-1.0a" and not the copy; integrate again' in report.failures[0]


@keyed_table(
    "command, failures",
    {
        ":": "",
        "rm $script": 'nothing undoes the integration in "./workbench/wr-qev-1.0a", for there is no',
        "rm -r $script $copy": "the product is not integrated: there is no",
        "truncate -s -2 $script": f"{SCRIPT} is there only in part; integrate again\nended with status 2",
        "chmod 311 $script": f"{SCRIPT} cannot be read; integrate again\nended with status 2",
        "rm $script; mkdir $script": f"{SCRIPT} is no regular file; integrate again\nended with status 126",
        "mv $copy copy; ln -s ../copy $copy": "removes was not there; is it uninstalled already?",
        "mv 'work\\bench' moved": "removes was not there; uninstall from the folder from which",
        "chmod 555 workbench": 'ended with status 1\nthe directory ... /wr-qev-1.0a" is still there; see',
    },
)
def test_undoing(site, command, failures):
    site.shell("mv workbench 'work\\bench'; ln -s 'work\\bench' workbench")
    assert site.integrate("./work\\bench").status == 0
    site.shell(command)
    report = site.wb_trial("uninstall", "s.toml", within=NO_RIGHTS)
    says(report.failures, failures)
    assert report.status == (1 if failures else 0)


def test_undoing_where_the_workbench_was_moved(site):
    site.integrate()
    site.shell("mv workbench moved")
    failure = "the workbench was moved or removed. Where it was moved, ... move it back and uninstall again"
    says(site.wb_trial("uninstall", "s.toml").failures, failure)


NO_LINE = "the key or the value does not fit into a line of such a file"


@keyed_table(
    "command, failure",
    {
        "chmod 555 $config": "Permission denied",
        "chmod 311 $prefs": "Permission denied",
        "rm $prefs; mkdir $prefs; sed -i 's,share.*txt,part/wr-qev-1.0a/a.prefs,' s.toml": "it is not a regular",
        r"printf 'home=\000' >$prefs": "it is in UTF-16, or no text; save it as UTF-8",
        r"printf '\377\376' >$prefs": "it is in UTF-16, or no text; save it as UTF-8",
        'sed -i \'s/"home"/""/\' s.toml': "the key is empty; is WB_PREFS_INST_DIR set?",
        'sed -i \'s/"home"/"ho=me"/\' s.toml': NO_LINE,
    },
)
def test_preferences_file_that_cannot_be_set(site, command, failure):
    site.shell(command)
    fails(site, "init_wb_prefs", f'a.prefs" was not changed: {failure}')


def test_key_with_a_line_end(site):
    says(site.run("init_wb_prefs", variables={"WB_PREFS_INST_DIR": "ho\nme"}).failures, NO_LINE)


def test_preferences_file_on_a_full_disk(site):
    failure = (
        'the preferences file "./product/suite/part/wr-qev-1.0a/a.prefs" was not changed: File too large'
    )
    fails(site, "init_wb_prefs", failure, FULL_DISK)


def test_preferences_file_keeps_all_else(site):
    site.shell("mkdir -p product/suite/share/wr-qev-1.0a; ln -s product 'p\\x'")
    site.shell("ln -s ../../../real product/suite/share/wr-qev-1.0a/readme.txt")
    real = site.product / "real"
    real.write_bytes(
        b"\xef\xbb\xbfhome=0\r\n[home]\r\nhomes=1\r\n home = old=er\r\n#home=2\nhome=\nlast \377"
    )
    site.shell("cd product; chown 12345 real || :; chmod 604 real; setfacl -m u:nobody:rw real")
    site.shell("setfattr -n user.color -v red product/real || :")
    command = "cd product; stat -c '%u %g %a' real; getfacl -cn real; getfattr -d real"
    before = subprocess.check_output(command, shell=True, cwd=site.root)
    for key, note in (("home", 'had 3 lines that set "home"'), ("new", 'had no line that sets "new"')):
        variables = {"WB_PREFS": "readme", "WB_PREFS_INST_DIR": key, "VORN_INSTALL_DIR": "p\\x"}
        report = site.run("init_wb_prefs", variables=variables)
        assert report.failures == [] and note in report.notes[0]
    assert subprocess.check_output(command, shell=True, cwd=site.root) == before
    assert (site.product / "suite/share/wr-qev-1.0a/readme.txt").is_symlink()
    place = b"p\\x/suite"
    assert real.read_bytes() == (
        b"\xef\xbb\xbfhome="
        + place
        + b"\r\n[home]\r\nhomes=1\r\nhome="
        + place
        + b"\r\n#home=2\nhome="
        + place
        + b"\nlast \377\r\nnew="
        + place
        + b"\r\n"
    )


@pytest.mark.skipif(not IS_ROOT, reason="only root can give files away")
def test_a_group_that_is_lost_takes_its_rights_along(site):
    site.shell("chgrp 4711 $prefs; chmod 664 $prefs")
    report = site.run("init_wb_prefs", within=["setpriv", "--bounding-set=-chown"])
    says(report.notes, 'the group of "./product/suite/part/wr-qev-1.0a/a.prefs" could not be kept')
    assert stat.filemode(site.prefs.stat().st_mode) == "-rw-r--r--" and site.prefs.stat().st_gid != 4711


def test_copy_keeps_modes_and_links_and_replaces_files(site):
    site.shell(
        "mkdir $config/dir; echo new >$config/dir/file; chmod 640 $config/dir/file; chmod 550 $config/dir"
    )
    site.shell(
        "cd $config; ln -s dir/absent link; ln -s dir folder; echo >kept; cp kept dropped; chmod 4755 kept"
    )
    if IS_ROOT:
        site.shell("chown 12345 $config/dropped")
    site.shell("chmod 6755 $config/dropped")
    within = sh('umask 077; exec "$@"') + NO_RIGHTS
    assert site.integrate(within=within).failures == []
    site.shell("chmod g+s $copy $copy/wr-setup; echo newer >>$prefs; echo same >outside")
    site.shell("ln -sf ../../outside $copy/a.prefs; rm $copy/folder")
    assert site.integrate(within=within).failures == []
    names = [".", "dir", "dir/file", "dropped", "folder", "kept", "link", "wr-setup"]
    assert [stat.filemode((site.copy / name).lstat().st_mode) for name in names] == [
        "drwxr-sr-x",
        "dr-xr-x---",
        "-rw-r-----",
        "-rwxr-xr-x" if IS_ROOT else "-rwsr-sr-x",
        "lrwxrwxrwx",
        "-rwsr-xr-x",
        "lrwxrwxrwx",
        "drwxr-sr-x",
    ]
    assert (site.copy / "a.prefs").read_text().endswith("newer\n")
    assert (site.root / "outside").read_text() == "same\n"


def test_what_ends_an_action_with_an_exception_is_a_failure_and_later_actions_run(site):
    site.edit(', files_from = "${SESSION_DIR}/product/suite"', "")
    actions = ["perform_deintegration", "find_wb_components"]
    site.integrate()
    report = site.run(*actions, variables={"log_file": ""}, within=["prlimit", "--nofile=5"])
    assert "an exception ended it: start a command: Too many open files" in report.failures[0]
    assert "find_wb_components returned 0" in report.lines


@keyed_table(
    "command, refusal",
    {
        "rmdir tmp": "TMPDIR names no directory in which copies can be made",
        "rmdir tmp; ln -s workbench/dir tmp": "TMPDIR has to lie outside of the workbench and the product",
        "rmdir tmp; ln -s product tmp": "TMPDIR has to lie outside of the workbench and the product",
        "chmod 0 workbench/dir/file": "cp: ... cannot be copied",
        "chmod 500 workbench/dir; chmod 0 workbench/dir/file": "cp: ... cannot be copied",
        "mkdir $copy; touch $copy/x": '"./workbench/wr-qev-1.0a" is there, and not by this product',
    },
)
def test_check_without_a_sandbox_that_is_not_begun(site, command, refusal):
    site.shell(command)
    before = site.entries()
    report = site.wb_trial("check", "--no-sandbox", "s.toml", within=NO_RIGHTS)
    says([report.refusal], refusal)
    assert report.status == 2 and site.entries() == before


@pytest.mark.skipif(not IS_ROOT, reason="only root can give files away")
def test_check_without_a_sandbox_by_a_user_who_cannot_copy_owners(site):
    site.give_to(ORDINARY_USER)
    site.shell("chown 0 workbench/dir/file")
    report = site.wb_trial("check", "--no-sandbox", "s.toml", user=ORDINARY_USER)
    assert (report.verdict, report.status) == ("as it was", 0), report.text
    assert list(site.temporary.iterdir()) == []
