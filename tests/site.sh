# shellcheck shell=bash
# Sourced by the transcripts: lays out a workbench, an installed product and a session about them.
PATH=$WB_TRIAL_DIR:$PATH
umask 022

site() {
    chmod -R u+w .
    rm -rf -- *
    mkdir -p workbench product/suite/vorn product/suite/part/wr-qev-1.0a/wr-setup
    echo name=3.1 >workbench/install.properties
    cd product/suite/part/wr-qev-1.0a || exit
    # shellcheck disable=SC2016 # for the script's own shell
    printf '#!/bin/sh\necho "setup, arguments: $# $1"\n' >wr-setup/setup.sh
    printf '#!/bin/sh\necho uninstall\n' >wr-setup/uninst_wr_qev.sh
    chmod +x wr-setup/*
    printf 'a=1\nhome=\nb=2' >a.prefs
    cd - >/dev/null || exit
    cat >s.toml <<'END'
[variables]
log_file = "${SESSION_DIR}/log"
DEFAULT_SEARCH_PATH = "/absent ${SESSION_DIR}/workbench"
SUPPORTED_VERSION = "3.1;"
VORN_INSTALL_DIR = "${SESSION_DIR}/product"
VORN_INSTALL_SUBDIR = "/suite"
WB_INSTALL_SUBDIR = "/suite/part"
WORKBENCH_SCRIPT_NAME = "setup"
WB_PREFS = ".prefs"
WB_PREFS_INST_DIR = "home"

[[component]]
name = "off-workbench"
install_condition = false

[[component]]
name = "workbench-part"
subdir = "/suite/part"
files = ['share\readme.txt']
files_from = "${SESSION_DIR}/product/suite"
END
}

# wb-trial, with "." for this folder in what it prints
wb() {
    wb-trial "$@" 2>&1 | sed "s|$PWD|.|g"
    return "${PIPESTATUS[0]}"
}

# Integrates without a detection.
integrate() { wb run s.toml perform_integration --set WB_INTEGRATION_PATH="$PWD/workbench" "$@"; }

# A command for which read-only folders are read-only, also where the tests are run by root.
unprivileged() {
    if [ "$(id -u)" -eq 0 ]; then setpriv --bounding-set=-dac_override "$@"; else "$@"; fi
}

site
