"""What each action makes of the session and the disk."""

from conftest import NO_RIGHTS, keyed_table, says


WRITTEN = {
    "SUPPORTED_VERSION=3.1": 'PATH_STATUS = "unsupported"',
    "SUPPORTED_VERSION=2;3.1;4;": 'PATH_STATUS = "ok"',
    "SUPPORTED_VERSION=2;;": 'PATH_STATUS = "ok"',
    "SUPPORTED_VERSION=": 'PATH_STATUS = "undefined"',
    "WB_INTEGRATION_PATH=locked": 'PATH_STATUS = "notwritable"',
    "WB_INTEGRATION_PATH=locked/other": 'PATH_STATUS = "unsupported"',
    "WB_INTEGRATION_PATH=product": 'PATH_STATUS = "undefined"',
    "DEFAULT_SEARCH_PATH=workbench// absent": 'WB_INTEGRATION_PATH = "workbench//"',
    "DEFAULT_SEARCH_PATH= absent  ./workbench workbench ": 'WB_INTEGRATION_PATH = "./workbench"',
    "DEFAULT_SEARCH_PATH=absent\tworkbench": 'WB_INTEGRATION_PATH = ""',
}


@keyed_table("assignment, written", WRITTEN)
def test_what_is_written_about_the_workbench(site, assignment, written):
    site.shell("mkdir -p locked/other product/install.properties; cp workbench/*.properties locked")
    site.shell("echo name=1 >locked/other/install.properties; chmod 555 locked/other locked")
    action = "detect_wb_in_default_path" if "SEARCH" in assignment else "validate_wb_path"
    workbench = {"WB_INTEGRATION_PATH": "workbench"} if "INTEGRATION" not in assignment else {}
    report = site.run(action, "--set", assignment, variables=workbench, within=NO_RIGHTS)
    assert report.lines[1:] == ["  " + written, "passed"]


MARKERS = {".prefs": True, ".PREFS": False, "": False}


@keyed_table("marker, is_found", MARKERS)
def test_preferences_files_where_nothing_is_integrated(site, marker, is_found):
    site.edit("workbench-part", "part")
    assert site.install("--set", f"WB_PREFS={marker}").failures == []
    assert (f"home={site.product}/suite\n" in site.prefs.read_text()) == is_found


def test_without_variables_actions_name_what_they_miss(site):
    site.session.write_text("component = []\n[variables]")
    before = site.tree()
    actions = "init_wb_prefs perform_integration validate_wb_path detect_wb_in_default_path"
    report = site.run(*actions.split())
    says(report.warnings, "VORN_INSTALL_DIR\nWB_INTEGRATION_PATH\nSUPPORTED_VERSION\nDEFAULT_SEARCH_PATH")
    says(report.failures, 'perform_integration: the workbench "" is no directory')
    assert site.tree() == before
