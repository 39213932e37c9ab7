The report has colours on a terminal, but not where NO_COLOR is set.

  $ script -qec true /dev/null </dev/null >/dev/null 2>&1 || exit 80 # skipped: there are no terminals here
  $ . "$TESTDIR/site.sh"
  $ in_colors() {
  >     site; echo 'exit 3' >>"$setup"
  >     "$@" script -qec 'wb-trial check s.toml --no-sandbox --set WB_INTEGRATION_PATH="$PWD/workbench"' /dev/null </dev/null |
  >         cat -v | grep -o '\^\[\[3[0-9]m *[-+@A-Za-z]*' | sort -u
  > }
  $ in_colors env -u NO_COLOR
  ^[[31m      -home
  ^[[31m  failed
  ^[[32m      +home
  ^[[32m  A
  ^[[32mThe
  ^[[33m  M
  ^[[36m      @@
  [1]
  $ in_colors env NO_COLOR=1
  [1]
