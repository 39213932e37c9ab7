#!/bin/sh
# Enters the product into the workbench's list of plug-ins.
# usage: wbsetup.sh DIRECTORY-OF-THE-PRODUCT'S-WORKBENCH-PART
set -eu
workbench=$(cd "$(dirname "$0")/../.." && pwd)
echo "qev=$1" >>"$workbench/configuration/plugins.list"
echo "entered qev into $workbench/configuration/plugins.list"
