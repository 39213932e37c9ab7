"""A packager's mistakes, and what wb-trial says of them before it runs anything."""

import re

from conftest import keyed_table, says

FOUR = "wr-qev- and four characters"
SCRIPTS = '"./product/suite/part/wr-qev-1.0a/wr-setup/'
NO_PREFERENCES = 'no listed path contains ".prefs"'


VARIABLES = {
    "VORN_INSTALL_DIR=${SESSION_DIR}/product": "",
    "WB_INTEGRATION_PATH=workbench": '"workbench" is relative: ... write it from the root',
    "VORN_INSTALL_DIR=product": '"product" is relative: ... write it from the root',
    "DEFAULT_SEARCH_PATH=/opt/a  /opt/b": "DEFAULT_SEARCH_PATH has two blanks in a row",
    "DEFAULT_SEARCH_PATH= /opt/a": "DEFAULT_SEARCH_PATH ... begins with one; ... write single blanks",
    "log_file=absent/log": 'there is no folder "./absent" for the log; make it',
    "log_file=/x${HOME}/log": 'log_file is "/x${HOME}/log", ... write the path out',
    "WORKBENCH_SCRIPT_NAME=setup.sh": '"setup.sh.sh" ... but "setup.sh", "uninst_wr_qev.sh"; ... written',
    "WORKBENCH_SCRIPT_NAME=": 'there is no ".sh" ... WORKBENCH_SCRIPT_NAME is not set',
}


@keyed_table("assignment, sentence", VARIABLES)
def test_mistake_in_a_variable(site, assignment, sentence):
    says(site.install("--set", assignment).warnings, sentence)


NO_PRODUCT = {
    "VORN_INSTALL_DIR=~/product": 'is "~/product", which is not there; nothing but ${SESSION_DIR} is',
    "VORN_INSTALL_DIR=${HOME}/x": 'is "${HOME}/x", which is not there; nothing but ${SESSION_DIR} is',
    "VORN_INSTALL_DIR=$SESSION_DIR/product": "--set: write ${SESSION_DIR}, with braces",
    "VORN_INSTALL_DIR=${SESSION_DIR}product": "--set: write a slash after ${SESSION_DIR}",
    "VORN_INSTALL_DIR=s.toml": 'VORN_INSTALL_DIR is "s.toml", which is no directory',
    "VORN_INSTALL_SUBDIR=suite": '"./productsuite", ... with a slash between them it is: write ... "/suite"',
}


@keyed_table("assignment, refusal", NO_PRODUCT)
def test_product_that_is_not_there(site, assignment, refusal):
    says([site.install("--set", assignment).refusal], refusal)


MISTAKES = {
    "mv workbench w; ln -s w workbench; cp /bin/true $setup; touch product/suite/wr-qev-notes": "",
    "sed -i '1s|.*|#!/usr/bin/env perl|' $setup": "",
    "chmod -x $setup": SCRIPTS + 'setup.sh" is not executable; chmod +x it',
    "sed -i 1d $setup": "has no first line that names its interpreter, so /bin/sh runs it",
    r"sed -i '1s/^/\xef\xbb\xbf/' $setup": "begins with a byte order mark, so ... /bin/sh runs it",
    "iconv -t UTF-16 -o $uninstall $setup": 'uninst_wr_qev.sh" is in UTF-16, ... save it as UTF-8',
    "rm $setup; mkdir $setup": 'setup.sh" is a directory',
    r"sed -i 's/$/\r/' $setup": SCRIPTS + 'setup.sh" has lines that end in a carriage return; save it with',
    "sed -i '1s|.*|#!/absent -e|' $uninstall": 'uninst_wr_qev.sh" names "/absent" in its first line',
    "sed -i '1s|.*|#!/usr/bin/env absent|' $setup": '"absent" in ... which no directory in PATH has',
    "sed -i '1s|.*|#!/usr/bin/env|' $uninstall": 'names no program behind "/usr/bin/env"',
    "sed -i '1s|.*|#!/usr/bin/env -S sh|' $uninstall": "",
    "rm -r $config/wr-setup": '/wr-setup" is not there; the two scripts have to be in it',
    "rmdir product/suite/vorn": '"./product/suite/vorn" is not there; the product has to bring that',
    "rmdir product/suite/vorn; touch product/suite/vorn": '"./product/suite/vorn" is no directory',
    "mkdir $config/../wr-qev-2.0b; touch $config/../wr-qev-2.0b/x": '"wr-qev-2.0b" does not',
    "sed -i s/wr-/WR-/ s.toml; mv $config ${config%/*}/WR-qev-1.0a": r'"share\\WR- ... differs in case',
    "mv $config ${config}b; sed -i s/1.0a/1.0ab/ s.toml": f'"wr-qev-1.0a", and there is no ... {FOUR}',
    "mv $config ${config%a}; sed -i s/1.0a/1.0/ s.toml": f'"wr-qev-1.0"; its name has to be {FOUR}',
    "sed -i s,/suite/part,/suit/part, s.toml": 'make "./product/suit/part", which ... is it misspelt?',
    "sed -i s,/suite/part,/part, s.toml": 'VORN_INSTALL_SUBDIR between ... write subdir = "/suite/part"',
    "sed -i s/workbench-part/PD-Workbench/ s.toml": 'in its name: "PD-Workbench" (differs in case only)',
    "sed -i 's/files_from.*}/install_condition=false}/' s.toml": f"none is to be\n{NO_PREFERENCES}",
    "sed -i 's/off-workbench.*false/a-workbench\"/' s.toml": 'one counts, "a-workbench"\nno such directory',
    "sed -i 's/, files = .*/ }]/' s.toml": f'no listed path contains "wr-qev-"\n{NO_PREFERENCES}',
    "sed -i 's,product/suite\",product\",' s.toml": 'no ... "./product/suite/suite/ ... listed by its path',
}


@keyed_table("command, sentence", MISTAKES)
def test_mistake_in_the_product_or_its_session(site, command, sentence):
    site.shell(command)
    report = site.install()
    says(report.warnings, sentence)
    assert report.text.startswith("warning: ") == (sentence != "")


def test_earlier_version_that_is_integrated(site):
    site.integrate()
    site.shell("mv $copy ${copy}2; sed -i s/1.0a/1.0a2/ $script")
    says(site.install().warnings, 'this product is integrated as "./workbench/wr-qev-1.0a2"; uninstall that')


WITHOUT_END = 'end each version in SUPPORTED_VERSION by ";"'


NO_WORKBENCH = {
    "SUPPORTED_VERSION=2;3.2;": 'looked for "name=2", "name=3.2", ... has "#hostname=1", "name=3.1"',
    "SUPPORTED_VERSION=2;3.1": f'looked for "name=2", and ... {WITHOUT_END}',
    "SUPPORTED_VERSION=2": f"no version in SUPPORTED_VERSION is complete, and ... {WITHOUT_END}",
    "SUPPORTED_VERSION=": "SUPPORTED_VERSION is empty",
    "WB_INTEGRATION_PATH=product": '"product" holds no file install.properties',
    "WB_INTEGRATION_PATH=absent": '"absent" is not there',
    "WB_INTEGRATION_PATH=other": '"other" is ... its install.properties has no word with "name="',
    "WB_INTEGRATION_PATH=": 'no directory in DEFAULT_SEARCH_PATH holds ... tried: "/absent", "./bench"',
}


@keyed_table("assignment, sentence", NO_WORKBENCH)
def test_no_workbench_that_can_be_used(site, assignment, sentence):
    site.edit("/workbench", "/bench")
    site.shell("echo '#hostname=1 name=3.1 name = 4' >workbench/install.properties")
    site.shell("mkdir other; echo '#hostname' >other/install.properties")
    report = site.install("--set", assignment)
    says(re.findall("^Stopped: (.*)", report.text, re.M), sentence)
    says(report.failures, "validate_wb_path: ... " + sentence)
    assert "find_wb_components" not in report.text


def test_blank_in_the_search_path(site):
    report = site.wb_trial("install", "s.toml", variables={"DEFAULT_SEARCH_PATH": "/my bench"})
    says(report.failures, 'tried: "/my", "bench"; blanks separate them, so name a workbench')


FAILURES = {
    "rm -r $config": 'dir_copy("./product/suite/part/wr-qev-1.0a", ... No such file',
    "sed -i 's/, files = .*/ }]/' s.toml": "perform_integration: no listed path holds a configuration",
    "sed -i s/workbench-part/part/ s.toml": "check: nothing was checked, for nothing was integrated",
}


@keyed_table("command, failure", FAILURES)
def test_what_only_follows_from_a_failure_is_none_of_its_own(site, command, failure):
    site.shell(command)
    report = site.wb_trial("check", "--no-sandbox", "s.toml", variables={"WB_PREFS": ""})
    says(report.failures, failure)
