# shellcheck shell=bash disable=SC2016,SC2034
# Sourced by the transcripts: lays out a workbench, an installed product and a session about them.
set -a # for the shell in `unprivileged`
set -o pipefail
PATH=$WB_TRIAL_DIR:$PATH
umask 022
copy=workbench/wr-qev-1.0a
config=product/suite/part/wr-qev-1.0a
setup=$config/wr-setup/setup.sh
uninstall=$config/wr-setup/uninst_wr_qev.sh
prefs=$config/a.prefs
script=product/suite/vorn/wb_deintegrate.sh

site() {
    chmod -R u+rwX .
    rm -rf -- *
    mkdir -p workbench product/suite/vorn "$config/wr-setup"
    echo name=3.1 >workbench/install.properties
    printf '#!/bin/sh\necho "setup, arguments: $# $1"\n' >"$setup"
    printf '#!/bin/sh\necho uninstall\n' >"$uninstall"
    chmod +x "$config/wr-setup"/*
    printf 'a=1\nhome=\nb=2' >"$prefs"
    cat >s.toml <<'TOML'
component = [
    { name = "off-workbench", install_condition = false },
    { name = "workbench-part", subdir = "/suite/part", files = ['share\wr-qev-1.0a\readme.txt'], files_from = "${SESSION_DIR}/product/suite" }]
[variables]
log_file = "${SESSION_DIR}/log"
DEFAULT_SEARCH_PATH = "/absent workbench"
SUPPORTED_VERSION = "3.1;"
VORN_INSTALL_DIR = "${SESSION_DIR}/product"
VORN_INSTALL_SUBDIR = "/suite"
WB_INSTALL_SUBDIR = "/suite/part"
WORKBENCH_SCRIPT_NAME = "setup"
WB_PREFS = ".prefs"
WB_PREFS_INST_DIR = "home"
TOML
}

# wb ARGUMENT...: wb-trial, with "." for this folder in what it prints
wb() {
    wb-trial "$@" 2>&1 | while IFS= read -r line; do
        printf '%s\n' "${line//"$PWD"/.}"
    done
}

# integrate OPTION...: integrates without a detection
integrate() {
    wb run s.toml perform_integration --set WB_INTEGRATION_PATH=workbench "$@"
}

# failures COMMAND...: what the report of the command says has failed, and its status if not 1
failures() {
    "$@" | sed -n 's/^  failed: //p'
    echo "status ${PIPESTATUS[0]}" | sed '/status 1$/d'
}

# refused ARGUMENT...: the first line that wb-trial prints, and its status if not 2
refused() {
    wb "$@" | sed -n 1p
    echo "status ${PIPESTATUS[0]}" | sed '/status 2$/d'
}

# unprivileged COMMAND...: runs it so that read-only folders are read-only, also where root runs
# the tests
unprivileged() {
    local drop=()
    [ "$(id -u)" -ne 0 ] || drop=(setpriv "--bounding-set=-dac_override,-dac_read_search")
    "${drop[@]}" bash -o pipefail -c '"$@"' - "$@"
}

# on_full_disk COMMAND...: runs it where no file can get any content
on_full_disk() {
    (
        trap '' XFSZ
        ulimit -f 0
        "$@"
    )
}

# keep: remembers all files but the log, for `kept`
keep() {
    find . -type f ! -name log -exec sha256sum {} + >"$TMPDIR/sums"
}

# kept: names the remembered files that changed, and what should not be there
kept() {
    chmod -R u+rwX product
    sha256sum --quiet -c "$TMPDIR/sums"
    find . \( -name '*.wb-trial-*' -o -path './outside*' \) -printf '%m %p\n'
}

# after CHANGE COMMAND...: the failures of the command in a site with that change
after() {
    site
    keep
    eval "$1"
    failures unprivileged "${@:2}"
    kept
}

site
