  $ . "$TESTDIR/site.sh"

The verdict on a workbench of version 3.1, for lists of versions:

  $ validate() { wb run s.toml validate_wb_path --set WB_INTEGRATION_PATH=workbench "$@" | sed -n 's/.*PATH_STATUS = //p'; }
  $ for list in '3.1;' 3.1 '2;3.1' '2;3.1;4;' ';' '2;;' ' 3.1;' '3;' '3.1.2;' ''; do
  >     echo "'$list' $(validate --set SUPPORTED_VERSION="$list")"
  > done
  '3.1;' "ok"
  '3.1' "unsupported"
  '2;3.1' "unsupported"
  '2;3.1;4;' "ok"
  ';' "ok"
  '2;;' "ok"
  ' 3.1;' "unsupported"
  '3;' "ok"
  '3.1.2;' "unsupported"
  '' "undefined"

The workbench comes first, then the list, then writing:

  $ chmod 555 workbench; unprivileged bash -c "$(declare -f wb validate); validate; validate --set SUPPORTED_VERSION=2\;"; tail -n 3 log
  "notwritable"
  "unsupported"
  workbench_int: cannot write to workbench
  workbench_int: validate_wb_path entered
  workbench_int: wb path: workbench
  $ chmod 755 workbench; : >workbench/install.properties; validate
  "unsupported"
  $ rm workbench/install.properties; validate; validate --set SUPPORTED_VERSION=; tail -n 1 log
  "undefined"
  "undefined"
  workbench_int: workbench doesn't contain install.properties

The workbench that is proposed, for lists of places:

  $ site
  $ for list in '' absent workbench 'workbench// absent' ' absent  ./workbench workbench ' absent$'\t'workbench; do
  >     echo "'$list' $(wb run s.toml detect_wb_in_default_path --set WB_INTEGRATION_PATH=old --set DEFAULT_SEARCH_PATH="$list" | tail -n 1)"
  > done
  ''   WB_INTEGRATION_PATH = ""
  'absent'   WB_INTEGRATION_PATH = ""
  'workbench'   WB_INTEGRATION_PATH = "workbench"
  'workbench// absent'   WB_INTEGRATION_PATH = "workbench//"
  ' absent  ./workbench workbench '   WB_INTEGRATION_PATH = "./workbench"
  'absent\tworkbench'   WB_INTEGRATION_PATH = "" (esc)

The component that answers for the workbench, for lists of names:

  $ for list in '' 'Workbench work-bench' 'docs product-workbench-support workbench' 'off-workbench workbench'; do
  >     for name in $list; do printf '[[component]]\nname = "%s"\nsubdir = "/%s"\ninstall_condition = %s\n' "$name" "$name" "$([[ $name == off* ]] && echo false || echo true)"; done >names.toml
  >     echo "'$list'"; wb run names.toml find_wb_components --set log_file=log
  > done
  ''
  find_wb_components returned 0
    WB_INTEGRATION_SUPPORTED = "no"
  'Workbench work-bench'
  find_wb_components returned 0
    WB_INTEGRATION_SUPPORTED = "no"
  'docs product-workbench-support workbench'
  find_wb_components returned 0
    WB_INTEGRATION_SUPPORTED = "yes"
    WB_INSTALL_SUBDIR = "/product-workbench-support"
  'off-workbench workbench'
  find_wb_components returned 0
    WB_INTEGRATION_SUPPORTED = "yes"
    WB_INSTALL_SUBDIR = "/workbench"

An integration that cannot begin touches nothing:

  $ find . | sort >"$TMPDIR/before"
  $ wb run s.toml perform_integration --set WB_INTEGRATION_PATH=workbench/install.properties/; tail -n 1 log
  perform_integration returned -1
  workbench_int: workbench path: workbench/install.properties does not exist or not a directory
  $ wb run names.toml perform_integration --set log_file=log --set WB_INTEGRATION_PATH=absent | head -n 1; tail -n 2 log
  perform_integration returned -1
  workbench_int: path to workbench: absent
  workbench_int: workbench integration is not supported
  $ find . | sort | diff "$TMPDIR/before" -

The files that a marker finds to be preferences files:

  $ for marker in .prefs 1.0a/a.p part .PREFS ''; do
  >     site; wb run s.toml init_wb_prefs --set WB_PREFS="$marker" >/dev/null; echo "'$marker' $(grep home= product/suite/part/wr-qev-1.0a/a.prefs | sed "s|$PWD|.|")"
  > done
  '.prefs' home=./product/suite
  '1.0a/a.p' home=./product/suite
  'part' home=./product/suite
  '.PREFS' home=
  '' home=

Where no variable is set, every action still runs to its end:

  $ : >empty.toml; find . | sort >"$TMPDIR/before"
  $ wb run empty.toml detect_wb_in_default_path validate_wb_path find_wb_components perform_integration perform_deintegration init_wb_prefs
  workbench_int: detect_wb_in_default_path entered
  workbench_int: default_path_string 
  detect_wb_in_default_path returned 0
    WB_INTEGRATION_PATH = ""
    warning: DEFAULT_SEARCH_PATH was read and is not set
    warning: log_file was read and is not set
  workbench_int: validate_wb_path entered
  workbench_int: wb path: 
  workbench_int:  doesn't contain install.properties
  validate_wb_path returned 0
    PATH_STATUS = "undefined"
    warning: SUPPORTED_VERSION was read and is not set
    warning: log_file was read and is not set
  workbench_int: find_wb_components entered
  workbench_int: workbench integration is not supported
  find_wb_components returned 0
    WB_INTEGRATION_SUPPORTED = "no"
    warning: log_file was read and is not set
  workbench_int: perform_integration entered
  workbench_int: path to workbench: 
  workbench_int: workbench integration is not supported
  perform_integration returned -1
    warning: log_file was read and is not set
  workbench_int: perform_deintegration entered
  workbench_int: running command: "/vorn/wb_deintegrate.sh"
  workbench_int: out: /bin/sh: 1: /vorn/wb_deintegrate.sh: not found
  
  perform_deintegration returned 0
    its command said:
      /bin/sh: 1: /vorn/wb_deintegrate.sh: not found
    warning: VORN_INSTALL_DIR was read and is not set
    warning: VORN_INSTALL_SUBDIR was read and is not set
    warning: log_file was read and is not set
    failed: the command "/vorn/wb_deintegrate.sh" ended with status 127
  init_wb_prefs returned 0
    warning: VORN_INSTALL_DIR was read and is not set
    warning: VORN_INSTALL_SUBDIR was read and is not set
  [1]
  $ find . | sort | diff "$TMPDIR/before" -
  $ wb run --trace empty.toml find_wb_components | grep log_
  env_get_string("log_file") = ""
  log_init("") = 0
    warning: log_file was read and is not set
