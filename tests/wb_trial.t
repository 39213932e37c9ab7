What a user of the program sees.

  $ . "$TESTDIR/site.sh"

A whole install:

  $ wb install s.toml
  warning: "workbench" is relative: the integration can be undone from this folder only; write it from the root
  detect_wb_in_default_path returned 0
    WB_INTEGRATION_PATH = "workbench"
  validate_wb_path returned 0
    PATH_STATUS = "ok"
  find_wb_components returned 0
    WB_INTEGRATION_SUPPORTED = "yes"
    WB_INSTALL_SUBDIR = "/suite/part"
  perform_integration
    runs: "workbench/wr-qev-1.0a/wr-setup/setup.sh" "./product/suite/part"
  perform_integration returned 0
    its command said:
      setup, arguments: 1 ./product/suite/part
  init_wb_prefs returned 0

Options stand before or after the rest, and actions run in the order given, whatever failed before:

  $ site
  $ sed -i '/VORN_INSTALL_DIR/s|/|/${SESSION_DIR}/|' s.toml
  $ ln -s "$PWD" "$PWD/s.toml" product/suite
  $ wb --trace run s.toml perform_deintegration init_wb_prefs --set WB_PREFS= find_wb_components --set VORN_INSTALL_SUBDIR=x |
  >     grep -e VORN_INSTALL_DIR -e fileList -e returned
  env_get_string("VORN_INSTALL_DIR") = "././product"
  perform_deintegration returned 0
  env_get_string("VORN_INSTALL_DIR") = "././product"
  fileList(set) = {"share\\wr-qev-1.0a\\readme.txt", "part/wr-qev-1.0a/a.prefs", "part/wr-qev-1.0a/wr-setup/setup.sh", "part/wr-qev-1.0a/wr-setup/uninst_wr_qev.sh"}
  init_wb_prefs returned 0
  find_wb_components returned 0
  [1]
  $ wb run "product/suite/${PWD##*/}/s.toml" find_wb_components --trace | grep log_file
  env_get_string("log_file") = "./log"

The copy keeps modes and links, overwrites files and leaves FIFOs out:

  $ site
  $ mkdir $config/dir
  $ echo new >$config/dir/file
  $ chmod 640 $config/dir/file
  $ chmod 550 $config/dir
  $ ln -s dir/absent $config/link
  $ echo 4755 >$config/kept
  $ chmod 4755 $config/kept
  $ cp $config/kept $config/dropped
  $ chmod 755 $config/dropped
  $ if chown 12345 $config/dropped 2>/dev/null; then chmod 6755 $config/dropped; fi
  $ mkfifo $config/fifo
  $ (umask 077; failures unprivileged integrate)
  not copied: "./product/suite/part/wr-qev-1.0a/fifo" is a FIFO, a socket or a device; leave it out
  $ rm $config/fifo
  $ chmod g+s $copy $copy/wr-setup
  $ echo newer >>$prefs
  $ failures unprivileged integrate
  status 0
  $ (cd $copy && stat -c '%A %N' . dir dir/file dropped kept link wr-setup)
  drwxr-sr-x '.'
  dr-xr-x--- 'dir'
  -rw-r----- 'dir/file'
  -rwxr-xr-x 'dropped'
  -rwsr-xr-x 'kept'
  lrwxrwxrwx 'link' -> 'dir/absent'
  drwxr-sr-x 'wr-setup'
  $ tail -n 1 $copy/a.prefs
  b=2newer

A signal in the middle of a copy ends the program by that signal, and leaves nothing half written:

  $ interrupted() {
  >     site
  >     truncate -s 3G $config/large
  >     nice env --default-signal wb-trial run s.toml perform_integration --set WB_INTEGRATION_PATH=workbench &
  >     for try in {1..900}; do
  >         stat -c %a $copy/.wb-trial-* 2>/dev/null | grep -x 600 && break
  >         sleep 0.01
  >     done
  >     kill -$1 $!
  >     { wait $!; } 2>/dev/null
  >     echo "status $?"
  >     find $copy -name '.*' -o -name large
  > }
  $ interrupted TERM
  600
  status 143
  $ interrupted HUP
  600
  status 129

A preferences file keeps all other bytes, its owner, mode, ACL and attributes, and stays a link:

  $ site
  $ mkdir -p product/suite/share/wr-qev-1.0a
  $ ln -s ../../../real product/suite/share/wr-qev-1.0a/readme.txt
  $ ln -s product 'p\x'
  $ printf '[home]\r\nhomes=1\r\n home = old=er\r\n#home=2\nhome=\nlast \377' >product/real
  $ chown 12345 product/real 2>/dev/null || :
  $ chmod 604 product/real
  $ setfacl -m u:nobody:rw product/real
  $ setfattr -n user.color -v red product/real
  $ facts() {
  >     stat -c '%u %g %a' product/real
  >     getfacl -c product/real
  >     getfattr -d product/real
  > }
  $ facts >"$TMPDIR/before"
  $ for key in home new; do
  >     wb run s.toml init_wb_prefs --set WB_PREFS=readme --set WB_PREFS_INST_DIR=$key --set 'VORN_INSTALL_DIR=p\x' >/dev/null
  > done
  $ facts | diff "$TMPDIR/before" -
  $ readlink product/suite/share/*/readme.txt
  ../../../real
  $ cat -v product/real
  [home]^M
  homes=1^M
  home=p\x/suite^M
  #home=2
  home=p\x/suite
  last M-^?^M
  new=p\x/suite^M

What a setup script finds, whatever state the caller left:

  $ site
  $ cat >$setup <<'END'
  > #!/bin/bash
  > until grep -q 'runs: ' report; do sleep 0.1; done
  > read -r line || echo "end of input"
  > sh -c 'kill -PIPE $$'; echo "status $?"
  > for number in {3..99}; do (: <&$number) 2>/dev/null && exit; done
  > printf 'no other descriptor\tESC \033[1m \302\233 \177\n' >&2
  > exit 3
  > END
  $ mkfifo never
  $ timeout 20 env --ignore-signal=CHLD --ignore-signal=PIPE wb-trial run s.toml perform_integration --set WB_INTEGRATION_PATH=workbench >report 0<>never 7<s.toml
  [1]
  $ sed -n '/returned/,/^    *[a-z ]*descriptor/p' report
  perform_integration returned 3
    its command said:
      end of input
      status 141
      no other descriptor\tESC \\x1b[1m \xc2\\x9b \\x7f (esc)
  $ integrate --set WORKBENCH_SCRIPT_NAME=$'\033[1m' | grep -e runs: -e '^  failed:'
    runs: "workbench/wr-qev-1.0a/wr-setup/\x1b[1m.sh" "./product/suite/part"
    failed: the command "workbench/wr-qev-1.0a/wr-setup/\x1b[1m.sh" "./product/suite/part" ended with status 127
  [1]

A line that no log takes goes to standard error, without control characters:

  $ wb run s.toml detect_wb_in_default_path --set log_file= --set DEFAULT_SEARCH_PATH=$'\033[1m' | grep string
  workbench_int: default_path_string \x1b[1m

Of much output the end is shown, and the log has it all:

  $ printf '#!/bin/sh\nhead -c 8388608 /dev/zero | tr "\\0" "~"; echo; echo last\n' >$setup
  $ wb-trial run s.toml perform_integration --set WB_INTEGRATION_PATH=workbench >report
  $ tr -cd '~' <report | wc -c
  4194298
  $ grep said report
    its command said 8388614 bytes, of which the last 4194304 were:
  $ tr -cd '~' <log | wc -c
  8388608

A report that cannot be written is a failure, wherever it was to go:

  $ site
  $ mkfifo pipe
  $ wb-trial install s.toml 8<>pipe 9>pipe 8<&- >&9
  wb-trial: the report cannot be written
  [1]
  $ tail -n 1 log
  workbench_init:: found WB prefs file: <part/wr-qev-1.0a/a.prefs>
  $ wb-trial run s.toml find_wb_components >&-
  wb-trial: the report cannot be written
  [1]
  $ site; wb-trial check --no-sandbox s.toml >/dev/full
  wb-trial: the report cannot be written
  [1]
  $ wb-trial --version >/dev/full
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
  $ grep '^not ok' report; tail -n 1 report
  1..33

Bad arguments: one message, status 2, and nothing is run:

  $ site
  $ : >bad.toml
  $ find . | sort >"$TMPDIR/before"
  $ for arguments in '' install 'install absent.toml' 'install workbench' 'install s.toml more' \
  >     'run s.toml init_wb_prefs exit' 'install s.toml --set =x' \
  >     'install s.toml --plugin absent.so' 'install s.toml --plugin /lib/*/libm.so.6'; do
  >     refused $arguments
  > done
  wb-trial: a command is missing: check, install, uninstall or run
  SESSION.toml is required
  wb-trial: absent.toml: No such file or directory
  wb-trial: workbench: Is a directory
  The following argument was not expected: more
  ACTION: exit not in {detect_wb_in_default_path,validate_wb_path,find_wb_components,perform_integration,perform_deintegration,init_wb_prefs}
  wb-trial: --set "=x": write NAME=VALUE
  wb-trial: absent.so: the library does not load: ./absent.so: cannot open shared object file: No such file or directory
  wb-trial: /lib/*/libm.so.6: the library exports no detect_wb_in_default_path (glob)

  $ refused install $'\033[1m.toml'
  wb-trial: \x1b[1m.toml: No such file or directory
  $ sed 's/_Z6is_dir/_Z6is_dxr/' "$WB_TRIAL_DIR/libworkbench-int.so.1n" >bad.toml
  $ refused install s.toml --plugin ./bad.toml
  wb-trial: ./bad.toml: the library does not load: ././bad.toml: undefined symbol: _Z6is_dxrRKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE

A bad session file likewise:

  $ for text in '[variables' 'a = 1' '[variables]\nWB_PREFS = "x"\nlog_file = 1' \
  >     '[component]\nname = "a"' '[[component]]' '[[component]]\nname = "a"\nfiles = "a"' \
  >     '[[component]]\nname = "a"\nfiles_from = "absent"' '\377'; do
  >     printf "$text\n" >bad.toml
  >     refused install bad.toml
  > done
  wb-trial: bad.toml:1: Error while parsing table header: expected ']', saw '\n'
  wb-trial: bad.toml:1: unknown key a; a session has [variables] and [[component]]
  wb-trial: bad.toml:3: log_file has to be a string
  wb-trial: bad.toml:1: component has to be a list of tables: [[component]]
  wb-trial: bad.toml:1: a component needs a name
  wb-trial: bad.toml:3: files has to be a list of strings
  wb-trial: bad.toml:3: files_from: No such file or directory: absent
  wb-trial: bad.toml:1: Encountered invalid utf-8 sequence
  $ echo 'component = []' >bad.toml
  $ wb run bad.toml find_wb_components --set log_file=/dev/null | grep SUPPORTED
    WB_INTEGRATION_SUPPORTED = "no"
  $ find . | sort | diff "$TMPDIR/before" -
  $ mkdir -m 000 product/suite/locked
  $ unprivileged refused install s.toml
  wb-trial: s.toml:3: files_from: Permission denied: ./product/suite/locked
  $ site
