"""Whole reports as they are printed, where the text is the point."""

import re

import pexpect
import pytest

from conftest import ROOT, needs_proc, needs_terminal, sh, table

WARNING = 'no listed path contains ".ini", the text in WB_PREFS'


def test_install_that_failed(site):
    site.lay("echo setup; exit 3")
    report = site.wb_trial("install", "s.toml", "--set", "WB_PREFS=.ini")
    setup = '"./workbench/wr-qev-1.0a/wr-setup/setup.sh" "./product/suite/part"'
    assert (
        report.text.partition("perform_integration\n")[2]
        == f"""\
  runs: {setup}
    setup
perform_integration returned 3
  failed: the command {setup} ended with status 3
init_wb_prefs returned 0
1 warning:
  {WARNING}
1 failure:
  perform_integration: the command {setup} ended with status 3
failed
"""
    )


ENDS = {
    "warning": (":", "install --set WB_PREFS=.ini", "passed, with 1 warning\n"),
    "strict": (":", "--strict install --set WB_PREFS=.ini", f"by --strict:\n  {WARNING}\nfailed\n"),
    "many changes": ("touch a b c d e", "check --no-sandbox", "A ./workbench/c and 2 more\nfailed\n"),
    "stopped": (":", "install --set SUPPORTED_VERSION=", "SUPPORTED_VERSION is empty\nfailed\n"),
}


@table("setup, arguments, end", ENDS)
def test_end(site, setup, arguments, end):
    site.lay(setup)
    report = site.wb_trial(*arguments.split(), "s.toml")
    assert report.text.endswith(end), report.text


@needs_terminal
def test_what_a_script_prints_is_shown_as_it_comes(site):
    site.lay(r"printf 'a\033\nno end'; read answer </dev/tty")
    install = pexpect.spawn("wb-trial install s.toml", cwd=site.root, env=site.environment)
    install.expect_exact("\r\n    a\\x1b\r\n", timeout=20)
    install.sendline("answer")
    install.expect_exact("\r\n    no end\r\n", timeout=20)


@pytest.mark.parametrize("name", ["/dev/stderr", "/dev/stdout", "/dev/fd/1", "/proc/self/fd/2"])
def test_log_and_report_in_one_file(site, name):
    report = site.run("find_wb_components")
    site.run("find_wb_components", variables={"log_file": name}, within=sh('exec "$@" >x 2>&1'))
    assert (site.root / "x").read_text() == site.log.read_text() + report.text


@needs_proc
def test_the_check_that_the_packaging_document_shows(site):
    document = (ROOT / "docs/packaging.md").read_text()
    [session] = re.findall(r"```toml\n(\[variables\].*?)```", document, re.S)
    [shown] = re.findall(r"\$ wb-trial check gauge.toml\n(.*?)```", document, re.S)
    scripts = "gauge/tools/ide/wr-qev-2.0b/wr-setup"
    for file, text in {
        "my workbench/install.properties": "name=3.1\n",
        "gauge/tools/vorn/about": "",
        "gauge/tools/prefs/gauge.prefs": "units=metric\ngaugeHome=\n",
        f"{scripts}/enter.sh": "#!/bin/sh\ntrue\n",
        f"{scripts}/uninst_wr_qev.sh": "#!/bin/sh\necho took gauge out\n",
    }.items():
        (site.root / file).parent.mkdir(parents=True, exist_ok=True)
        (site.root / file).write_text(text)
    site.shell(f"chmod 755 {scripts}/uninst_wr_qev.sh")
    site.session.write_text(session.replace("/srv", str(site.root)))
    first, printed = site.wb_trial("check", "--no-sandbox", "s.toml").text.split("\n", 1)
    assert first == "The disk changes: this check really installs and uninstalls."
    printed = re.sub("^What the last list .*", "Nothing on the disk was changed.", printed, flags=re.M)
    assert printed.replace("./", "/srv/") == shown
