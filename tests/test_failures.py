"""What the plug-in does not notice by design: wb-trial says what failed, and nothing is lost or half written."""

import os
import stat
import subprocess

import pytest

from conftest import IS_ROOT, NO_RIGHTS, ORDINARY_USER, keyed_table, says, sh

only_root = pytest.mark.skipif(not IS_ROOT, reason="only root can give files away")
FULL_DISK = sh("trap '' XFSZ; ulimit -f 0; exec \"$@\"")


def contents(site):
    files = [path for path in site.root.rglob("*") if path.is_file() and os.access(path, os.R_OK)]
    return {path: path.read_bytes() for path in files if path != site.log}


def fails(site, action, failures, within=NO_RIGHTS):
    """Fails unless the action fails so, and all files are as they were but for new ones."""
    before = contents(site)
    report = site.run(action, variables={"WB_INTEGRATION_PATH": site.workbench}, within=within)
    says(report.failures, failures)
    assert before.items() <= contents(site).items() and not list(site.root.rglob(".wb-trial-*"))


UNINSTALL = 'the uninstall script "./workbench/wr-qev-1.0a/wr-setup/uninst_wr_qev.sh"'
SCRIPT = 'the de-integration script "./product/suite/vorn/wb_deintegrate.sh"'


INTEGRATIONS = {
    "rm -r workbench; touch workbench": 'the workbench "./workbench" is no directory',
    "chmod 555 workbench": "folder_create ... failed: Permission denied",
    "ln -s /absent $copy": "folder_create ... failed: Not a directory",
    "mkdir -m 700 outside $copy; ln -s ../../outside $copy/wr-setup": 'Not a directory: ... /wr-setup"',
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
}


@keyed_table("command, failures", INTEGRATIONS)
def test_integration(site, command, failures):
    site.shell(command)
    fails(site, "perform_integration", failures)


ON_A_FULL_DISK = {
    "perform_integration": "the log cannot be written\ndir_copy ... failed: File too large",
    "init_wb_prefs": 'the preferences file ... /a.prefs" was not changed: File too large',
}


@keyed_table("action, failures", ON_A_FULL_DISK)
def test_full_disk(site, action, failures):
    fails(site, action, failures, FULL_DISK)


def test_integration_over_another_product(site):
    site.shell("mkdir $copy; touch $copy/x")
    says(site.install().failures, '"./workbench/wr-qev-1.0a" is there, and not by this product')
    assert [file.name for file in site.copy.iterdir()] == ["x"]


LOST = 'the earlier integration in "./second/wr-qev-1.0a" has lost its de-integration script to this one'
LATER_INTEGRATIONS = {
    "rm -r second": "",
    "rm -r second; ln -s workbench second": "",
    ":": LOST,
    "chmod 444 $script": f"{SCRIPT} cannot be written (Permission denied)\n{LOST}",
}


@keyed_table("command, failures", LATER_INTEGRATIONS)
def test_integration_after_one_in_another_workbench(site, command, failures):
    site.shell("cp -R workbench second")
    site.integrate("./second")
    site.shell(command)
    report = site.integrate(within=NO_RIGHTS)
    says(report.failures, failures)


def test_script_that_removes_another_copy(site):
    site.shell("cp -R workbench second")
    site.integrate("./second")
    site.shell("sed 's,/wb_deintegrate,/wb_deintegrata,' $program/lib* >broken.so")
    arguments = ["--plugin", "./broken.so", "--set", "WB_INTEGRATION_PATH=workbench"]
    report = site.run("perform_integration", *arguments)
    assert f'{SCRIPT} removes "./second/wr-qev-1.0a" and not the copy; integrate again' in report.failures[0]


UNDOINGS = {
    ":": "",
    "rm $script": 'nothing undoes the integration in "./workbench/wr-qev-1.0a", for there is no',
    "rm -r $script $copy": "the product is not integrated: there is no",
    "truncate -s -2 $script": f"{SCRIPT} is there only in part; integrate again\nended with status 2",
    "chmod 311 $script": f"{SCRIPT} cannot be read; integrate again\nended with status 2",
    "rm $script; mkdir $script": f"{SCRIPT} is no regular file; integrate again\nended with status 126",
    "mv $copy copy; ln -s ../copy $copy": "removes was not there; is it uninstalled already?",
    "mv 'work\\bench' moved": "removes was not there; uninstall from the folder from which",
    "chmod 555 workbench": 'ended with status 1\nthe directory ... /wr-qev-1.0a" is still there; see',
}


@keyed_table("command, failures", UNDOINGS)
def test_undoing(site, command, failures):
    site.shell("mv workbench 'work\\bench'; ln -s 'work\\bench' workbench")
    site.integrate("./work\\bench")
    site.shell(command)
    report = site.wb_trial("uninstall", "s.toml", within=NO_RIGHTS)
    says(report.failures, failures)


def test_undoing_where_the_workbench_was_moved(site):
    site.integrate()
    site.shell("mv workbench moved")
    failure = "the workbench was moved or removed. Where it was moved, ... move it back and uninstall again"
    says(site.wb_trial("uninstall", "s.toml").failures, failure)


NO_LINE = "the key or the value does not fit into a line of such a file"


PREFERENCES = {
    "chmod 555 $config": "Permission denied",
    "chmod 311 $prefs": "Permission denied",
    "rm $prefs; mkdir $prefs; sed -i 's,share.*txt,part/wr-qev-1.0a/a.prefs,' s.toml": "it is not a regular",
    r"printf 'home=\000' >$prefs": "it is in UTF-16, or no text; save it as UTF-8",
    r"printf '\377\376' >$prefs": "it is in UTF-16, or no text; save it as UTF-8",
    'sed -i \'s/"home"/""/\' s.toml': "the key is empty; is WB_PREFS_INST_DIR set?",
    'sed -i \'s/"home"/"ho=me"/\' s.toml': NO_LINE,
}


@keyed_table("command, failure", PREFERENCES)
def test_preferences_file_that_cannot_be_set(site, command, failure):
    site.shell(command)
    fails(site, "init_wb_prefs", f'a.prefs" was not changed: {failure}')


def test_key_with_a_line_end(site):
    says(site.run("init_wb_prefs", variables={"WB_PREFS_INST_DIR": "ho\nme"}).failures, NO_LINE)


def test_preferences_file_keeps_all_else(site):
    site.shell("mkdir -p product/suite/share/wr-qev-1.0a; ln -s product 'p\\x'")
    site.shell("ln -s ../../../real product/suite/share/wr-qev-1.0a/readme.txt")
    real = site.product / "real"
    text = b"\xef\xbb\xbfhome=%b\r\n[home]\r\nhomes=1\r\n%b%b\r\n#home=2\nhome=%b\nlast \377"
    real.write_bytes(text % (b"0", b" home = ", b"old=er", b""))
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
    assert real.read_bytes() == text % (place, b"home=", place, place) + b"\r\nnew=%b\r\n" % place


@only_root
def test_a_group_that_is_lost_takes_its_rights_along(site):
    site.shell("chgrp 4711 $prefs; chmod 664 $prefs")
    report = site.run("init_wb_prefs", within=["setpriv", "--bounding-set=-chown"])
    says(report.notes, 'the group of "./product/suite/part/wr-qev-1.0a/a.prefs" could not be kept')
    assert stat.filemode(site.prefs.stat().st_mode) == "-rw-r--r--" and site.prefs.stat().st_gid != 4711


def test_copy_keeps_modes_and_links_and_replaces_files(site):
    site.shell("cd $config; mkdir dir; echo >dir/file; chmod 640 dir/file; chmod 550 dir")
    site.shell("cd $config; ln -s dir/absent link; ln -s dir folder; echo >kept; chmod 4755 kept")
    site.shell("cd $config; echo >dropped; chown 12345 dropped || :; chmod 6755 dropped")
    within = sh('umask 077; exec "$@"') + NO_RIGHTS
    assert site.integrate(within=within).failures == []
    site.shell("chmod g+s $copy $copy/wr-setup; echo newer >>$prefs; echo same >outside")
    site.shell("ln -sf ../../outside $copy/a.prefs; rm $copy/folder")
    assert site.integrate(within=within).failures == []
    modes = {
        ".": "drwxr-sr-x",
        "dir": "dr-xr-x---",
        "dir/file": "-rw-r-----",
        "dropped": "-rwxr-xr-x" if IS_ROOT else "-rwsr-sr-x",
        "folder": "lrwxrwxrwx",
        "kept": "-rwsr-xr-x",
        "link": "lrwxrwxrwx",
        "wr-setup": "drwxr-sr-x",
    }
    assert {name: stat.filemode((site.copy / name).lstat().st_mode) for name in modes} == modes
    assert (site.copy / "a.prefs").read_text().endswith("newer\n")
    assert (site.root / "outside").read_text() == "same\n"


def test_what_ends_an_action_with_an_exception_is_a_failure_and_later_actions_run(site):
    site.edit(', files_from = "${SESSION_DIR}/product/suite"', "")
    actions = ["perform_deintegration", "find_wb_components"]
    site.integrate()
    report = site.run(*actions, variables={"log_file": ""}, within=["prlimit", "--nofile=5"])
    assert "an exception ended it: start a command: Too many open files" in report.failures[0]
    assert "find_wb_components returned 0" in report.lines


NOT_BEGUN = {
    "rmdir tmp": "TMPDIR names no directory in which copies can be made",
    "rmdir tmp; ln -s workbench/dir tmp": "TMPDIR has to lie outside of the workbench and the product",
    "rmdir tmp; ln -s product tmp": "TMPDIR has to lie outside of the workbench and the product",
    "chmod 0 workbench/dir/file": "cp: ... cannot be copied",
    "chmod 500 workbench/dir; chmod 0 workbench/dir/file": "cp: ... cannot be copied",
}


@keyed_table("command, refusal", NOT_BEGUN)
def test_check_without_a_sandbox_that_is_not_begun(site, command, refusal):
    site.shell(command)
    report = site.wb_trial("check", "--no-sandbox", "s.toml", within=NO_RIGHTS)
    says([report.refusal], refusal)
    assert not site.script.exists() and not list(site.root.glob("tmp/wb-trial-*"))


@only_root
def test_mode_of_a_copy_that_is_somebody_elses(site):
    site.give_to(ORDINARY_USER)
    site.shell("mkdir -m 777 $copy")
    report = site.integrate(user=ORDINARY_USER)
    assert "stays 0777, for the folder is somebody else's" in report.notes[0]
