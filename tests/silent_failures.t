What the plug-in by design does not notice. The action goes on as it should, wb-trial reports what
failed and exits with 1, and no file that was there before is lost or half written.

  $ . "$TESTDIR/site.sh"

One whole report. In what follows, only the failures are shown:

  $ chmod -x "$uninstall"
  $ integrate
  perform_integration
    runs: "workbench/wr-qev-1.0a/wr-setup/setup.sh" "./product/suite/part"
  perform_integration returned 0
    its command said:
      setup, arguments: 1 ./product/suite/part
    failed: the uninstall script "workbench/wr-qev-1.0a/wr-setup/uninst_wr_qev.sh" cannot be executed (Permission denied), so nothing undoes what the setup script does; is it in the product, executable?
  1 failure:
    perform_integration: the uninstall script "workbench/wr-qev-1.0a/wr-setup/uninst_wr_qev.sh" cannot be executed (Permission denied), so nothing undoes what the setup script does; is it in the product, executable?
  [1]

A copy that cannot be made:

  $ copying() {
  >     after "$1" integrate "${@:2}" | sed 's/(".*") failed//'
  > }
  $ copying 'chmod 555 workbench'
  folder_create("workbench/wr-qev-1.0a", 0755) failed: Permission denied: "workbench/wr-qev-1.0a"
  $ copying 'mkdir -m 700 outside; mkdir $copy; ln -s ../../outside $copy/wr-setup'
  dir_copy: Not a directory: "workbench/wr-qev-1.0a/wr-setup"
  700 ./outside
  $ copying : --set WB_INTEGRATION_PATH=$config
  dir_copy: Invalid argument: "product/suite/part/wr-qev-1.0a/wr-qev-1.0a"

A log that cannot be opened, and a full disk:

  $ after : wb run s.toml find_wb_components{,} --set log_file=absent/log
  the log "absent/log" cannot be opened (No such file or directory); its lines go to standard error
  $ after : on_full_disk integrate
  the log cannot be written; its lines go to standard error
  dir_copy(*) failed: File too large: * (glob)

A setup script that is killed:

  $ after 'echo "kill -9 \$\$" >>$setup; keep' wb install s.toml --set WB_PREFS=
  the command "workbench/wr-qev-1.0a/wr-setup/setup.sh" "./product/suite/part" ended with status 137

Scripts with which an integration cannot be undone:

  $ after 'rm $uninstall; keep' integrate
  the uninstall script "workbench/wr-qev-1.0a/wr-setup/uninst_wr_qev.sh" is not there, so nothing undoes what the setup script does; is it in the product, executable?
  $ after 'rm -r product/suite/vorn' integrate
  the de-integration script "./product/suite/vorn/wb_deintegrate.sh" cannot be written (No such file or directory); is its folder there and writable?
  $ after 'chmod 555 product/suite/vorn' integrate
  the de-integration script "./product/suite/vorn/wb_deintegrate.sh" cannot be written (Permission denied); is its folder there and writable?
  $ after 'mkdir $script' integrate
  the de-integration script "./product/suite/vorn/wb_deintegrate.sh" is no regular file; remove it and integrate again
  $ after 'integrate >/dev/null; chmod 444 $script' integrate
  the de-integration script "./product/suite/vorn/wb_deintegrate.sh" cannot be executed (Permission denied); its mode has to be 0755, its mount not noexec
  $ after 'cp -R workbench second; integrate >/dev/null' integrate --set WB_INTEGRATION_PATH=second
  the earlier integration in "workbench/wr-qev-1.0a" has lost its de-integration script to this one, which is in another workbench or has another configuration name; undo the earlier one by hand, and the next time uninstall it first
  $ after 'ln -s workbench second; integrate >/dev/null' integrate --set WB_INTEGRATION_PATH=second
  status 0

An integration that was not undone, or cannot have been:

  $ undoing() {
  >     site
  >     integrate >/dev/null
  >     eval "$1"
  >     failures unprivileged wb uninstall s.toml
  > }
  $ undoing 'rm $script'
  nothing undoes the integration in "workbench/wr-qev-1.0a", for there is no "./product/suite/vorn/wb_deintegrate.sh"; integrate again, then uninstall
  $ undoing 'rm -r $script $copy'
  the product is not integrated: there is no "./product/suite/vorn/wb_deintegrate.sh"
  $ undoing 'truncate -s -2 $script'
  the de-integration script "./product/suite/vorn/wb_deintegrate.sh" is there only in part; integrate again, then uninstall
  the command "./product/suite/vorn/wb_deintegrate.sh" ended with status 2
  $ undoing 'chmod 311 $script'
  the de-integration script "./product/suite/vorn/wb_deintegrate.sh" cannot be read; integrate again, then uninstall
  the command "./product/suite/vorn/wb_deintegrate.sh" ended with status 2
  $ undoing 'rm $script; mkdir $script'
  the de-integration script "./product/suite/vorn/wb_deintegrate.sh" is no regular file; integrate again, then uninstall
  the command "./product/suite/vorn/wb_deintegrate.sh" ended with status 126
  $ undoing 'mv $copy copy; ln -s ../copy $copy'
  the directory "workbench/wr-qev-1.0a" that the de-integration script removes was not there; was it named from another folder, or is it uninstalled already?
  $ undoing 'chmod 555 workbench'
  the command "./product/suite/vorn/wb_deintegrate.sh" ended with status 1
  the directory "workbench/wr-qev-1.0a" is still there; see the output

A preferences file that cannot be read, replaced or understood, is not there, or has no key to be set:

  $ setting() {
  >     after "$1" wb run s.toml init_wb_prefs "${@:2}" | sed 's/.*was not changed: //'
  > }
  $ setting 'chmod 555 $config'
  Permission denied
  $ setting 'mkdir -p product/suite/share/wr-qev-1.0a/readme.txt' --set WB_PREFS=readme
  it is not a regular file
  $ setting 'printf "\xef\xbb\xbfhome=" >$prefs; keep'
  it begins with a byte order mark; save it without
  $ after : on_full_disk wb run s.toml init_wb_prefs --set log_file=
  the preferences file "./product/suite/part/wr-qev-1.0a/a.prefs" was not changed: File too large
  $ setting : --set WB_PREFS_INST_DIR=
  the key is empty; is WB_PREFS_INST_DIR set?
  $ setting 'ln -s product $'"'pro\nduct'" --set $'VORN_INSTALL_DIR=pro\nduct'
  the key or the value does not fit into a line of such a file

What ends an action with an exception is a failure too, and later actions still run:

  $ site
  $ sed -i 's/, files_from.*" }/ }/' s.toml
  $ prlimit --nofile=5 wb-trial run s.toml perform_deintegration find_wb_components --set log_file= 2>/dev/null | grep -e return -e '^  failed: an'
  perform_deintegration did not return
    failed: an exception ended it: start a command: Too many open files
  find_wb_components returned 0
  [1]
