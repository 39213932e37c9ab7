What the program, its manual page, its completion and the README say of each other.

  $ root=$TESTDIR/..
  $ PATH=$WB_TRIAL_DIR:$PATH
  $ options() { grep -oE -- '--[a-z][a-z-]+( [A-Z=]+)?' | LC_ALL=C sort -u; }
  $ names() { sed 's/ .*//' | LC_ALL=C sort -u; }

  $ mandoc -T lint "$root/docs/wb-trial.1"

The options and their arguments, the exit statuses and the version.

  $ (wb-trial --help && wb-trial run --help && wb-trial check --help) | grep '^  -' | options >options
  $ test -s options && names <options >names
  $ sed 's/Fl Fl /--/g; s/ Ns = Ns Ar /=/; s/Ar //' "$root/docs/wb-trial.1" >manual
  $ grep '^\.It --\|^\.It Fl' manual | options | diff options -
  $ sed -n '/^| option /,/^$/s/|[^|]*|$//p' "$root/README.md" | options | diff options -
  $ cat manual "$root/README.md" "$root/docs/packaging.md" | grep -v cmake | options | names | comm -13 names -
  $ sed -n '/^\.Sh EXIT/,/^\.Sh EXA/s/^\.It //p' manual >statuses
  $ sed -n '/^| status /,/^$/s/^| \([0-9]*\) |.*/\1/p' "$root/README.md" | diff statuses -
  $ wb-trial --help | grep '^Exit' | grep -o '[0-9]' | diff statuses -
  $ grep -c "^## $(wb-trial --version)," "$root/CHANGELOG.md"
  1

  $ completed() (
  >   . /usr/share/bash-completion/bash_completion
  >   . "$root/packaging/wb-trial.bash"
  >   read -ra COMP_WORDS <<<"${1//=/ = }:"
  >   COMP_WORDS[-1]=${COMP_WORDS[-1]%:}
  >   COMP_LINE=$1 COMP_POINT=${#1} COMP_CWORD=$((${#COMP_WORDS[@]} - 1)) COMP_TYPE=9
  >   "$(complete -p wb-trial | grep -o '_[a-z_]*')" wb-trial "${COMP_WORDS[-1]}" "${COMP_WORDS[-2]}" 2>/dev/null
  >   printf '%s\n' "${COMPREPLY[@]}" | LC_ALL=C sort -u
  > )
  $ completed 'wb-trial run --' | diff names -
  2d1
  < --no-sandbox
  [1]
  $ completed 'wb-trial check --' | diff names -
  4d3
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

  $ completed 'wb-trial --set a=b --plugin c --trace run '
  a.toml
  $ completed 'wb-trial check a.toml '
  
  $ completed 'wb-trial check --plugin b'
  b.txt

The checks that the README and packaging.md show, of a clone in /src/workbench-int and a product in /srv.

  $ place=$(mktemp -d /tmp/documents.XXXXXX)
  $ shown() { sed -n "/^$ .*wb-trial check $1/,/^\`\`\`/p" "$2" | sed '1d;$d;/Permission denied$/d'; }
  $ checked() { wb-trial check "$place/$1" | sed "s|$place|$2|g;/Permission denied$/d"; }
  $ cp -R "$root/examples" "$place"
  $ shown examples.session.toml "$root/README.md" | diff - <(checked examples/session.toml /src/workbench-int)

  $ cd "$place"; mkdir -p 'my workbench' gauge/tools/{vorn,prefs,ide/wr-qev-2.0b/wr-setup}
  $ echo name=3.1 >'my workbench/install.properties'
  $ printf 'units=metric\ngaugeHome=\n' >gauge/tools/prefs/gauge.prefs
  $ cd gauge/tools/ide/wr-qev-2.0b/wr-setup; printf '#!/bin/sh\ntrue\n' >enter.sh
  $ printf '#!/bin/sh\necho took gauge out\n' >uninst_wr_qev.sh; chmod 755 uninst_wr_qev.sh
  $ sed -n '/^\[variables\]/,/^```/p' "$root/docs/packaging.md" | sed "s|/srv|$place|;\$d" >"$place/gauge.toml"
  $ shown gauge.toml "$root/docs/packaging.md" | diff - <(checked gauge.toml /srv)
  $ rm -r "$place"

What one document links to in another is there.

  $ cd "$root"; headings() { sed -n 's/^##* //p' "$1" | tr 'A-Z ' 'a-z-' | tr -dc 'a-z0-9_\n-'; }
  $ for document in *.md docs/*.md; do
  >     grep -oE '\]\([^)]*\)' "$document" | tr -d ']()' | while IFS='#' read -r file heading; do
  >         file=${file:+$(dirname "$document")/$file}
  >         test -e "${file:-$document}" || echo "$document: $file"
  >         test -z "$heading" || headings "${file:-$document}" | grep -qxF -e "$heading" || echo "$document: $file#$heading"
  >     done
  > done
