#!/bin/sh
# usage: try_packages.sh PACKAGE_FOLDER
# As root: installs the Debian packages in the folder, with what they depend on, into a fresh Debian;
# runs a check of the installed examples there, and the manual page's examples; removes the packages.
set -eu
# shellcheck source=/dev/null
. /etc/os-release
folder=$(mktemp -d)
trap 'rm -rf --one-file-system "$folder"' EXIT
trap 'exit 1' HUP INT TERM
root=$folder/root
cp "$1"/*.deb "$folder"
set --
for package in "$folder"/*.deb; do set -- "$@" --include="$package"; done
mmdebstrap --quiet --variant=apt --hook-dir=/usr/share/mmdebstrap/hooks/file-mirror-automount \
    "$@" "$VERSION_CODENAME" "$root"

script=$(
    cat <<'END'
cd /root
wb-trial check /usr/share/doc/wb-trial/examples/session.toml
gzip -dc /usr/share/man/man1/wb-trial.1.gz |
    sed -n '/^\.Sh EXAMPLES/,/^\.Sh SEE/{/^\.Bd/,/^\.Ed/{/^\./d;s/\\e$/\\/;p}}' >examples
test -s examples
test -s /usr/share/bash-completion/completions/wb-trial
for document in README.md docs/check.svg docs/host.md host/services.h docs/packaging.md docs/sandbox.md; do
    test -s "/usr/share/doc/wb-trial/$document"
done
sh -eux examples
wb-trial run --plugin /usr/lib/workbench-int/hostcheck/libworkbench-int.so.1n wb-example/session.toml \
    find_wb_components 2>report || grep -q '^ok 1 ' report
if grep '^not ok' report; then exit 1; fi
if dpkg --purge libworkbench-int; then exit 1; fi # wb-trial needs it
dpkg --purge wb-trial libworkbench-int
left=$(find / -xdev '(' -name '*wb-trial*' -o -name '*workbench-int*' ')')
test -z "$left"
END
)
# A sandbox can only be made where the root folder is a mount of its own.
# shellcheck disable=SC2016 # the inner shell's variables
unshare --mount sh -eu -c '
    mount --bind "$1" "$1"
    mount -t proc proc "$1/proc"
    chroot "$1" sh -eux -c "$2"' sh "$root" "$script"
