#!/bin/sh
# usage: demo.sh BUILD-FOLDER
# Checks the example product, installs it into a copy of the example workbench and uninstalls it.
# Shows each step, and fails where a step did not do what it shows.
set -eu
unset CDPATH
wb_trial=$(cd "$1" && pwd)/wb-trial
examples=$(cd "$(dirname "$0")" && pwd)
folder=$(cd "$(mktemp -d)" && pwd -P)
trap 'rm -rf "$folder"' EXIT
place=$folder/try
cp -R "$examples/workbench" "$folder/workbench"
lay_out() {
    cd "$folder"
    rm -rf "$place"
    mkdir "$place"
    cp -R "$examples/workbench" "$examples/product" "$examples/session.toml" "$place"
    cd "$place"
}
lay_out

plugins=workbench/configuration/plugins.list
script=product/suite/vorn/wb_deintegrate.sh
preferences=product/suite/preferences/qev.prefs

title() { printf '\n== %s\n' "$*"; }
fail() {
    echo "demo: $*" >&2
    exit 1
}
# trial COMMAND [OPTION]
trial() {
    title "wb-trial $* session.toml"
    set -- "$@" session.toml
    case $place in
    *' '*) set -- "$@" --set "WB_INTEGRATION_PATH=$place/workbench" ;; # a list could not hold it
    esac
    "$wb_trial" "$@"
}
show_workbench() {
    find workbench -type f | LC_ALL=C sort
    title "$plugins"
    cat "$plugins"
}
state() { find . -exec stat -c '%n %s %A %u %g %Y' {} + | LC_ALL=C sort; }

title "the workbench before"
show_workbench

state >"$folder/state"
status=0
trial check >"$folder/report" || status=$?
cat "$folder/report"
if [ "$status" -eq 2 ]; then
    trial check --no-sandbox >"$folder/report" || fail "the check failed: $(cat "$folder/report")"
    cat "$folder/report"
    lay_out
else
    [ "$status" -eq 0 ] || fail "the check failed"
    state | diff "$folder/state" - || fail "the check changed the disk"
fi
grep -qxF 'The workbench is as it was.' "$folder/report" || fail "the check reached no verdict"

trial install
grep -qxF "qev=$place/product/suite/workbench" "$plugins" || fail "the setup script did not run"
diff -r product/suite/workbench/wr-qev-4.2a workbench/wr-qev-4.2a ||
    fail "the configuration was not copied whole"

title "the workbench after"
show_workbench
title "$script"
cat "$script"
[ -x "$script" ] || fail "the de-integration script cannot be run"
title "$preferences"
cat "$preferences"
grep -qxF "installDir=$place/product/suite" "$preferences" || fail "the location is not set"

trial uninstall

title "the workbench again"
show_workbench
diff -r "$folder/workbench" workbench || fail "the workbench is not as it was"
