  $ . "$TESTDIR/site.sh"

The verdict on a workbench of version 3.1, for lists of versions:

  $ validate() { wb run s.toml validate_wb_path --set WB_INTEGRATION_PATH=workbench "$@" | sed -n 's/.*PATH_STATUS = //p'; }
  $ for list in '3.1;' 3.1 '2;3.1;4;' ';' '2;;' ''; do
  >     echo "'$list' $(validate --set SUPPORTED_VERSION="$list")"
  > done
  '3.1;' "ok"
  '3.1' "unsupported"
  '2;3.1;4;' "ok"
  ';' "ok"
  '2;;' "ok"
  '' "undefined"

The workbench comes first, then the list, then writing:

  $ chmod 555 workbench
  $ unprivileged validate
  "notwritable"
  $ tail -n 1 log
  workbench_int: cannot write to workbench
  $ chmod 755 workbench
  $ rm workbench/install.properties; mkdir workbench/install.properties
  $ validate --set SUPPORTED_VERSION=
  "undefined"
  $ tail -n 1 log
  workbench_int: workbench doesn't contain install.properties

The workbench that is proposed, for lists of places:

  $ site
  $ for list in workbench 'workbench// absent' ' absent  ./workbench workbench ' absent$'\t'workbench; do
  >     echo "'$list' $(wb run s.toml detect_wb_in_default_path --set WB_INTEGRATION_PATH=old --set DEFAULT_SEARCH_PATH="$list" | tail -n 1)"
  > done
  'workbench'   WB_INTEGRATION_PATH = "workbench"
  'workbench// absent'   WB_INTEGRATION_PATH = "workbench//"
  ' absent  ./workbench workbench '   WB_INTEGRATION_PATH = "./workbench"
  'absent\tworkbench'   WB_INTEGRATION_PATH = "" (esc)

The component that answers for the workbench, for lists of names:

  $ for list in 'Workbench work-bench' 'off-workbench docs product-workbench-support workbench'; do
  >     for name in $list; do printf '[[component]]\nname = "%s"\nsubdir = "/%s"\ninstall_condition = %s\n' "$name" "$name" "$([[ $name == off* ]] && echo false || echo true)"; done >names.toml
  >     echo "'$list'" $(wb run names.toml find_wb_components --set log_file=log)
  > done
  'Workbench work-bench' find_wb_components returned 0 WB_INTEGRATION_SUPPORTED = "no"
  'off-workbench docs product-workbench-support workbench' find_wb_components returned 0 WB_INTEGRATION_SUPPORTED = "yes" WB_INSTALL_SUBDIR = "/product-workbench-support"
  $ grep -c 'integration is not supported$' log
  1

An integration that cannot begin touches nothing:

  $ find . | sort >"$TMPDIR/before"
  $ failures wb run s.toml perform_integration --set WB_INTEGRATION_PATH=workbench/install.properties/
  the workbench "workbench/install.properties/" is no directory
  $ failures wb run names.toml perform_integration --set log_file=log --set WB_INTEGRATION_PATH=absent
  the workbench "absent" is no directory
  $ grep -e 'not supported$' -e 'not a directory$' -e 'path to' log | tail -n 3
  workbench_int: workbench path: workbench/install.properties does not exist or not a directory
  workbench_int: path to workbench: absent
  workbench_int: workbench integration is not supported
  $ find . | sort | diff "$TMPDIR/before" -

The files that a marker finds to be preferences files:

  $ for marker in .prefs .PREFS ''; do
  >     site
  >     wb run s.toml init_wb_prefs --set WB_PREFS="$marker" >/dev/null
  >     echo "'$marker' $(grep -c home=. "$prefs")"
  > done
  '.prefs' 1
  '.PREFS' 0
  '' 0

Where no variable is set, every action still runs to its end and names what it missed:

  $ : >empty.toml; find . | sort >"$TMPDIR/before"
  $ for action in detect_wb_in_default_path validate_wb_path find_wb_components perform_integration perform_deintegration init_wb_prefs; do
  >     echo $(wb-trial run empty.toml $action 2>/dev/null | sed -n 's/warning: \(.*\) was read.*/\1/p; / returned /p; / = /p; s/\(failed: the command\).*/\1/p') $?
  > done
  detect_wb_in_default_path returned 0 WB_INTEGRATION_PATH = "" DEFAULT_SEARCH_PATH log_file 0
  validate_wb_path returned 0 PATH_STATUS = "undefined" SUPPORTED_VERSION WB_INTEGRATION_PATH log_file 0
  find_wb_components returned 0 WB_INTEGRATION_SUPPORTED = "no" log_file 0
  perform_integration returned -1 WB_INTEGRATION_PATH log_file 1
  perform_deintegration returned 0 VORN_INSTALL_DIR VORN_INSTALL_SUBDIR log_file 1
  init_wb_prefs returned 0 VORN_INSTALL_DIR VORN_INSTALL_SUBDIR 0
  $ find . | sort | diff "$TMPDIR/before" -
