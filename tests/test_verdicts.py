"""Whether the workbench is as it was after an install and an uninstall, told by every way to check."""

import pytest
from conftest import BUILD, first, needs_strace, says, table

BY_DESIGN = "by design: the de-integration script, the location in 1 preferences file"


VERDICTS = {
    "a folder is removed again": ("mkdir x; echo >x/y", "rm -r x", "as it was"),
    "modes are set back": ("chmod 700 .; chmod 600 dir", "chmod 755 . dir", "as it was"),
    "set-user-ID stays": ("chmod u+s dir/file", ":", "changed"),
    "a file is made anew": ("rm dir/file", "touch dir/file", "as it was"),
    "a folder is made anew": ("rm -r dir", "mkdir dir; touch dir/file dir/other", "as it was"),
    "a file is moved back": ("mv dir/file x", "mv x dir/file", "as it was"),
    "only times differ": ("touch -d 2001-01-01 . dir dir/file", ":", "as it was"),
    "same size and time": ("cp -p *.properties x; sed -i s/m/n/ *s", "touch -r x *s; rm x", "changed"),
    "an attribute stays": ("setfattr -n user.my.overlay.y dir/file", ":", "changed"),
    "an ACL stays": ("setfacl -m u:$(id -u):r dir/file", ":", "changed"),
    "a file becomes a link to the same": ("cp dir/file x; ln -sf ../x dir/file", "rm x", "changed"),
}


@table("setup, uninstall, verdict", VERDICTS)
def test_verdict(site, way, setup, uninstall, verdict):
    site.lay(setup, uninstall)
    report = way(site)
    assert report.verdict == verdict, report.text


THREAD = "import ctypes, threading, time; threading.Thread(target=time.sleep, args=(5,)).start(); "
THREAD += "ctypes.CDLL(None).syscall(60, 0)"
PROCESSES = {
    "it is ended": ("sleep 99 & echo $! >p", "kill $(cat p); while kill -0 $(cat p); do :; done; rm p", ""),
    "it ends a little later": ("sleep 0.5 &", ":", ""),
    "two go on, one without its parent": ("sleep 5.5 & (sleep 5.75 &)", ":", "sleep 5.5\nsleep 5.75"),
    "it has no name": ("bash -c 'exec -a \"\" sleep 5.25' &", ":", "sleep 5.25"),
    "its main thread has ended": (f"/usr/bin/python3 -c '{THREAD}' &", ":", "python3"),
}


@table("setup, uninstall, still_running", PROCESSES)
def test_process(site, way, setup, uninstall, still_running):
    site.lay("exec >/dev/null 2>&1; " + setup, uninstall)
    report = way(site)
    assert report.verdict == "as it was", report.text
    says([line.partition("after the uninstall: ")[2] for line in sorted(report.failures)], still_running)


@needs_strace
def test_process_that_ends_while_it_is_looked_at(site):
    gone = ["strace", "-f", "-qq", "-o", "/dev/null", "-P", "/proc/1/stat", "--inject=read:error=ESRCH"]
    report = site.wb_trial("check", "--no-sandbox", "s.toml", within=gone)
    assert report.verdict == "as it was", report.text


PRODUCTS = {
    "its script and the text of preferences": (":", ":", False),
    "another file": ("echo >>$product/suite/file", ":", True),
    "the mode of preferences": ("chmod 600 $prefs", ":", True),
    "preferences that are gone": (":", "rm $prefs", True),
    "another line before the location was set": ("echo c=3 >>$prefs", ":", True),
    "another line after that": (":", "echo c=3 >>$prefs", True),
    "another line in its script": (":", "echo >>$script", True),
}


@table("setup, uninstall, has_note", PRODUCTS)
def test_product(site, way, setup, uninstall, has_note):
    site.lay(setup, uninstall)
    (site.product / "suite/file").touch()
    report = way(site)
    assert report.verdict == "as it was", report.text
    assert any("leaves the product changed" in note for note in report.notes) == has_note, report.text


def test_preferences_behind_a_link(site, way):
    site.shell("mkdir product/suite/etc; mv $prefs product/suite/etc/real; ln -s ../../etc/real $prefs")
    site.edit(r"share\wr-qev-1.0a\readme.txt", r"part\wr-qev-1.0a\a.prefs")
    report = way(site, variables={"WB_PREFS": r"0a\a"})
    assert report.changes == [BY_DESIGN], report.text


def test_what_is_ignored(site, sandbox):
    patterns = ["${SESSION_DIR}/home/.c*", "${SESSION_DIR}/workbench"]
    site.lay("mkdir $HOME/.cache; touch $HOME/.cache/x $HOME/file x")
    site.session.write_text(f"ignore = {patterns}\n" + site.session.read_text())
    report = sandbox(site)
    assert report.changes == ["A ./home/file", "A ./workbench/x", BY_DESIGN, "ignored: A ./home/.cache/"]
    says(report.failures, "the workbench changed: A ./workbench/x\nthe product: A ./home/file")


EARLIER = {
    "an empty folder is none": ("mkdir $copy", 1, "the uninstall leaves the workbench changed"),
    "this product's": ("cp -R $config $copy; ln -s $copy/x $script", 2, ""),
    "a folder of another one": ("mkdir $copy; touch $copy/other", 2, "not by this product"),
}


@table("before, status, sentence", EARLIER)
def test_earlier_integration(site, way, before, status, sentence):
    """Its uninstall would remove it, so it is not touched."""
    site.shell(before)
    report = way(site)
    assert (report.status, sentence in report.text) == (status, True), report.text


NESTED = {
    "workbench in product": ("mv workbench product", "echo >x", "changed"),
    "product in workbench": ("mv product workbench", "echo >x", "changed"),
    "which alone changes": ("mv product workbench", "echo >product/x", "as it was"),
}


@table("move, setup, verdict", NESTED)
def test_one_in_the_other(site, way, move, setup, verdict):
    site.lay(setup)
    site.shell(move)
    inner, outer = move.split()[1:]
    site.edit(f"DIR}}/{inner}", f"DIR}}/{outer}/{inner}")
    report = way(site)
    assert report.verdict == verdict, report.text
    assert any("leaves the product changed" in note for note in report.notes) == (verdict == "as it was")


def test_workbench_that_is_gone_with_its_folder(site, way):
    site.lay(uninstall='rm -r "${PWD%/*}"')
    site.shell("mkdir in; mv workbench in")
    site.edit("DIR}/workbench", "DIR}/in/workbench")
    assert way(site).verdict == "changed"


@pytest.mark.skipif("sanitize" in BUILD.parts, reason="sanitizers read their options in /proc")
def test_without_proc(site, root_sandbox):
    mounting = ["unshare", "-m", *first("mount -t tmpfs x /proc")]
    report = site.wb_trial("check", "--no-sandbox", "s.toml", within=mounting)
    assert report.notes[0] == "there is no /proc: what still runs after the uninstall is not seen"
