"""Whole reports as they are printed, where the text is the point."""

import re
import shutil

import pexpect
import pytest

from conftest import ROOT, needs_proc, needs_terminal, sh, table


def test_install(site):
    report = site.wb_trial("install", "s.toml")
    assert (
        report.text
        == """\
detect_wb_in_default_path returned 0
  WB_INTEGRATION_PATH = "./workbench"
validate_wb_path returned 0
  PATH_STATUS = "ok"
find_wb_components returned 0
  WB_INTEGRATION_SUPPORTED = "yes"
perform_integration
  runs: "./workbench/wr-qev-1.0a/wr-setup/setup.sh" "./product/suite/part"
    setup, arguments: 1 ./product/suite/part
perform_integration returned 0
init_wb_prefs returned 0
passed
"""
    )
    assert report.status == 0


def test_integration_that_failed(site):
    site.shell("chmod -x $uninstall")
    report = site.integrate()
    failure = (
        'the uninstall script "./workbench/wr-qev-1.0a/wr-setup/uninst_wr_qev.sh" cannot be executed '
        "(Permission denied), so nothing undoes what the setup script does; is it in the product, executable?"
    )
    assert (
        report.text
        == f"""\
perform_integration
  runs: "./workbench/wr-qev-1.0a/wr-setup/setup.sh" "./product/suite/part"
    setup, arguments: 1 ./product/suite/part
perform_integration returned 0
  failed: {failure}
1 failure:
  perform_integration: {failure}
failed
"""
    )
    assert report.status == 1


def test_good_check_fits_on_a_screen_and_ends_with_its_verdict(site):
    shutil.copytree(ROOT / "examples", site.root / "examples")
    report = site.wb_trial("check", "--no-sandbox", "examples/session.toml")
    assert len(report.lines) <= 34 and report.status == 0
    assert report.lines[-1] == "passed"


ONE_WARNING = '1 warning:\n  no listed path contains ".ini", the text in WB_PREFS'
UNINSTALL = "the uninstall leaves the workbench changed: A ./workbench"


@table(
    "setup, arguments, status, end",
    {
        "warning": (":", "install --set WB_PREFS=.ini", 0, f"{ONE_WARNING}\npassed, with 1 warning\n"),
        "strict": (
            ":",
            "--strict install --set WB_PREFS=.ini",
            1,
            ONE_WARNING.replace(":", ", counted by --strict:", 1) + "\nfailed\n",
        ),
        "warning and failure": (
            "touch a b c d e",
            "check --no-sandbox --set WB_PREFS=.ini",
            1,
            f"{ONE_WARNING}\n1 failure:\n"
            f"  check: {UNINSTALL}/a, A ./workbench/b, A ./workbench/c and 2 more\nfailed\n",
        ),
        "nothing was run": (":", "install --plugin ./absent", 2, "No such file or directory\n"),
        "stopped": (":", "install --set SUPPORTED_VERSION=", 1, "SUPPORTED_VERSION is empty\nfailed\n"),
    },
)
def test_end(site, setup, arguments, status, end):
    site.lay(setup)
    report = site.wb_trial(*arguments.split(), "s.toml")
    assert report.text.endswith(end) and report.status == status, report.text


@needs_terminal
def test_what_a_script_prints_is_shown_as_it_comes(site):
    site.lay(r"printf 'a\033\nno end'; exec sleep 99")
    install = pexpect.spawn("wb-trial install s.toml", cwd=site.root, env=site.environment)
    install.expect_exact("\r\n    a\\x1b\r\n", timeout=20)
    install.close()
    site.lay(r"printf 'a\nno end'")
    assert site.integrate().output == ["a", "no end"]


@pytest.mark.parametrize("name", ["/dev/stderr", "/dev/stdout", "/dev/fd/1", "/proc/self/fd/2"])
def test_log_and_report_in_one_file(site, name):
    site.run("find_wb_components", variables={"log_file": name}, within=sh('exec "$@" >x 2>&1'))
    assert (site.root / "x").read_text().splitlines() == [
        "workbench_int: find_wb_components entered",
        "workbench_int: workbench integration supported",
        "find_wb_components returned 0",
        '  WB_INTEGRATION_SUPPORTED = "yes"',
        "passed",
    ]


@needs_proc
def test_the_check_that_the_packaging_document_shows(site):
    """It is made without a sandbox, where the first line and one other differ."""
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
    printed = site.wb_trial("check", "--no-sandbox", "s.toml").text.split("\n", 1)[1]
    printed = re.sub("^What the last list .*", "Nothing on the disk was changed.", printed, flags=re.M)
    assert printed.replace("./", "/srv/") == shown
