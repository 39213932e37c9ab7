  $ . "$TESTDIR/site.sh"

An install, and how it is undone:

  $ wb install s.toml
  detect_wb_in_default_path returned 0
    WB_INTEGRATION_PATH = "./workbench"
  validate_wb_path returned 0
    PATH_STATUS = "ok"
  find_wb_components returned 0
    WB_INTEGRATION_SUPPORTED = "yes"
    WB_INSTALL_SUBDIR = "/suite/part"
  perform_integration returned 0
    its command said:
      setup, arguments: 1 ./product/suite/part
  init_wb_prefs returned 0
  $ cat log product/suite/vorn/wb_deintegrate.sh | sed "s|$PWD|.|g"
  workbench_int: detect_wb_in_default_path entered
  workbench_int: default_path_string /absent ./workbench
  workbench_int: found workbench in ./workbench
  workbench_int: validate_wb_path entered
  workbench_int: wb path: ./workbench
  workbench_int: name=3.1 is found
  workbench_int: find_wb_components entered
  workbench_int: workbench integration supported
  workbench_int: perform_integration entered
  workbench_int: current_file: share\readme.txt
  workbench_int: current_file: part/wr-qev-1.0a/a.prefs
  workbench_int: found workbench configuration: part/wr-qev-1.0a/a.prefs
  workbench_int: path to workbench: ./workbench
  workbench_int: running command: "./workbench/wr-qev-1.0a/wr-setup/setup.sh" "./product/suite/part"
  workbench_int: out: setup, arguments: 1 ./product/suite/part
  
  workbench_int: trying to create ./product/suite/vorn/wb_deintegrate.sh
  workbench_init:: found WB prefs file: <part/wr-qev-1.0a/a.prefs>
  #!/bin/sh
  /bin/sh -c "./workbench/wr-qev-1.0a/wr-setup/uninst_wr_qev.sh"
  rm -rf "./workbench/wr-qev-1.0a"
  $ wb uninstall s.toml; ls workbench
  perform_deintegration returned 0
    its command said:
      uninstall
  install.properties

Where the workbench will not do, or there is nothing to integrate:

  $ wb --set 'SUPPORTED_VERSION=2;' install s.toml | tail -n 1
  Stopped: "./workbench" holds a workbench of none of the versions in SUPPORTED_VERSION; each version there has to be ended by ";".
  $ wb install s.toml --set WB_INTEGRATION_PATH=/absent
  detect_wb_in_default_path returned 0
    WB_INTEGRATION_PATH = "./workbench"
  WB_INTEGRATION_PATH is "/absent" again, as the session has it
  validate_wb_path returned 0
    PATH_STATUS = "undefined"
  Stopped: "/absent" holds no workbench (no install.properties in it), or SUPPORTED_VERSION is empty.
  [1]
  $ chmod 555 workbench; unprivileged bash -c "$(declare -f wb); wb install s.toml | tail -n 1"; chmod 755 workbench
  Stopped: "./workbench" holds a workbench that the installation cannot write into.
  $ : >empty.toml; wb install empty.toml --set log_file=log --set 'SUPPORTED_VERSION=3.1;' --set WB_INTEGRATION_PATH=workbench
  detect_wb_in_default_path returned 0
    WB_INTEGRATION_PATH = ""
    warning: DEFAULT_SEARCH_PATH was read and is not set
  WB_INTEGRATION_PATH is "workbench" again, as the session has it
  validate_wb_path returned 0
    PATH_STATUS = "ok"
  find_wb_components returned 0
    WB_INTEGRATION_SUPPORTED = "no"
  Nothing to integrate: no component to be installed has "workbench" in its name.
  init_wb_prefs returned 0
    warning: VORN_INSTALL_DIR was read and is not set
    warning: VORN_INSTALL_SUBDIR was read and is not set

Options stand before or after the rest, and actions run in the order given:

  $ wb run --trace s.toml init_wb_prefs --set WB_PREFS= find_wb_components --set log_file=x | grep -v -e print_log -e WB_PREFS
  env_get_string("VORN_INSTALL_DIR") = "./product"
  env_get_string("VORN_INSTALL_SUBDIR") = "/suite"
  path("./product//suite") = "./product/suite"
  components() = {"off-workbench", "workbench-part"}
  "off-workbench".installCondition() = 0
  "workbench-part".installCondition() = 1
  "workbench-part".provider() = set
  query("", "workbench-part", "") = set
  "workbench-part".provider() = set
  fileList(set) = {"share\\readme.txt", "part/wr-qev-1.0a/a.prefs", "part/wr-qev-1.0a/wr-setup/setup.sh", "part/wr-qev-1.0a/wr-setup/uninst_wr_qev.sh", "vorn/wb_deintegrate.sh"}
  init_wb_prefs returned 0
  env_get_string("log_file") = "x"
  log_init("x") = 0
  components() = {"off-workbench", "workbench-part"}
  "off-workbench".installCondition() = 0
  "workbench-part".installCondition() = 1
  env_set_string("WB_INTEGRATION_SUPPORTED", "yes")
  "workbench-part".subdir() = "/suite/part"
  env_set_string("WB_INSTALL_SUBDIR", "/suite/part")
  find_wb_components returned 0
    WB_INTEGRATION_SUPPORTED = "yes"
    WB_INSTALL_SUBDIR = "/suite/part"

Installed, it finds the library that was installed with it:

  $ cmake --install "$WB_TRIAL_DIR" --prefix "$PWD/usr" >/dev/null; find usr -type f | sort
  usr/bin/wb-trial
  usr/lib/libworkbench-int.so.1n
  $ usr/bin/wb-trial --version; usr/bin/wb-trial run s.toml find_wb_components | head -n 1
  1.0.0
  find_wb_components returned 0

A report that cannot be written is a failure:

  $ wb-trial run s.toml find_wb_components >/dev/full
  wb-trial: the report cannot be written
  [1]

Bad arguments: one message, status 2, and nothing is run:

  $ find . | sort >"$TMPDIR/before"
  $ wb
  A command, install, uninstall or run, is required
  Run with --help for more information.
  [2]
  $ wb install
  SESSION.toml is required
  Run with --help for more information.
  [2]
  $ wb install absent.toml
  wb-trial: absent.toml: No such file or directory
  [2]
  $ wb install workbench
  wb-trial: workbench: Is a directory
  [2]
  $ wb install s.toml more
  The following argument was not expected: more
  Run with --help for more information.
  [2]
  $ wb frobnicate s.toml
  The following arguments were not expected: s.toml frobnicate
  Run with --help for more information.
  [2]
  $ wb run s.toml
  ACTION is required
  Run with --help for more information.
  [2]
  $ wb run s.toml init_wb_prefs exit
  ACTION: exit not in {detect_wb_in_default_path,validate_wb_path,find_wb_components,perform_integration,perform_deintegration,init_wb_prefs}
  Run with --help for more information.
  [2]
  $ wb install s.toml --set A
  wb-trial: --set "A": write NAME=VALUE
  [2]
  $ wb install s.toml --set =b
  wb-trial: --set "=b": write NAME=VALUE
  [2]
  $ wb install s.toml --plugin absent.so
  wb-trial: absent.so: the library does not load: ./absent.so: cannot open shared object file: No such file or directory
  [2]
  $ wb install s.toml --plugin /lib/*/libm.so.6
  wb-trial: /lib/*/libm.so.6: the library exports no detect_wb_in_default_path (glob)
  [2]

A bad session file likewise:

  $ for text in '[variables' 'a = 1' '[variables]\na = "x"\nb = 1' '[variables]\na = "x"\na = "y"' \
  >     'variables = 1' '[component]\nname = "a"' 'component = [1]' '[[component]]' \
  >     '[[component]]\nname = "a"\nfile = []' '[[component]]\nname = true' \
  >     '[[component]]\nname = "a"\ninstall_condition = "no"' '[[component]]\nname = "a"\nfiles = "a"' \
  >     '[[component]]\nname = "a"\nfiles = [\n1]' '[[component]]\nname = "a"\nfiles_from = "absent"' '\377'; do
  >     printf "$text\n" >bad.toml; wb install bad.toml || echo "  status $?"
  > done
  wb-trial: bad.toml:1: Error while parsing table header: expected ']', saw '\n'
    status 2
  wb-trial: bad.toml:1: unknown key "a"; a session has [variables] and [[component]]
    status 2
  wb-trial: bad.toml:3: "b" has to be a string
    status 2
  wb-trial: bad.toml:3: Error while parsing key-value pair: cannot redefine existing string 'a'
    status 2
  wb-trial: bad.toml:1: "variables" has to be a table: [variables]
    status 2
  wb-trial: bad.toml:1: "component" has to be a list of tables: [[component]]
    status 2
  wb-trial: bad.toml:1: "component" has to be a list of tables: [[component]]
    status 2
  wb-trial: bad.toml:1: a component needs a "name"
    status 2
  wb-trial: bad.toml:3: unknown key "file"; a component has name, install_condition, subdir, files and files_from
    status 2
  wb-trial: bad.toml:2: "name" has to be a string
    status 2
  wb-trial: bad.toml:3: "install_condition" has to be true or false
    status 2
  wb-trial: bad.toml:3: "files" has to be a list of strings
    status 2
  wb-trial: bad.toml:4: "files" has to be a string
    status 2
  wb-trial: bad.toml:3: "files_from": No such file or directory: "absent"
    status 2
  wb-trial: bad.toml:1: Encountered invalid utf-8 sequence
    status 2
  $ rm bad.toml
  $ find . | sort | diff "$TMPDIR/before" -

The copy keeps modes and links and overwrites files; a preferences file keeps all other bytes:

  $ site; cd product/suite/part/wr-qev-1.0a; mkdir dir; echo new >dir/file; chmod 640 dir/file; chmod 550 dir; ln -s dir/absent link; cd "$OLDPWD"
  $ integrate >/dev/null; printf '[home]\r\nhomes=1\r\n home = old=er\r\n#home=2\nlast \377' >product/suite/part/wr-qev-1.0a/a.prefs; chmod 604 product/suite/part/wr-qev-1.0a/a.prefs
  $ wb run s.toml init_wb_prefs; integrate >/dev/null; wb run s.toml init_wb_prefs --set WB_PREFS_INST_DIR=new >/dev/null
  workbench_init:: found WB prefs file: <part/wr-qev-1.0a/a.prefs>
  init_wb_prefs returned 0
  $ cd workbench/wr-qev-1.0a; stat -c '%A %N' * dir/*; sed "s|${PWD%/*/*}|.|" a.prefs ../../product/suite/part/*/a.prefs | cat -v
  -rw----r-- 'a.prefs'
  dr-xr-x--- 'dir'
  lrwxrwxrwx 'link' -> 'dir/absent'
  drwxr-xr-x 'wr-setup'
  -rw-r----- 'dir/file'
  [home]^M
  homes=1^M
  home=./product/suite^M
  #home=2
  last M-^?
  [home]^M
  homes=1^M
  home=./product/suite^M
  #home=2
  last M-^?^M
  new=./product/suite^M
  $ cd "$OLDPWD"; site
