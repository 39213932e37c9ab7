#!/bin/sh
# Takes the product out of the workbench's list of plug-ins again.
set -eu
workbench=$(cd "$(dirname "$0")/../.." && pwd)
list=$workbench/configuration/plugins.list
sed '/^qev=/d' "$list" >"$list.new"
mv "$list.new" "$list"
echo "took qev out of $list"
