A preview and a check say the same to root and to an ordinary user (where root runs this, it is done
as both), and leave the disk as it was.

  $ . "$TESTDIR/site.sh"
  $ chmod 711 "$CRAMTMP"; mkdir "$CRAMTMP"/{home,t}
  $ own() { chown -hR "$1:$1" . "$CRAMTMP"/{home,t,tmp}; [ "$1" = "$(id -u)" ] || chown 12345 others; } 2>/dev/null
  $ as() {
  >     if [ "$1" = "$(id -u)" ]; then "${@:2}"; else setpriv --reuid="$1" --regid="$1" --clear-groups "${@:2}"; fi
  > }
  $ for user in 4711 "$(id -u)"; do
  >     own $user
  >     as $user test -O . -a -x "$WB_TRIAL_DIR/wb-trial" && as $user unshare -Urm true && users+=" $user"
  > done 2>/dev/null; [ "$users" ] || exit 80
  $ tree() { find "$CRAMTMP" -printf '%p %M %U:%G %T@ %l\n' -type f -exec sha256sum {} \; ; }
  $ try() {
  >     for user in $users; do
  >         own $user; before=$(tree)
  >         said=$(HOME=$CRAMTMP/home TMPDIR=$CRAMTMP/t as $user "${within[@]}" wb-trial "$@" s.toml --set WB_INTEGRATION_PATH="$name" 2>&1; echo "Status $?")
  >         tree | diff <(echo "$before") -
  >         [ "${same=$said}" = "$said" ] || echo "not so for user $user: $said" >&2
  >     done
  >     same=${same//"$PWD"/.}
  >     sed -e '/^detect/,/^init_wb/d; /^perform\|^  runs\|^  its\|^    [^ ]\|deintegrate.sh$\|^note/d' <<<"${same//"$CRAMTMP"/..}" |
  >         sed -z 's/\nStatus/ Status/'
  >     own "$(id -u)"; unset same within
  > }
  $ config=product/suite/part/wr-qev-1.0a
  $ script() { printf '#!/bin/sh\ncd "${0%%/*}/../.."\n%s\n' "$2" >$config/wr-setup/$1; }
  $ lay() { site; name=workbench; rm $config/a.prefs; mkdir workbench/dir; touch workbench/dir/{file,other}; script setup.sh "$1"; }

What is shown; what was only touched is not:

  $ lay "touch touched; chmod 600 binary; echo >>binary; ln -sfn dir link; mkdir new; echo >new/1; echo >'dir
  > x'; rm -r dir; mkdir dir; touch dir/other; rm install.properties; mkdir install.properties; seq 40 60 >text"
  $ seq 30 >workbench/text; printf '1\0' >workbench/binary; ln -s text workbench/link; touch workbench/touched
  $ try install --preview | sed '/^      -/d'
  changed by the install:
    M ./workbench/binary (mode 0644 -> 0600, content 2 B -> 3 B)
    A ./workbench/dir\nx
    D ./workbench/dir/file
    T ./workbench/install.properties/ (0 files, 0 B)
    M ./workbench/link (link text -> dir)
    A ./workbench/new/ (1 file, 1 B)
    M ./workbench/text
        @@ -1,30 +1,21 @@
        32 more lines
    A ./workbench/wr-qev-1.0a/ (2 files, 263 B)
  Nothing on the disk was changed. Status 0
  $ lay :; integrate >/dev/null; chmod a-x workbench/*/*/u*; try uninstall --preview | tail -n 1
  Nothing on the disk was changed. Status 1

Whether the uninstall undoes what the setup did:

  $ undone() { lay "$1"; script uninst_wr_qev.sh "$2"; try check "${@:3}" | sed '1,/^left/d; /\/product/d' | sed -z 's/\.*\nNothing[^.]*//'; }
  $ undone 'mkdir x; echo >x/y; chmod 700 .' 'rm -r x; chmod 755 .; rm dir/file; touch dir/file; echo >>../product/x'
  The workbench is as it was. Status 0
  $ undone 'chmod 700 .. . dir' 'exit 3'
    M ./ (mode 0755 -> 0700)
    M ./workbench/ (mode 0755 -> 0700)
    M ./workbench/dir/ (mode 0755 -> 0700)
  failed: the uninstall leaves the workbench changed
  failed: the uninstall leaves changes beside the workbench and the product. Status 1
  $ undone 'rm -r dir; ln -s x dir'
    T ./workbench/dir
    D ./workbench/dir/file
    D ./workbench/dir/other
  failed: the uninstall leaves the workbench changed. Status 1
  $ undone : 'rm -rf "$PWD" ../product'
    D ./workbench/
    D ./workbench/dir/
    D ./workbench/dir/file
    D ./workbench/dir/other
    D ./workbench/install.properties
  failed: the uninstall leaves the workbench changed. Status 1
  $ undone 'unshare -m touch x; echo >"$CRAMTMP/tmp/x"'
  failed: the install or the uninstall, as told above
  The workbench is as it was. Status 1
  $ undone : 'touch "$CRAMTMP/tmp/x"; exit 0'
  failed: the install or the uninstall, as told above
  The workbench is as it was. Status 1
  $ undone 'touch "$CRAMTMP/tmp/x" ~/x "$TMPDIR/x" /var/tmp/x.wb-trial' : --writable "$TMPDIR"
    A ../home/x
    A ../t/x
    A ../tmp/x
    A /var/tmp/x.wb-trial
  The workbench is as it was.
  failed: the uninstall leaves changes beside the workbench and the product. Status 1
  $ lay :; integrate >/dev/null; try check | tail -n 2
  failed: the workbench holds an earlier integration already, so this cannot tell whether one is undone; uninstall first, then check again
  Nothing on the disk was changed. Status 1
  $ lay 'echo >x'; name=$TMPDIR/$'a,b:c\\d"e\'\n f'; mv workbench "$name"; try check | tail -n 3
    A ../tmp/a,b:c\d"e'\n f/x
  failed: the uninstall leaves the workbench changed
  Nothing on the disk was changed. Status 1

A workbench below somebody else's folder:

  $ lay :; mkdir others; mv workbench others; name=others/workbench
  $ try check | tail -n 2
  The workbench is as it was.
  Nothing on the disk was changed. Status 0

A process that is left running ends with the sandbox:

  $ touch "$TMPDIR/lock"; lay 'exec 9<"$CRAMTMP/tmp/lock"; flock -n 9 && sleep 99 >/dev/null 2>&1 &'
  $ try install --preview | tail -n 1; flock -n "$TMPDIR/lock" echo ended
  Nothing on the disk was changed. Status 0
  ended

Where there can be no sandbox, nothing is run:

  $ lay :; within=(unshare -Urm sh -c 'mount -t tmpfs x workbench/dir; exec "$@"' -); try check
  wb-trial: there can be no sandbox: ./workbench/dir is mounted below a directory that may change, and cannot be covered by an ordinary user; unmount it or run as root; below HOME or TMPDIR, let these name another Status 2
  $ within=(unshare -Ur sh -c 'echo 0 >/proc/sys/user/max_user_namespaces; exec "$@"' -); try check
  wb-trial: there can be no sandbox: unshare: No space left on device; user.max_user_namespaces is 0: change it with sysctl, or run as root Status 2

Files that are mounted in directories that may change stay as they are; only root can have some there:

  $ lay 'for file in dir/file ~/file; do grep -q SUPPORTED $file && ! echo 2>/dev/null >$file || exit; done'
  $ files=(workbench/dir/file "$CRAMTMP/home/file"); touch "${files[@]}"
  $ if [ "$(id -u)" -eq 0 ]
  > then users=0 within=(unshare -m sh -c 'for file in workbench/dir/file ~/file; do mount --bind s.toml $file; done; exec "$@"' -)
  > else for file in "${files[@]}"; do cp s.toml "$file"; chmod a-w "$file"; done; fi
  $ try check | tail -n 2
  The workbench is as it was.
  Nothing on the disk was changed. Status 0
