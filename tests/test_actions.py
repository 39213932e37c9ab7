"""What each action makes of the session and the disk."""

import re

from conftest import NO_RIGHTS, keyed_table, says


def written(report):
    return dict(re.findall(r'^  (\w+) = "(.*)"$', report.text, re.M))


@keyed_table(
    "versions, status",
    {"3.1;": "ok", "3.1": "unsupported", "2;3.1;4;": "ok", ";": "ok", "2;;": "ok", "": "undefined"},
)
def test_verdict_on_a_workbench_of_version_3_1(site, versions, status):
    variables = {"WB_INTEGRATION_PATH": "workbench", "SUPPORTED_VERSION": versions}
    assert written(site.run("validate_wb_path", variables=variables)) == {"PATH_STATUS": status}


@keyed_table(
    "command, status",
    {
        "chmod 555 workbench": "notwritable",
        "echo name=1 >workbench/install.properties; chmod 555 workbench": "unsupported",
        "rm workbench/*.properties; mkdir workbench/install.properties": "undefined",
    },
)
def test_the_properties_come_first_then_the_versions_then_writing(site, command, status):
    site.shell(command)
    variables = {"WB_INTEGRATION_PATH": "workbench"}
    report = site.run("validate_wb_path", variables=variables, within=NO_RIGHTS)
    assert written(report) == {"PATH_STATUS": status}


@keyed_table(
    "places, proposed",
    {
        "workbench": "workbench",
        "workbench// absent": "workbench//",
        " absent  ./workbench workbench ": "./workbench",
        "absent\tworkbench": "",
    },
)
def test_proposed_workbench(site, places, proposed):
    variables = {"WB_INTEGRATION_PATH": "old", "DEFAULT_SEARCH_PATH": places}
    report = site.run("detect_wb_in_default_path", variables=variables)
    assert written(report) == {"WB_INTEGRATION_PATH": proposed}


@keyed_table(
    "names, found",
    {
        "Workbench work-bench": {"WB_INTEGRATION_SUPPORTED": "no"},
        "off-workbench docs a-workbench-b workbench": {
            "WB_INTEGRATION_SUPPORTED": "yes",
            "WB_INSTALL_SUBDIR": "/a-workbench-b",
        },
    },
)
def test_component_for_the_workbench(site, names, found):
    component = '[[component]]\nname = "{0}"\nsubdir = "/{0}"\ninstall_condition = {1}\n'
    components = [component.format(name, str(name != "off-workbench").lower()) for name in names.split()]
    site.session.write_text("".join(components))
    assert written(site.run("find_wb_components")) == found


def test_integration_that_cannot_begin_touches_nothing(site):
    site.log.touch()
    before = site.entries()
    report = site.integrate("workbench/install.properties/")
    says(report.failures, 'the workbench "workbench/install.properties/" is no directory')
    assert site.entries() == before


@keyed_table("marker, is_found", {".prefs": True, ".PREFS": False, "": False})
def test_files_that_a_marker_finds_where_nothing_is_integrated(site, marker, is_found):
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
def test_without_variables_every_action_runs_to_its_end_and_names_what_it_missed(site, action, unset):
    site.session.write_text("")
    before = site.entries()
    report = site.run(action)
    assert f"{action} returned " in report.text and report.status == ("integration" in action)
    needless = "(log_file|VORN_INSTALL_SUBDIR) "
    says([warning for warning in report.warnings if not re.match(needless, warning)], unset)
    assert site.entries() == before
