"""A packager's mistakes, and what wb-trial says of them before it runs anything."""

import re

from conftest import keyed_table, says

SCRIPTS = "./product/suite/part/wr-qev-1.0a/wr-setup"


@keyed_table(
    "assignment, sentence",
    {
        "WB_INTEGRATION_PATH=workbench": '"workbench" is relative: ... write it from the root',
        "VORN_INSTALL_DIR=product": '"product" is relative: ... write it from the root',
        "VORN_INSTALL_DIR=~/product": 'VORN_INSTALL_DIR is "~/product", ... write the path out',
        "VORN_INSTALL_DIR=${HOME}/product": 'VORN_INSTALL_DIR is "${HOME}/product", ... write the path out',
        "VORN_INSTALL_DIR=/absent": 'VORN_INSTALL_DIR is "/absent", which is not there',
        "VORN_INSTALL_SUBDIR=suite": '"./productsuite", which ... is a slash missing before "suite"',
        "DEFAULT_SEARCH_PATH=/opt/a  /opt/b": "DEFAULT_SEARCH_PATH has two blanks in a row",
        "DEFAULT_SEARCH_PATH= /opt/a": "DEFAULT_SEARCH_PATH ... begins with one; ... write single blanks",
        "log_file=absent/log": 'there is no folder "./absent" for the log; make it',
        "log_file=${HOME}/log": 'log_file is "${HOME}/log", ... write the path out',
        "WORKBENCH_SCRIPT_NAME=setup.sh": (
            f'there is no "setup.sh.sh" in "{SCRIPTS}/", but "setup.sh", "uninst_wr_qev.sh"; '
            "WORKBENCH_SCRIPT_NAME has to be the name of one of them, written without .sh"
        ),
        "WORKBENCH_SCRIPT_NAME=": 'there is no ".sh" ... WORKBENCH_SCRIPT_NAME is not set',
        "WB_PREFS=.ini": 'no listed path contains ".ini", the text in WB_PREFS',
    },
)
def test_mistake_in_a_variable(site, assignment, sentence):
    says(site.install("--set", assignment).warnings, sentence)


@keyed_table(
    "command, sentence",
    {
        ":": "",
        "chmod -x $setup": f'"{SCRIPTS}/setup.sh" is not executable; chmod +x it',
        "sed -i 1d $setup": "",
        r"sed -i 's/$/\r/' $setup": '/setup.sh" has lines that end in a carriage return; save it with',
        "sed -i '1s|.*|#!/opt/absent/bash -e|' $uninstall": (
            f'"{SCRIPTS}/uninst_wr_qev.sh" names "/opt/absent/bash" in its first line, which is not there'
        ),
        "sed -i '1s|.*|#!/usr/bin/env absent|' $setup": (
            '/setup.sh" names "absent" in its first line, which no directory in PATH has'
        ),
        "sed -i '1s|.*|#!/usr/bin/env|' $uninstall": 'names no program behind "/usr/bin/env"',
        "sed -i '1s|.*|#!/usr/bin/env -S sh|' $uninstall": "",
        "rm $uninstall": (
            f'there is no "uninst_wr_qev.sh" in "{SCRIPTS}/", but "setup.sh"; without it, nothing undoes'
        ),
        "rm -r product/suite/vorn": (
            'there is no "./product/suite/vorn" for the de-integration script; the product has to bring'
        ),
        "mkdir $copy; touch $copy/x": (
            '"./workbench/wr-qev-1.0a" is there, and not by this product ... give yours a name of its own'
        ),
        "mv $config ${config}b; sed -i s/1.0a/1.0ab/ s.toml": (
            '"share/wr-qev-1.0ab/readme.txt" decides that the configuration is "wr-qev-1.0a", '
            'and there is no such directory in "./product/suite/part"; its name has to be wr-qev- and four'
        ),
        "mv $config ${config%a}; sed -i s/1.0a/1.0/ s.toml": (
            'the configuration is "wr-qev-1.0"; its name has to be wr-qev- and four characters'
        ),
        "sed -i s,/suite/part,/part, s.toml": (
            'VORN_INSTALL_DIR and subdir make "./product/part", which is not there; is it misspelt?'
        ),
        "sed -i s/workbench-part/PD-Workbench/ s.toml": (
            'no component to be installed has "workbench" in its name: "PD-Workbench" (differs in case only)'
        ),
        "sed -i 's/files_from.*}/install_condition=false}/' s.toml": (
            'no component to be installed has "workbench" in its name: none is to be installed\n'
            'no listed path contains ".prefs"'
        ),
        "sed -i 's/off-workbench.*false/a-workbench\"/' s.toml": (
            'several components have "workbench" in their names; the first one counts, "a-workbench"\n'
            'decides that the configuration is "wr-qev-1.0a", and there is no such directory in "./product"'
        ),
        "sed -i 's/, files = .*/ }]/' s.toml": (
            'no listed path contains "wr-qev-", so there is no configuration\n'
            'no listed path contains ".prefs"'
        ),
        "sed -i 's,product/suite\",product\",' s.toml": (
            'there is no preferences file "./product/suite/suite/part/wr-qev-1.0a/a.prefs", which the listed '
            'path "suite/part/wr-qev-1.0a/a.prefs" makes; it has to be listed by its path in'
        ),
    },
)
def test_mistake_in_the_product_or_its_session(site, command, sentence):
    site.shell(command)
    report = site.install()
    says(report.warnings, sentence)
    if report.warnings:
        assert report.text.startswith("warning: ")


def test_earlier_version_that_is_integrated(site):
    site.integrate()
    site.shell("mv $copy ${copy}2; sed -i s/1.0a/1.0a2/ $script")
    says(
        site.install().warnings,
        'this product is integrated as "./workbench/wr-qev-1.0a2"; uninstall that first',
    )


@keyed_table(
    "assignment, sentence",
    {
        "SUPPORTED_VERSION=2;3.2;3.1": (
            './workbench" is of no supported version: looked for "name=2", "name=3.2", and its '
            'install.properties has "#hostname=1", "name=3.1"; end each version in SUPPORTED_VERSION by ";"'
        ),
        "SUPPORTED_VERSION=2": (
            'no version in SUPPORTED_VERSION is complete, and its install.properties has "#hostname=1"'
        ),
        "SUPPORTED_VERSION=": "SUPPORTED_VERSION is empty",
        "WB_INTEGRATION_PATH=product": '"product" holds no file install.properties',
        "WB_INTEGRATION_PATH=": 'no directory in DEFAULT_SEARCH_PATH holds ... tried: "/absent", "./bench"',
    },
)
def test_no_workbench_that_can_be_used(site, assignment, sentence):
    site.edit("/workbench", "/bench")
    site.shell("echo '#hostname=1 name=3.1 name = 4' >workbench/install.properties")
    report = site.install("--set", assignment)
    says(re.findall("^Stopped: (.*)", report.text, re.M), sentence)
    says(report.failures, "validate_wb_path: ... " + sentence)
    assert report.status == 1 and "find_wb_components" not in report.text


def test_no_version_in_the_workbench(site):
    site.shell("echo '#hostname' >workbench/install.properties")
    assert 'its install.properties has no word with "name="' in site.install().failures[0]


@keyed_table(
    "command, failure",
    {
        "rm -r $config": 'perform_integration: dir_copy("./product/suite/part/wr-qev-1.0a", ... No such file',
        "sed -i 's/, files = .*/ }]/' s.toml": "perform_integration: no listed path holds a configuration",
        "sed -i s/workbench-part/part/ s.toml": "check: nothing was checked, for nothing was integrated",
    },
)
def test_what_only_follows_from_a_failure_is_none_of_its_own(site, command, failure):
    site.shell(command)
    report = site.wb_trial("check", "--no-sandbox", "s.toml", variables={"WB_PREFS": ""})
    says(report.failures, failure)
    assert report.status == 1
