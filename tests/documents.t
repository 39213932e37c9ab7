What the program, its manual page, its completion and the documents say of each other.

  $ [ -e /proc/self ] || exit 80
  $ root=$TESTDIR/..
  $ PATH=$WB_TRIAL_DIR:$PATH
  $ options() {
  >     grep -oE -- '--[a-z][a-z-]+( [A-Z=]+)?' | LC_ALL=C sort -u
  > }
  $ mandoc -T lint "$root/docs/wb-trial.1"

The options and their arguments, and the version:

  $ (wb-trial --help; wb-trial run --help; wb-trial check --help) | grep '^  -' | options >options
  $ sed 's/ .*//' options | LC_ALL=C sort >names
  $ sed 's/Fl Fl /--/g; s/ Ns = Ns Ar /=/; s/Ar //' "$root/docs/wb-trial.1" >manual
  $ grep '^\.It --\|^\.It Fl' manual | options | diff options -
  $ cat manual "$root/README.md" "$root/docs/packaging.md" | grep -v cmake | options | sed 's/ .*//' | sort -u | comm -13 names -
  $ grep -c "^## $(wb-trial --version)," "$root/CHANGELOG.md"
  1

What is completed: options, commands, actions and the variables that docs/host.md lists.

  $ completed() (
  >     . /usr/share/bash-completion/bash_completion
  >     . "$root/packaging/wb-trial.bash"
  >     read -ra COMP_WORDS <<<"${1//=/ = }:"
  >     COMP_WORDS[-1]=${COMP_WORDS[-1]%:}
  >     COMP_LINE=$1 COMP_POINT=${#1} COMP_CWORD=$((${#COMP_WORDS[@]} - 1)) COMP_TYPE=9
  >     "$(complete -p wb-trial | grep -o '_[a-z_]*')" wb-trial "${COMP_WORDS[-1]}" "${COMP_WORDS[-2]}" 2>/dev/null
  >     printf '%s\n' "${COMPREPLY[@]}" | LC_ALL=C sort -u
  > )
  $ (completed 'wb-trial run --'; completed 'wb-trial check --') | LC_ALL=C sort -u | diff names -
  $ wb-trial --help | sed -n '/^Subcommands/,$s/^  \([a-z]*\) .*/\1/p' | sort | diff - <(completed 'wb-trial ')
  $ wb-trial run --help | grep -o '{.*}' | tr '{,}' '\n' | sed '/^$/d' | sort | diff - <(completed 'wb-trial run a.toml ')
  $ sed -n '/^| variable | meaning/,/^$/s/^| `\([^`]*\)`.*/\1/p' "$root/docs/host.md" | LC_ALL=C sort >variables
  $ completed 'wb-trial run --set ' | tr -d = | diff variables -
  $ sed -n 's/^\.It Va //p' "$root/docs/wb-trial.1" | sed 's/ , /\n/' | LC_ALL=C sort | diff variables -

The check that packaging.md shows, of a product in /srv. It is made without a sandbox where there can be none:

  $ place=$(mktemp -d /tmp/documents.XXXXXX); cd "$place"
  $ mkdir -p 'my workbench' gauge/tools/{vorn,prefs,ide/wr-qev-2.0b/wr-setup}
  $ echo name=3.1 >'my workbench/install.properties'
  $ printf 'units=metric\ngaugeHome=\n' >gauge/tools/prefs/gauge.prefs
  $ cd gauge/tools/ide/wr-qev-2.0b/wr-setup
  $ printf '#!/bin/sh\ntrue\n' >enter.sh
  $ printf '#!/bin/sh\necho took gauge out\n' >uninst_wr_qev.sh
  $ chmod 755 uninst_wr_qev.sh
  $ sed -n '/^\[variables\]/,/^```/p' "$root/docs/packaging.md" | sed "s|/srv|$place|;\$d" >"$place/gauge.toml"
  $ sed -n '/^$ wb-trial check gauge.toml/,/^```/p' "$root/docs/packaging.md" | sed '1d;$d' >"$place/shown"
  $ wb-trial check --no-sandbox "$place/gauge.toml" | sed "1d; s|$place|/srv|g; s/^What the last.*/Nothing on the disk was changed./" | diff "$place/shown" -
  $ rm -r "$place"

What one document links to in another is there, and a heading with it:

  $ cd "$root"
  $ headings() {
  >     sed -n 's/^##* //p' "$1" | tr 'A-Z ' 'a-z-' | tr -dc 'a-z0-9_\n-'
  > }
  $ for document in *.md docs/*.md; do
  >     grep -oE '\]\([^) ]*\)' "$document" | tr -d ']()' | while IFS='#' read -r file heading; do
  >         file=${file:+$(dirname "$document")/$file}
  >         test -e "${file:-$document}" || echo "$document: $file"
  >         test -z "$heading" || headings "${file:-$document}" | grep -qxF -e "$heading" || echo "$document: $file#$heading"
  >     done
  > done
