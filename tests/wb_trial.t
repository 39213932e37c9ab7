  $ . "$TESTDIR/site.sh"

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
