#!/bin/sh
# usage: demo.sh BUILD-FOLDER
# Installs the example product into a copy of the example workbench and uninstalls it. Shows each
# step, and fails where a step did not do what it shows.
set -eu
wb_trial=$(cd "$1" && pwd)/wb-trial
examples=$(cd "$(dirname "$0")" && pwd)
place=$(cd "$(mktemp -d)" && pwd -P)
trap 'rm -rf "$place"' EXIT
cp -R "$examples/workbench" "$examples/product" "$examples/session.toml" "$place"
cp -R "$place/workbench" "$place/before"
cd "$place"

plugins=workbench/configuration/plugins.list
script=product/suite/vorn/wb_deintegrate.sh
preferences=product/suite/preferences/qev.prefs

title() { printf '\n== %s\n' "$*"; }
fail() {
    echo "demo: $*" >&2
    exit 1
}
show_workbench() {
    find workbench -type f | LC_ALL=C sort
    title "$plugins"
    cat "$plugins"
}

title "the workbench before"
show_workbench

title "wb-trial install session.toml"
"$wb_trial" install session.toml
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

title "wb-trial uninstall session.toml"
"$wb_trial" uninstall session.toml

title "the workbench again"
show_workbench
diff -r before workbench || fail "the workbench is not as it was"
