What the plug-in by design does not notice: the action goes on as it should, wb-trial tells what
went wrong and exits with 1, and no file that was there before is lost or half written.

  $ . "$TESTDIR/site.sh"
  $ keep() { find . -type f ! -name log -exec sha256sum {} + >"$TMPDIR/sums"; }
  $ kept() { chmod -R u+rwX product; sha256sum --quiet -c "$TMPDIR/sums"; find . \( -name '*.wb-trial-*' -o -path './outside*' \) -printf '%m %p\n'; }
  $ on_full_disk() { (trap '' XFSZ; ulimit -f 0; "$@"); }
  $ after() { site; keep; eval "$1"; failures unprivileged "${@:2}"; kept; }

A copy that cannot be made:

  $ copying() { after "$1" integrate "${@:2}" | sed 's/(".*") failed//' | grep -v -e 'ended with status' -e 'uninstall script'; }
  $ copying 'chmod 555 workbench'
  folder_create("workbench/wr-qev-1.0a", 0755) failed: Permission denied: "workbench/wr-qev-1.0a"
  $ copying 'rm -r $config; keep'
  dir_copy: No such file or directory: "./product/suite/part/wr-qev-1.0a"
  $ copying 'echo mine >$copy; keep'
  folder_create("workbench/wr-qev-1.0a", 0755) failed: Not a directory: "workbench/wr-qev-1.0a"
  $ copying 'mkdir -p $copy/a.prefs/x'
  dir_copy: Is a directory: "workbench/wr-qev-1.0a/a.prefs"
  $ copying 'chmod 000 $prefs'
  dir_copy: Permission denied: "./product/suite/part/wr-qev-1.0a/a.prefs"
  $ copying 'mkdir -m 700 outside; ln -s ../outside $copy'
  folder_create("workbench/wr-qev-1.0a", 0755) failed: Not a directory: "workbench/wr-qev-1.0a"
  700 ./outside
  $ copying 'mkdir -m 700 outside; mkdir $copy; ln -s ../../outside $copy/wr-setup'
  dir_copy: Not a directory: "workbench/wr-qev-1.0a/wr-setup"
  700 ./outside
  $ copying : --set WB_INTEGRATION_PATH=$config
  dir_copy: Invalid argument: "product/suite/part/wr-qev-1.0a/wr-qev-1.0a"

A log that cannot be opened, and a full disk, the first time and over an earlier integration:

  $ after : wb run s.toml find_wb_components init_wb_prefs --set log_file=absent/log --set WB_PREFS=
  the log "absent/log" cannot be opened (No such file or directory); its lines go to standard error
  $ after : on_full_disk integrate
  the log cannot be written; its lines go to standard error
  dir_copy(*) failed: File too large: * (glob)
  $ after 'integrate >/dev/null; echo c=3 >>$prefs; rm $script; keep' on_full_disk integrate
  the log cannot be written; its lines go to standard error
  dir_copy(*) failed: File too large: * (glob)

A setup script that is not executable, fails, is killed or is missing:

  $ running() { after "$1" wb install s.toml --set WB_PREFS=; }
  $ for fault in 'chmod -x $setup' 'echo exit 3 >>$setup; keep' 'rm $setup; keep' \
  >     'echo "grep -qx sh /proc/\$PPID/comm && kill -9 \$PPID || kill -9 \$\$" >>$setup; keep'; do running "$fault"; done
  the command "workbench/wr-qev-1.0a/wr-setup/setup.sh" "./product/suite/part" ended with status 126
  the command "workbench/wr-qev-1.0a/wr-setup/setup.sh" "./product/suite/part" ended with status 3
  the command "workbench/wr-qev-1.0a/wr-setup/setup.sh" "./product/suite/part" ended with status 127
  the command "workbench/wr-qev-1.0a/wr-setup/setup.sh" "./product/suite/part" ended with status 137

Scripts with which an integration cannot be undone:

  $ after 'rm $config/wr-setup/uninst*; keep' integrate
  the uninstall script "workbench/wr-qev-1.0a/wr-setup/uninst_wr_qev.sh" is not there, so what was set up stays; is it in the product, executable?
  $ after 'chmod -x $config/wr-setup/uninst*' integrate
  the uninstall script "workbench/wr-qev-1.0a/wr-setup/uninst_wr_qev.sh" cannot be executed (Permission denied), so what was set up stays; is it in the product, executable?
  $ after 'rm -r product/suite/vorn' integrate
  the de-integration script "./product/suite/vorn/wb_deintegrate.sh" cannot be written (No such file or directory); is its folder there and writable?
  $ after 'mkdir $script' integrate
  the de-integration script "./product/suite/vorn/wb_deintegrate.sh" is no regular file; remove it and integrate again
  $ after 'echo other >$script; chmod 444 $script; keep' integrate
  the de-integration script "./product/suite/vorn/wb_deintegrate.sh" cannot be written (Permission denied); is its folder there and writable?
  $ after 'integrate >/dev/null; chmod 444 $script' integrate
  the de-integration script "./product/suite/vorn/wb_deintegrate.sh" cannot be executed (Permission denied); its mode has to be 0755, its mount not noexec
  $ after 'cp -R workbench second; integrate >/dev/null' integrate --set WB_INTEGRATION_PATH=second
  the earlier integration in "workbench/wr-qev-1.0a" has lost its de-integration script to this one, which is in another workbench or has another configuration name; undo the earlier one by hand, and the next time uninstall it first

An integration that was not undone, or cannot have been:

  $ undoing() { site; integrate >/dev/null; eval "$1"; failures unprivileged wb uninstall s.toml; }
  $ undoing 'rm $copy/wr-setup/uninst*'
  the uninstall script "workbench/wr-qev-1.0a/wr-setup/uninst_wr_qev.sh" is not there, so what was set up stays; is it in the product, executable?
  $ undoing 'chmod -x $copy/wr-setup/uninst*'
  the uninstall script "workbench/wr-qev-1.0a/wr-setup/uninst_wr_qev.sh" cannot be executed (Permission denied), so what was set up stays; is it in the product, executable?
  $ undoing 'rm $script'
  the product is not integrated: there is no "./product/suite/vorn/wb_deintegrate.sh"
  $ undoing 'echo >$script'
  the de-integration script "./product/suite/vorn/wb_deintegrate.sh" is there only in part; integrate again, then uninstall
  $ undoing 'mv workbench elsewhere'
  the directory "workbench/wr-qev-1.0a" that the de-integration script removes was not there; was it named from another folder, or is it uninstalled already?
  $ undoing 'chmod 555 workbench'
  the command "./product/suite/vorn/wb_deintegrate.sh" ended with status 1
  the directory "workbench/wr-qev-1.0a" is still there; see the output

A preferences file that cannot be read, replaced or understood, is not there, or has no key to be set:

  $ setting() { after "$1" wb run s.toml init_wb_prefs "${@:2}"; }
  $ for fault in 'chmod 555 $config' 'chmod 000 $prefs' 'printf "\xef\xbb\xbfhome=" >$prefs; keep'; do setting "$fault"; done
  the preferences file "./product/suite/part/wr-qev-1.0a/a.prefs" was not changed: Permission denied
  the preferences file "./product/suite/part/wr-qev-1.0a/a.prefs" was not changed: Permission denied
  the preferences file "./product/suite/part/wr-qev-1.0a/a.prefs" was not changed: it begins with a byte order mark; save it without
  $ after : on_full_disk wb run s.toml init_wb_prefs
  the preferences file "./product/suite/part/wr-qev-1.0a/a.prefs" was not changed: File too large
  $ after 'printf "h\0o\0" >$prefs; keep' wb install s.toml
  the preferences file "./product/suite/part/wr-qev-1.0a/a.prefs" was not changed: it holds a zero byte; is it UTF-16, or no text?
  $ for variable in WB_PREFS=readme WB_PREFS_INST_DIR= WB_PREFS_INST_DIR=a=b $'WB_PREFS_INST_DIR=a\nb' $'VORN_INSTALL_DIR=pro\nduct'; do
  >     setting 'ln -s product $'"'pro\nduct'" --set "$variable"
  > done
  the preferences file "./product/suite/share/wr-qev-1.0a/readme.txt" was not changed: No such file or directory
  the preferences file "./product/suite/part/wr-qev-1.0a/a.prefs" was not changed: the key is empty; is WB_PREFS_INST_DIR set?
  the preferences file "./product/suite/part/wr-qev-1.0a/a.prefs" was not changed: the key or the value does not fit into a line of such a file
  the preferences file "./product/suite/part/wr-qev-1.0a/a.prefs" was not changed: the key or the value does not fit into a line of such a file
  the preferences file "pro\nduct/suite/part/wr-qev-1.0a/a.prefs" was not changed: the key or the value does not fit into a line of such a file
