"""What each action makes of the session and the disk."""

from conftest import NO_RIGHTS, keyed_table, says


@keyed_table(
    "assignment, written",
    {
        "SUPPORTED_VERSION=3.1;": 'PATH_STATUS = "ok"',
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
    },
)
def test_what_is_written_about_the_workbench(site, assignment, written):
    site.shell("mkdir -p locked/other product/install.properties; cp workbench/*.properties locked")
    site.shell("echo name=1 >locked/other/install.properties; chmod 555 locked/other locked")
    action = "detect_wb_in_default_path" if "SEARCH" in assignment else "validate_wb_path"
    workbench = {"WB_INTEGRATION_PATH": "workbench"} if "INTEGRATION" not in assignment else {}
    report = site.run(action, "--set", assignment, variables=workbench, within=NO_RIGHTS)
    assert report.lines[1:] == ["  " + written, "passed"]


@keyed_table(
    "names, calls",
    {
        "Workbench work-bench": ['env_set_string("WB_INTEGRATION_SUPPORTED", "no")'],
        "off-workbench docs a-workbench-b workbench": [
            'env_set_string("WB_INTEGRATION_SUPPORTED", "yes")',
            'env_set_string("WB_INSTALL_SUBDIR", "/a-workbench-b")',
        ],
    },
)
def test_component_for_the_workbench(site, names, calls):
    component = '[[component]]\nname = "{0}"\nsubdir = "/{0}"\ninstall_condition = {1}\n'
    components = [component.format(name, str(name != "off-workbench").lower()) for name in names.split()]
    site.session.write_text("".join(components))
    report = site.run("find_wb_components", "--trace")
    assert [line for line in report.lines if line.startswith("env_set")] == calls


def test_integration_that_cannot_begin_touches_nothing(site):
    site.log.touch()
    before = site.entries()
    report = site.integrate("workbench/install.properties/")
    says(report.failures, 'the workbench "workbench/install.properties/" is no directory')
    assert site.entries() == before


@keyed_table("marker, is_found", {".prefs": True, ".PREFS": False, "": False})
def test_preferences_files_where_nothing_is_integrated(site, marker, is_found):
    site.edit("workbench-part", "part")
    assert site.install("--set", f"WB_PREFS={marker}").status == 0
    assert (f"home={site.product}/suite\n" in site.prefs.read_text()) == is_found


@keyed_table(
    "action, unset",
    {
        "detect_wb_in_default_path": "DEFAULT_SEARCH_PATH",
        "validate_wb_path": "SUPPORTED_VERSION\nWB_INTEGRATION_PATH",
        "find_wb_components": "",
        "perform_integration": "WB_INTEGRATION_PATH",
        "perform_deintegration": "VORN_INSTALL_DIR",
        "init_wb_prefs": "VORN_INSTALL_DIR",
    },
)
def test_without_variables_every_action_names_what_it_missed(site, action, unset):
    site.session.write_text("[variables]")
    before = site.entries()
    report = site.run(action, action)
    assert f"{action} returned " in report.text and report.status == ("integration" in action)
    says(report.warnings, unset)
    assert site.entries() == before
