What the plug-in by design does not notice: the action goes on as it should, wb-trial tells what
went wrong and exits with 1, and no file that was there before is lost or half written.

  $ . "$TESTDIR/site.sh"
  $ config=product/suite/part/wr-qev-1.0a
  $ keep() { find . -type f ! -name log -exec sha256sum {} + >"$TMPDIR/sums"; }
  $ kept() { sha256sum --quiet -c "$TMPDIR/sums" && find . -name '*.wb-trial-*'; }
  $ on_full_disk() { (trap '' XFSZ; ulimit -f 0; "$@" | grep -v workbench_int; exit "${PIPESTATUS[0]}"); }

A workbench that turned read-only:

  $ chmod 555 workbench; keep; unprivileged bash -c "$(declare -f wb integrate); integrate"
  perform_integration returned 127
    its command said:
      /bin/sh: 1: ./workbench/wr-qev-1.0a/wr-setup/setup.sh: not found
    failed: folder_create("./workbench/wr-qev-1.0a", 0755) failed: Permission denied: "./workbench/wr-qev-1.0a"
    failed: dir_copy("./product/suite/part/wr-qev-1.0a", "./workbench/wr-qev-1.0a") failed: Not a directory: "./workbench/wr-qev-1.0a"
    failed: the command "./workbench/wr-qev-1.0a/wr-setup/setup.sh" "./product/suite/part" ended with status 127
  [1]
  $ kept

A full disk, the first time and over an earlier integration:

  $ site; keep; on_full_disk integrate
  
  perform_integration returned 127
    its command said:
      /bin/sh: 1: ./workbench/wr-qev-1.0a/wr-setup/setup.sh: not found
    failed: the log cannot be written, its lines go to standard error
    failed: dir_copy(*) failed: File too large: * (glob)
    failed: the command "./workbench/wr-qev-1.0a/wr-setup/setup.sh" "./product/suite/part" ended with status 127
    failed: the de-integration script "./product/suite/vorn/wb_deintegrate.sh" was written only in part; is the disk full?
  [1]
  $ kept; site; integrate >/dev/null; rm product/suite/vorn/wb_deintegrate.sh
  $ echo c=3 >>$config/a.prefs; keep; on_full_disk integrate
  
  perform_integration returned 0
    its command said:
      setup, arguments: 1 ./product/suite/part
    failed: the log cannot be written, its lines go to standard error
    failed: dir_copy(*) failed: File too large: * (glob)
    failed: the de-integration script "./product/suite/vorn/wb_deintegrate.sh" was written only in part; is the disk full?
  [1]
  $ kept

A product tree that is gone, and a file where its copy is to lie:

  $ site; sed -i 's|share.readme.txt|part/wr-qev-1.0a/x|' s.toml; rm -r $config; keep; integrate
  perform_integration returned 127
    its command said:
      /bin/sh: 1: ./workbench/wr-qev-1.0a/wr-setup/setup.sh: not found
    failed: dir_copy("./product/suite/part/wr-qev-1.0a", "./workbench/wr-qev-1.0a") failed: No such file or directory: "./product/suite/part/wr-qev-1.0a"
    failed: the command "./workbench/wr-qev-1.0a/wr-setup/setup.sh" "./product/suite/part" ended with status 127
  [1]
  $ kept; site; echo mine >workbench/wr-qev-1.0a; keep; integrate
  perform_integration returned 127
    its command said:
      /bin/sh: 1: ./workbench/wr-qev-1.0a/wr-setup/setup.sh: not found
    failed: folder_create("./workbench/wr-qev-1.0a", 0755) failed: Not a directory: "./workbench/wr-qev-1.0a"
    failed: dir_copy("./product/suite/part/wr-qev-1.0a", "./workbench/wr-qev-1.0a") failed: Not a directory: "./workbench/wr-qev-1.0a"
    failed: the command "./workbench/wr-qev-1.0a/wr-setup/setup.sh" "./product/suite/part" ended with status 127
  [1]
  $ kept

A copy that would lead out of the workbench through a link, or into itself:

  $ site; mkdir outside workbench/wr-qev-1.0a; ln -s ../../outside workbench/wr-qev-1.0a/wr-setup; integrate
  perform_integration returned 127
    its command said:
      /bin/sh: 1: ./workbench/wr-qev-1.0a/wr-setup/setup.sh: not found
    failed: dir_copy("./product/suite/part/wr-qev-1.0a", "./workbench/wr-qev-1.0a") failed: Not a directory: "./workbench/wr-qev-1.0a/wr-setup"
    failed: the command "./workbench/wr-qev-1.0a/wr-setup/setup.sh" "./product/suite/part" ended with status 127
  [1]
  $ ls outside; site; integrate --set WB_INTEGRATION_PATH=$config
  perform_integration returned 127
    its command said:
      /bin/sh: 1: product/suite/part/wr-qev-1.0a/wr-qev-1.0a/wr-setup/setup.sh: not found
    failed: dir_copy("./product/suite/part/wr-qev-1.0a", "product/suite/part/wr-qev-1.0a/wr-qev-1.0a") failed: Invalid argument: "product/suite/part/wr-qev-1.0a/wr-qev-1.0a"
    failed: the command "product/suite/part/wr-qev-1.0a/wr-qev-1.0a/wr-setup/setup.sh" "./product/suite/part" ended with status 127
  [1]

A setup script that is not executable, fails, is killed or is missing:

  $ site; chmod -x $config/wr-setup/setup.sh; integrate
  perform_integration returned 126
    its command said:
      /bin/sh: 1: ./workbench/wr-qev-1.0a/wr-setup/setup.sh: Permission denied
    failed: the command "./workbench/wr-qev-1.0a/wr-setup/setup.sh" "./product/suite/part" ended with status 126
  [1]
  $ site; printf '#!/bin/sh\necho oh >&2\nexit 3\n' >$config/wr-setup/setup.sh; integrate
  perform_integration returned 3
    its command said:
      oh
    failed: the command "./workbench/wr-qev-1.0a/wr-setup/setup.sh" "./product/suite/part" ended with status 3
  [1]
  $ site; printf '#!/bin/sh\nkill -9 $$\n' >$config/wr-setup/setup.sh; integrate
  perform_integration returned 137
    its command said:
      Killed
    failed: the command "./workbench/wr-qev-1.0a/wr-setup/setup.sh" "./product/suite/part" ended with status 137
  [1]
  $ site; integrate --set WORKBENCH_SCRIPT_NAME=absent
  perform_integration returned 127
    its command said:
      /bin/sh: 1: ./workbench/wr-qev-1.0a/wr-setup/absent.sh: not found
    failed: the command "./workbench/wr-qev-1.0a/wr-setup/absent.sh" "./product/suite/part" ended with status 127
  [1]

A de-integration script that cannot be written, or is not there to be run:

  $ site; mkdir product/suite/vorn/wb_deintegrate.sh; integrate
  perform_integration returned 0
    its command said:
      setup, arguments: 1 ./product/suite/part
    failed: the de-integration script "./product/suite/vorn/wb_deintegrate.sh" cannot be written; is its folder there and writable?
  [1]
  $ site; rm -r product/suite/vorn; integrate
  perform_integration returned 0
    its command said:
      setup, arguments: 1 ./product/suite/part
    failed: the de-integration script "./product/suite/vorn/wb_deintegrate.sh" cannot be written; is its folder there and writable?
  [1]
  $ site; integrate >/dev/null; chmod -x workbench/*/wr-setup/uninst*; wb uninstall s.toml
  perform_deintegration returned 0
    its command said:
      /bin/sh: 1: ./workbench/wr-qev-1.0a/wr-setup/uninst_wr_qev.sh: Permission denied
  $ site; wb uninstall s.toml
  perform_deintegration returned 0
    its command said:
      /bin/sh: 1: ./product/suite/vorn/wb_deintegrate.sh: not found
    failed: the command "./product/suite/vorn/wb_deintegrate.sh" ended with status 127
  [1]

A preferences file that cannot be replaced, is not there, or has no key to be set:

  $ prefs() { wb run s.toml find_wb_components init_wb_prefs "$@" | grep -A 9 init_wb; return "${PIPESTATUS[0]}"; }
  $ chmod 555 $config; keep; unprivileged bash -c "$(declare -f wb prefs); prefs"
  init_wb_prefs returned 0
    failed: the preferences file "./product/suite/part/wr-qev-1.0a/a.prefs" was not changed: Permission denied
  [1]
  $ kept; site; keep; on_full_disk prefs
  init_wb_prefs returned 0
    failed: the preferences file "./product/suite/part/wr-qev-1.0a/a.prefs" was not changed: File too large
  [1]
  $ prefs --set WB_PREFS_INST_DIR=
  init_wb_prefs returned 0
    failed: the preferences file "./product/suite/part/wr-qev-1.0a/a.prefs" was not changed: the key is empty; is WB_PREFS_INST_DIR set?
  [1]
  $ kept; prefs --set WB_PREFS_INST_DIR=a=b
  init_wb_prefs returned 0
    failed: the preferences file "./product/suite/part/wr-qev-1.0a/a.prefs" was not changed: the key or the value does not fit into a line of such a file
  [1]
  $ kept; sed -i 's|share.readme.txt|gone.prefs|' s.toml; prefs
  init_wb_prefs returned 0
    failed: the preferences file "./product/suite/gone.prefs" was not changed: No such file or directory
  [1]

A log that cannot be opened or written:

  $ wb run s.toml find_wb_components --set log_file=absent/log
  workbench_int: find_wb_components entered
  workbench_int: workbench integration supported
  find_wb_components returned 0
    WB_INTEGRATION_SUPPORTED = "yes"
    WB_INSTALL_SUBDIR = "/suite/part"
    failed: the log "absent/log" cannot be opened (No such file or directory), its lines go to standard error
  [1]
  $ on_full_disk wb run s.toml find_wb_components
  find_wb_components returned 0
    WB_INTEGRATION_SUPPORTED = "yes"
    WB_INSTALL_SUBDIR = "/suite/part"
    failed: the log cannot be written, its lines go to standard error
  [1]
