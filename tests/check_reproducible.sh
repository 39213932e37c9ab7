#!/bin/bash
# usage: check_reproducible.sh LIBRARY CMAKE [OPTION...]
# Builds the library once more, from a copy of its sources elsewhere, and compares the bytes.
set -euo pipefail
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
copy="$folder/a longer [and odd] name that's elsewhere"
mkdir "$copy"
(cd "$(dirname "$0")/.." && cp -R host hostcheck actions workbench CMakeLists.txt workbench-int.map "$copy")
"${@:2}" -S "$copy" -B "$copy/build"
"$2" --build "$copy/build" --target workbench-int
cmp "$1" "$copy/build/$(basename "$1")"
