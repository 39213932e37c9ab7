What the program, its manual page, its completion and the README say of each other.

  $ root=$TESTDIR/..
  $ PATH=$WB_TRIAL_DIR:$PATH
  $ options() { grep -oE -- '--[a-z]+' | LC_ALL=C sort -u; }

  $ mandoc -T lint "$root/docs/wb-trial.1"

The options, and which of them stand after a command only.

  $ (wb-trial --help && wb-trial run --help) | options >options
  $ test -s options
  $ sed -n 's/^\.It.*Fl Fl \([a-z]*\).*/--\1/p' "$root/docs/wb-trial.1" | options | diff options -
  $ sed -n '/^| option /,/^$/s/|[^|]*|$//p' "$root/README.md" | options | diff options -
  $ cat "$root/docs/packaging.md" "$root/docs/wb-trial.1" | sed 's/Fl Fl /--/g' | grep -v cmake | options | comm -13 options -

  $ completed() (
  >   . /usr/share/bash-completion/bash_completion
  >   . "$root/packaging/wb-trial.bash"
  >   read -ra COMP_WORDS <<<"${1//=/ = }:"
  >   COMP_WORDS[-1]=${COMP_WORDS[-1]%:}
  >   COMP_LINE=$1 COMP_POINT=${#1} COMP_CWORD=$((${#COMP_WORDS[@]} - 1)) COMP_TYPE=9
  >   _wb_trial wb-trial "${COMP_WORDS[-1]}" "${COMP_WORDS[-2]}" 2>/dev/null
  >   printf '%s\n' "${COMPREPLY[@]}" | LC_ALL=C sort -u
  > )
  $ completed 'wb-trial run --' | diff options -
  $ completed 'wb-trial check --' | diff options -
  3d2
  < --preview
  [1]

The commands, the actions and the variables.

  $ wb-trial --help | sed -n '/^Subcommands/,$s/^  \([a-z]*\) .*/\1/p' >commands
  $ completed 'wb-trial ' | diff <(sort commands) -
  $ sed -n '/^The commands/,/^The options/s/^\.It Cm //p' "$root/docs/wb-trial.1" | diff commands -
  $ wb-trial run --help | grep -o '{.*}' | tr '{,}' '\n' | sed '/^$/d' | LC_ALL=C sort >actions
  $ touch a.toml b.txt
  $ completed 'wb-trial run a.toml ' | diff actions -
  $ sed -n '/^An$/,/^\.El/p' "$root/docs/wb-trial.1" | grep -oE '[a-z]+_[a-z_]+' | LC_ALL=C sort | diff actions -
  $ sed -n '/^| variable | meaning/,/^$/s/^| `\([^`]*\)`.*/\1/p' "$root/README.md" | LC_ALL=C sort >variables
  $ completed 'wb-trial run --set ' | tr -d = | diff variables -
  $ sed -n 's/^\.It Va //p' "$root/docs/wb-trial.1" | sed 's/ , /\n/' | LC_ALL=C sort | diff variables -

What is completed where.

  $ completed 'wb-trial --set a=b --writable b --plugin c --trace run '
  a.toml
  $ completed 'wb-trial check a.toml '
  
  $ mkdir folder
  $ completed 'wb-trial check --writable '
  folder
  $ completed 'wb-trial check --plugin b'
  b.txt

The check in the README, of a clone in /src/workbench-int.

  $ clone=$(mktemp -d /tmp/documents.XXXXXX)
  $ cp -R "$root/examples" "$clone"
  $ wb-trial check "$clone/examples/session.toml" | sed "s|$clone|/src/workbench-int|g" >report
  $ sed -n '/wb-trial check examples\/session.toml$/,/^```/p' "$root/README.md" | sed '1d;$d' | diff report -
  $ rm -r "$clone"
