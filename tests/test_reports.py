"""Whole reports as they are printed, where the text is the point."""

import re

from conftest import ROOT


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
  WB_INSTALL_SUBDIR = "/suite/part"
perform_integration
  runs: "./workbench/wr-qev-1.0a/wr-setup/setup.sh" "./product/suite/part"
perform_integration returned 0
  its command said:
    setup, arguments: 1 ./product/suite/part
init_wb_prefs returned 0
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
perform_integration returned 0
  its command said:
    setup, arguments: 1 ./product/suite/part
  failed: {failure}
1 failure:
  perform_integration: {failure}
"""
    )
    assert report.status == 1


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
