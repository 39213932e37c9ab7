In a sandbox everything may change, as far as the kernel lets, and nothing of it is left.

  $ . "$TESTDIR/site.sh"
  $ . "$TESTDIR/users.sh"
  $ [ "$users" ] || exit 80 # skipped: no user can have a sandbox here

What changed is shown; what was only touched is not:

  $ lay 'touch touched; chmod 1600 binary; echo >>binary; ln -sfn dir link; mkdir new; echo >new/1; ln -s absent new/link
  > rm -r dir; mkdir dir; touch dir/other; rm -r gone install.properties; mkdir install.properties; seq 40 60 >text
  > echo >"dir
  > x"; yes | head -c 6291456 >large; head -c 400 /dev/zero | tr "\0" x >long; echo >same; mkdir closed; chmod 000 closed'
  $ mkdir workbench/gone; touch workbench/gone/file; seq 30 >workbench/text; chmod 600 workbench/text; printf '1\0' >workbench/binary; ln -s tex workbench/link; touch workbench/touched
  $ yes | head -c 5242880 >workbench/large; head -c 2048 /dev/zero >workbench/same; echo >workbench/long
  $ try install --preview | changes | sed '/^      -[0-9]/d'
  changed by the install:
    M ./workbench/binary (mode 0644 -> 1600, content 2 B -> 3 B)
    A ./workbench/closed/ (0 files, 0 B)
    A ./workbench/dir\nx
    D ./workbench/dir/file
    D ./workbench/gone/
    D ./workbench/gone/file
    T ./workbench/install.properties/ (0 files, 0 B)
    M ./workbench/large (content 5.0 MiB -> 6.0 MiB)
    M ./workbench/link (link tex -> dir)
    M ./workbench/long
        @@ -1 +1 @@
        -
        +xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx
        \ No newline at end of file
    A ./workbench/new/ (2 files, 1 B)
    M ./workbench/same (content 2.0 KiB -> 1 B)
    M ./workbench/text
        @@ -1,30 +1,21 @@
        32 more lines
    A ./workbench/wr-qev-1.0a/ (2 files, 414 B)
  Nothing on the disk was changed.
  status 0

  $ lay 'for file in dir/*; do echo >$file; done'; touch workbench/dir/{1..300}
  $ within=(prlimit --nofile=256); try install --preview | grep -c @@
  302

Processes in it. What a setup script finds and does, and what becomes of the check:

  $ in_sandbox() {
  >     lay "$@"
  >     try check | sed -n '/^    /p; /^wb-trial/p; /^[0-9]* failure/,$p; /^status/p' | uniq
  > }
  $ in_sandbox 'kill -9 -1'
  wb-trial: signal 9 ended the sandbox
  status 1
  $ in_sandbox "trap 'kill 0' EXIT"
  1 failure:
    perform_integration: the command "workbench/wr-qev-1.0a/wr-setup/setup.sh" "./product/suite/part" ended with status 143
  status 1
  $ in_sandbox 'cut -d " " -f 6 /proc/self/stat; cat /proc/1/comm; readlink /proc/[12]/exe /proc/[12]/fd/*'
      2
      wb-trial
  1 failure:
    perform_integration: the command "workbench/wr-qev-1.0a/wr-setup/setup.sh" "./product/suite/part" ended with status 1
  status 1
  $ in_sandbox '[ $(ls -d /proc/[0-9]* | wc -w) -lt 20 ] && ! mknod device b 8 1 && unshare -m true'
      mknod: device: Operation not permitted
      unshare: unshare failed: Operation not permitted
  1 failure:
    perform_integration: the command "workbench/wr-qev-1.0a/wr-setup/setup.sh" "./product/suite/part" ended with status 1
  status 1
  $ lay 'sleep 98 >/dev/null 2>&1 &'
  $ try install --preview | grep still
  note: still running: sleep 98
  $ queue=$(ipcmk -Q | tr -dc 0-9)
  $ in_sandbox 'ipcrm --all=msg; ipcs -q | wc -l'
      4
  status 0
  $ ipcrm -q "$queue"

It ends with wb-trial, and wb-trial by the signal that ends it:

  $ lay "sleep 9$$"
  $ is_asleep() {
  >     grep -qsxz "9$$" /proc/[0-9]*/cmdline
  > }
  $ for signal in KILL TERM INT; do
  >     env --default-signal=INT wb-trial check s.toml --set WB_INTEGRATION_PATH=workbench >/dev/null &
  >     for try in {1..100}; do is_asleep && break; sleep 0.1; done
  >     kill -$signal $!; wait $!; echo $?
  >     for try in {1..50}; do is_asleep || break; sleep 0.1; done
  >     is_asleep || echo ended
  > done 2>/dev/null
  137
  ended
  143
  ended
  130
  ended

Where upper layers lie on the disk, as before Linux 6.6, nothing of them stays; what was left behind is
removed, and what is in use is not:

  $ left=/var/tmp/wb-trial-sandbox-left00 used=/var/tmp/wb-trial-sandbox-used00
  $ mkdir -p $left/1-work/work $used; chmod 000 $left/1-work/work
  $ exec 8<$used; flock 8
  $ lay 'mkdir x; echo >x/y' 'rm -r x'
  $ export WB_TRIAL_SCRATCH=1
  $ try check | verdict
  The workbench is as it was. status 0
  $ ls -d /var/tmp/wb-trial-sandbox-*
  /var/tmp/wb-trial-sandbox-used00
  $ lay 'sleep 1; echo >x' 'rm x'; user=${users%%$'\n'*}; own "$user"
  $ as "$user" wb-trial check s.toml | verdict & sleep 0.5; as "$user" wb-trial run --preview s.toml find_wb_components >/dev/null; wait
  The workbench is as it was.
  $ unset WB_TRIAL_SCRATCH; rmdir $used; exec 8<&-; own "$me"

The log is no change, wherever it lies:

  $ logging() {
  >     lay :; mkdir logs; ln -s ../logs/absent workbench/dangling; : >logs/old; ln -s logs/old link
  >     try check --set log_file="$1" | verdict
  > }
  $ for log in /dev/null /var/tmp/install.log install.log link workbench/dangling; do
  >     logging "$log" | sed "s|^|'$log' |"
  > done
  '/dev/null' The workbench is as it was. status 0
  '/var/tmp/install.log' The workbench is as it was. status 0
  'install.log' The workbench is as it was. status 0
  'link' The workbench is as it was. status 0
  'workbench/dangling' The workbench is as it was. status 0

The directories are what they are outside: a default ACL, a link as workbench, an odd name, others' folders:

  $ lay 'echo >../x; stat -c %a ../x; rm ../x'
  $ setfacl -d -m g::r,o::- .
  $ try check | sed -n '/^    /p; /^The/p; /^[0-9]* failure/,$p'
      640
  The workbench is as it was.
  $ setfacl -k .
  $ lay 'echo >x'; ln -s workbench link; workbench=link
  $ try check | changes | grep -e /x -e workbench
    A ./workbench/wr-qev-1.0a/ (2 files, 68 B)
    A ./workbench/x
    A ./workbench/x
  failed: the uninstall leaves the workbench changed
  $ lay 'echo >x'; workbench=$TMPDIR/$'a,b:c\\d"e\'\n f'; mv workbench "$workbench"
  $ try check | grep /x
    A ../t/a,b:c\d"e'\n f/x
    A ../t/a,b:c\d"e'\n f/x
  $ echo secret >"$HOME/key"; chmod 640 "$HOME/key"
  $ lay 'mkdir "$TMPDIR/x"; echo x >>"$HOME/key"; echo >"$HOME/x"; echo >/var/tmp/x.wb-trial; echo >/dev/shm/x.wb-trial'
  $ try check | changes | sed '1,/^left/d; /^The/,$d'
    A /dev/shm/x.wb-trial
    M ../home/key (text that others cannot read)
    A ../home/x
    A ../t/x/ (0 files, 0 B)
    A /var/tmp/x.wb-trial
  $ lay 'echo >../workbench-2/x'; mkdir workbench-2; try check --set log_file= | verdict
  The workbench is as it was. 1 failure: check: the uninstall leaves changes beside the workbench and the product status 1

A product directly below the root directory is not the whole disk:

  $ lay 'echo >"$HOME/x"'; sed -i "s|/suite/part|$PWD/product/suite/part|" s.toml
  $ try check --set VORN_INSTALL_DIR=/ --set VORN_INSTALL_SUBDIR="$PWD/product/suite" | verdict
  The workbench is as it was. 1 failure: check: the uninstall leaves changes beside the workbench and the product status 1

A mount that another one hides is in nobody's way:

  $ lay 'echo >x' 'rm x'
  $ within=(unshare -Urm sh -c 'cd workbench/dir; mount -t tmpfs a .; cd .; mkdir "$PWD/in"; mount -t tmpfs b "$PWD/in"
  >     mount -t tmpfs c "$PWD"; mkdir "$PWD/in"; echo name=3.1 >"$PWD/install.properties"; cd ../..; exec "$@"' -)
  $ workbench=workbench/dir; try check --set log_file= | verdict
  The workbench is as it was. status 0

A mount in the home or the temporary directory keeps that from changing, and nothing else:

  $ lay 'echo "$TMPDIR"; echo >"$HOME/file"'
  $ mkdir "$HOME/share" "$TMPDIR/mount"
  $ within=(unshare -Urm sh -c 'mount -t tmpfs x "$HOME/share"; mount -t tmpfs x "$TMPDIR/mount"; exec "$@"' -)
  $ try check | grep -e '^note: .*mount' -e '^    ' -e ^The
  note: /tmp cannot change as a whole here, because of the mount at ../home/share
  note: ../t cannot change as a whole here, because of the mount at ../t/mount
      /var/tmp
      workbench/wr-qev-1.0a/wr-setup/setup.sh: 3: cannot create ../home/file: Read-only file system
  The workbench is as it was.
  $ rmdir "$HOME/share" "$TMPDIR/mount"

Where there can be no sandbox, nothing is run:

  $ refused() {
  >     lay 'echo run'
  >     mkdir workbench/dir/mount
  >     ln -s workbench link
  >     workbench=link within=("$@")
  >     try check --set log_file= | sed 's/; where the disk may change, use wb-trial check --no-sandbox$//'
  > }
  $ refused unshare -Urm sh -c 'mount -t tmpfs x workbench/dir/mount; exec "$@"' -
  wb-trial: there can be no sandbox: ./workbench cannot be covered, because of the mount at ./workbench/dir/mount
  status 2
  $ refused unshare -Ur sh -c 'echo 0 >/proc/sys/user/max_user_namespaces; exec "$@"' -
  wb-trial: there can be no sandbox: unshare: No space left on device; user.max_user_namespaces is 0; change it with sysctl, or run as root
  status 2
  $ refused prlimit --nofile=10 | sed 's/open .*: T/open ...: T/' | sort -u
  status 2
  wb-trial: there can be no sandbox: open ...: Too many open files
