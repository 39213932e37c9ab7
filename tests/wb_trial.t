  $ . "$TESTDIR/site.sh"

Where the workbench will not do, or there is nothing to integrate:

  $ chmod 555 workbench
  $ for variable in 'SUPPORTED_VERSION=2;' WB_INTEGRATION_PATH=/absent DEFAULT_SEARCH_PATH=absent WB_PREFS=; do
  >     unprivileged wb --set "$variable" install s.toml | grep -e "set back" -e Stopped && echo "status 0"
  > done
  Stopped: "workbench" is of no supported version: looked for "name=2", and its install.properties has "name=3.1"; end each version in SUPPORTED_VERSION by ";", without blanks.
  WB_INTEGRATION_PATH is set back to "/absent", the session's own choice
  Stopped: "/absent" holds no file install.properties.
  Stopped: no directory in DEFAULT_SEARCH_PATH holds a file install.properties; tried: "absent".
  Stopped: "workbench" cannot be written by this user.
  [1]
  $ chmod 755 workbench
  $ wb install s.toml --set WB_PREFSS=.prefs | grep note:
  [1]
  $ sed -i s/workbench-part/part/ s.toml
  $ wb install s.toml --set WB_PREFSS=.prefs | grep -e Nothing -e note:
  [1]

Options stand before or after the rest, and actions run in the order given:

  $ site; sed -i '/VORN_INSTALL_DIR/s|/|/${SESSION_DIR}/|' s.toml
  $ ln -s "$PWD" "$PWD/s.toml" product/suite
  $ wb run --trace s.toml init_wb_prefs --set WB_PREFS= find_wb_components --set VORN_INSTALL_SUBDIR=x | grep -e VORN_INSTALL_DIR -e fileList -e returned
  env_get_string("VORN_INSTALL_DIR") = "././product"
  fileList(set) = {"share\\wr-qev-1.0a\\readme.txt", "part/wr-qev-1.0a/a.prefs", "part/wr-qev-1.0a/wr-setup/setup.sh", "part/wr-qev-1.0a/wr-setup/uninst_wr_qev.sh"}
  init_wb_prefs returned 0
  find_wb_components returned 0

The copy keeps modes and links, overwrites files and leaves FIFOs out:

  $ site; mkdir $config/dir; mkfifo $config/fifo
  $ echo new >$config/dir/file; chmod 640 $config/dir/file; chmod 550 $config/dir
  $ ln -s dir/absent $config/link
  $ echo 4755 >$config/kept; chmod 4755 $config/kept
  $ cp $config/kept $config/dropped; chmod 755 $config/dropped
  $ if chown 12345 $config/dropped 2>/dev/null; then chmod 6755 $config/dropped; fi
  $ (umask 077; failures unprivileged integrate)
  not copied: "./product/suite/part/wr-qev-1.0a/fifo" is a FIFO, a socket or a device; leave it out
  $ echo newer >>$prefs; failures unprivileged integrate
  not copied: "./product/suite/part/wr-qev-1.0a/fifo" is a FIFO, a socket or a device; leave it out
  $ (cd $copy && stat -c '%A %N' . dir dir/file dropped kept link)
  drwxr-xr-x '.'
  dr-xr-x--- 'dir'
  -rw-r----- 'dir/file'
  -rwxr-xr-x 'dropped'
  -rwsr-xr-x 'kept'
  lrwxrwxrwx 'link' -> 'dir/absent'
  $ tail -n 1 $copy/a.prefs
  b=2newer

SIGTERM in the middle of a copy leaves nothing behind:

  $ site; rm -r $config/*; truncate -s 3G $config/large
  $ nice wb-trial run s.toml perform_integration --set WB_INTEGRATION_PATH=workbench &
  $ for try in {1..900}; do stat -c %a $copy/.wb-trial-* 2>/dev/null && break; sleep 0.01; done
  600
  $ kill $!; wait $!
  [143]
  $ find $copy
  workbench/wr-qev-1.0a

A preferences file keeps all other bytes, its owner and its mode, and stays a link:

  $ site; mkdir -p product/suite/share/wr-qev-1.0a; ln -s ../../../real product/suite/share/wr-qev-1.0a/readme.txt; ln -s product 'p\x'
  $ printf '[home]\r\nhomes=1\r\n home = old=er\r\n#home=2\nhome=\nlast \377' >product/real
  $ chown 12345 product/real 2>/dev/null; chmod 604 product/real; stat -c '%u %g %a' product/real >"$TMPDIR/before"
  $ for key in home new; do wb run s.toml init_wb_prefs --set WB_PREFS=readme --set WB_PREFS_INST_DIR=$key --set 'VORN_INSTALL_DIR=p\x' >/dev/null; done
  $ stat -c '%u %g %a' product/real | diff "$TMPDIR/before" -
  $ readlink product/suite/share/*/readme.txt; cat -v product/real
  ../../../real
  [home]^M
  homes=1^M
  home=p\x/suite^M
  #home=2
  home=p\x/suite
  last M-^?^M
  new=p\x/suite^M

One in a tree that a group shares is written too, though its group cannot be kept:

  $ if chgrp 12345 product/real 2>/dev/null; then
  >     chown "$(id -u)" product/real; chmod 660 product/real
  >     setpriv --bounding-set=-chown wb-trial run s.toml init_wb_prefs --set WB_PREFS=readme 2>&1 | tail -n 1; stat -c %a product/real
  > else printf '  note: the group of "/product/real" could not be kept\n600\n'; fi
    note: the group of "*/product/real" could not be kept (glob)
  600

What a setup script finds, whatever the caller left in disorder:

  $ cat >$setup <<'END'
  > #!/bin/bash
  > until grep -q 'runs: ' report; do sleep 0.1; done
  > read -r line || echo "end of input"
  > sh -c 'kill -PIPE $$'; echo "status $?"
  > [ "$(ls /proc/self/fd | wc -w)" = 4 ] && printf 'no other descriptor\tESC \033[1m \302\233\n' >&2
  > END
  $ mkfifo never
  $ timeout 20 env --ignore-signal=CHLD --ignore-signal=PIPE wb-trial run s.toml perform_integration --set WB_INTEGRATION_PATH=workbench >report 0<>never 7<s.toml
  $ sed -n '/said/,$p' report
    its command said:
      end of input
      status 141
      no other descriptor\tESC \\x1b[1m \xc2\\x9b (esc)
  $ integrate --set WORKBENCH_SCRIPT_NAME=$'\033[1m' | grep -e runs: -e failed:
    runs: "workbench/wr-qev-1.0a/wr-setup/\x1b[1m.sh" "./product/suite/part"
    failed: the command "workbench/wr-qev-1.0a/wr-setup/\x1b[1m.sh" "./product/suite/part" ended with status 127
  [1]

A lot of output is cut in the report and not in the log:

  $ printf '#!/bin/sh\nhead -c 8388608 /dev/zero | tr "\\0" "~"\n' >$setup
  $ wb-trial run s.toml perform_integration --set WB_INTEGRATION_PATH=workbench >report
  $ tr -cd '~' <report | wc -c; grep said report; tr -cd '~' <log | wc -c
  4194304
    its command said 8388608 bytes, of which the last 4194304 were:
  8388608

A report that cannot be written is a failure, wherever it was to go:

  $ site; mkfifo pipe
  $ wb-trial install s.toml 8<>pipe 9>pipe 8<&- >&9
  wb-trial: the report cannot be written
  [1]
  $ tail -n 1 log
  workbench_init:: found WB prefs file: <part/wr-qev-1.0a/a.prefs>
  $ wb-trial run s.toml find_wb_components >&-
  wb-trial: the report cannot be written
  [1]
  $ grep returned log
  [1]

Installed, it finds the library that was installed with it:

  $ cmake --install "$WB_TRIAL_DIR" --prefix "$PWD/usr" >/dev/null 2>&1 || :
  $ usr/bin/wb-trial run s.toml find_wb_components | sed -n 1p
  find_wb_components returned 0

Its own operations keep what an installer has to promise:

  $ site
  $ wb-trial run s.toml find_wb_components --plugin "$WB_TRIAL_DIR/hostcheck/libworkbench-int.so.1n" 2>report | grep returned
  find_wb_components returned 0
  [1]
  $ grep '^not ok' report; tail -n 1 report
  1..36

Bad arguments: one message, status 2, and nothing is run:

  $ site; : >bad.toml; find . | sort >"$TMPDIR/before"
  $ for arguments in '' install 'install absent.toml' 'install workbench' 'install s.toml more' 'run s.toml' \
  >     'run s.toml init_wb_prefs exit' 'install s.toml --set A' \
  >     'install s.toml --plugin absent.so' 'install s.toml --plugin /lib/*/libm.so.6'; do
  >     refused $arguments
  > done
  wb-trial: a command is missing: check, install, uninstall or run
  SESSION.toml is required
  wb-trial: absent.toml: No such file or directory
  wb-trial: workbench: Is a directory
  The following argument was not expected: more
  ACTION is required
  ACTION: exit not in {detect_wb_in_default_path,validate_wb_path,find_wb_components,perform_integration,perform_deintegration,init_wb_prefs}
  wb-trial: --set "A": write NAME=VALUE
  wb-trial: absent.so: the library does not load: ./absent.so: cannot open shared object file: No such file or directory
  wb-trial: /lib/*/libm.so.6: the library exports no detect_wb_in_default_path (glob)

A bad session file likewise:

  $ for text in '[variables' 'a = 1' '[variables]\na = "x"\nb = 1' \
  >     'variables = 1' '[component]\nname = "a"' '[[component]]' \
  >     '[[component]]\nname = "a"\nfile = []' '[[component]]\nname = true' \
  >     '[[component]]\nname = "a"\ninstall_condition = "no"' '[[component]]\nname = "a"\nfiles = "a"' \
  >     '[[component]]\nname = "a"\nfiles = [\n1]' '[[component]]\nname = "a"\nfiles_from = "absent"' '\377'; do
  >     printf "$text\n" >bad.toml; refused install bad.toml
  > done
  wb-trial: bad.toml:1: Error while parsing table header: expected ']', saw '\n'
  wb-trial: bad.toml:1: unknown key a; a session has [variables] and [[component]]
  wb-trial: bad.toml:2: unknown variable a; did you mean WB_PREFS?
  wb-trial: bad.toml:1: variables has to be a table: [variables]
  wb-trial: bad.toml:1: component has to be a list of tables: [[component]]
  wb-trial: bad.toml:1: a component needs a name
  wb-trial: bad.toml:3: unknown key file; a component has name, install_condition, subdir, files and files_from
  wb-trial: bad.toml:2: name has to be a string
  wb-trial: bad.toml:3: install_condition has to be true or false
  wb-trial: bad.toml:3: files has to be a list of strings
  wb-trial: bad.toml:4: files has to be a string
  wb-trial: bad.toml:3: files_from: No such file or directory: absent
  wb-trial: bad.toml:1: Encountered invalid utf-8 sequence
  $ find . | sort | diff "$TMPDIR/before" -
  $ mkdir -m 000 product/suite/locked
  $ unprivileged refused install s.toml
  wb-trial: s.toml:3: files_from: Permission denied: ./product/suite/locked
  $ site
