What only root can have tried of a sandbox: mounts, other owners, rights.

  $ [ "$(id -u)" -eq 0 ] && unshare -m true 2>/dev/null || exit 80
  $ . "$TESTDIR/site.sh"
  $ . "$TESTDIR/users.sh"

The whole disk may change, and what a script changes beside workbench and product is a failure:

  $ lay 'for place in /etc /opt /usr/share /root; do echo >$place/x.wb-trial; done' 'rm /opt/x.wb-trial'
  $ users=0 try check | changes | sed '1,/^left/d; /^Nothing/,$d'
    A /etc/x.wb-trial
    A /root/x.wb-trial
    A /usr/share/x.wb-trial
  The workbench is as it was.
  failed: the uninstall leaves changes beside the workbench and the product

Owner, group and device:

  $ lay 'chown 1:2 dir/file; chgrp 3 .'
  $ users=0 try check | changes | sed '1,/^left/d; /^The\|^failed/,$d'
    M ./workbench/ (group 0 -> 3)
    M ./workbench/dir/file (owner 0 -> 1, group 0 -> 2)
  $ lay 'rm dir/zero; mknod dir/zero c 1 5'; mknod workbench/dir/zero c 1 3
  $ wb check --no-sandbox s.toml --set WB_INTEGRATION_PATH=workbench | grep zero
    M ./workbench/dir/zero (device 1:3 -> 1:5)
    M ./workbench/dir/zero (device 1:3 -> 1:5)
  [1]

Mounts in the workbench. Their flags hold; what can have no overlay stays as it is; one that is hidden
stays hidden:

  $ mounted() {
  >     within=(unshare -m sh -c "$1"' || exit; exec "$@"' -)
  >     users=0 try check | sed -n '/^    /p; /^The\|^failed\|^  failed\|^wb/p'
  > }
  $ lay 'echo >dir/x && rm dir/x && cat dir/inner/name'
  $ mounted 'mount -t tmpfs a workbench/dir; mkdir workbench/dir/inner; mount -t tmpfs b workbench/dir/inner; echo b >workbench/dir/inner/name'
      b
  The workbench is as it was.
  $ lay 'echo >dir/x'
  $ mounted 'mount -t tmpfs -o ro a workbench/dir'
      workbench/wr-qev-1.0a/wr-setup/setup.sh: 3: cannot create dir/x: Read-only file system
    failed: the command "workbench/wr-qev-1.0a/wr-setup/setup.sh" "./product/suite/part" ended with status 2
  The workbench is as it was.
  $ lay 'echo "#!/bin/sh" >dir/x; chmod +x dir/x; dir/x'
  $ mounted 'mount -t tmpfs -o noexec a workbench/dir'
      workbench/wr-qev-1.0a/wr-setup/setup.sh: 3: dir/x: Permission denied
    failed: the command "workbench/wr-qev-1.0a/wr-setup/setup.sh" "./product/suite/part" ended with status 126
  failed: the uninstall leaves the workbench changed
  $ lay 'test -e dir/self && ! echo >dir/x'
  $ mounted 'mount -t proc a workbench/dir'
      workbench/wr-qev-1.0a/wr-setup/setup.sh: 3: cannot create dir/x: Directory nonexistent
  The workbench is as it was.
  $ lay 'for file in dir/file ~/file; do grep -q SUPPORTED $file && ! echo >$file || exit; done'
  $ touch "$HOME/file"
  $ mounted 'for file in workbench/dir/file ~/file; do mount --bind s.toml $file; done'
      workbench/wr-qev-1.0a/wr-setup/setup.sh: 3: cannot create dir/file: Read-only file system
      workbench/wr-qev-1.0a/wr-setup/setup.sh: 3: cannot create ../home/file: Read-only file system
  The workbench is as it was.
  $ rm "$HOME/file"

Root whose rights are confined stays confined:

  $ lay 'echo $((0x$(sed -n "s/CapBnd:.//p" /proc/self/status) & (1 | 1 << 25)))'
  $ within=(setpriv --bounding-set=-chown); users=0 try check | grep '^    [01]'
      0

An ordinary user. What belongs to a further group of theirs could change outside and not here:

  $ ordinary() {
  >     setpriv --reuid=4711 --regid=4711 --groups=4711,1 wb-trial "$@" 2>&1
  >     echo "status $?"
  > }
  $ lay 'echo >x' 'rm x'; own 4711; chgrp 1 workbench; chmod 775 workbench
  $ ordinary check s.toml --set WB_INTEGRATION_PATH="$PWD/workbench" | sed "s|$PWD|.|g"
  wb-trial: there can be no sandbox: only what is yours, and your first group's, could change in it: ./workbench belongs to the group daemon; run it as root; where the disk may change, use wb-trial check --no-sandbox
  status 2
  $ chgrp -R 1 product; ordinary check s.toml --set WB_INTEGRATION_PATH=workbench | grep -o 'run .*;'
  run it in sg daemon -c '...', or as root;
  $ chmod 755 workbench; chown 0 workbench; chgrp -R 4711 product
  $ ordinary check s.toml --set WB_INTEGRATION_PATH=workbench | grep -e PATH_STATUS -e ^status
    PATH_STATUS = "notwritable"
  status 1
  $ chmod 777 workbench; ordinary check s.toml --set WB_INTEGRATION_PATH=workbench | grep -o 'owner 0; .* as root'
  owner 0; run it as root
  $ lay :; own 4711; chown 0 workbench/dir/file
  $ ordinary check --no-sandbox s.toml --set WB_INTEGRATION_PATH=workbench | sed "s|$PWD|.|g"
  wb-trial: run as root, for this user's copy differs: ./workbench/dir/file (owner 4711 -> 0)
  status 2
  $ lay 'echo >x' 'rm x'; own 4711; mkdir -m 755 others; mv workbench others; chown 12345:12345 others; chmod 311 .
  $ ordinary check s.toml --set WB_INTEGRATION_PATH=others/workbench --set log_file=/dev/null | verdict
  The workbench is as it was. status 0
  $ chmod 755 .; mkdir -m 777 others/workbench/wr-qev-1.0a
  $ ordinary run s.toml perform_integration --set WB_INTEGRATION_PATH=others/workbench | grep note
    note: the mode of "others/workbench/wr-qev-1.0a" stays 0777, for the folder is somebody else's
  $ mkdir -m 700 closed; cd closed
  $ ordinary check "$OLDPWD/s.toml" --set WB_INTEGRATION_PATH=/absent | sed "s|$OLDPWD|.|g"
  wb-trial: there can be no sandbox: enter the working directory ./closed: Permission denied; where the disk may change, use wb-trial check --no-sandbox
  status 2

Without /proc a check on the real disk says what it cannot see:

  $ cd ..; lay :; unshare -m sh -c 'mount -t tmpfs x /proc; wb-trial check --no-sandbox s.toml' 2>/dev/null | grep ^note || :
  note: there is no /proc: what still runs after the uninstall is not seen
