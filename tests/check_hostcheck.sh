#!/bin/bash
# usage: check_hostcheck.sh HOST LIBRARY
# A host that keeps all promises passes. One that breaks a promise is noticed by the lines that are
# named here, and by no others.
set -euo pipefail
host=$1 library=$2 status=0
TMPDIR=$(mktemp -d)
export TMPDIR
trap 'rm -rf "$TMPDIR"' EXIT
cd "$TMPDIR"

# notice PROMISE: what the library says of a host that breaks it: the operations and the ends of the
# promises that are not kept, or after a crash the operation that was called
notice() {
    if "$host" "$library" "$1" >"$TMPDIR/report" 2>&1; then
        sed -n 's/^not ok [0-9]* - \([a-zA-Z_]*\): .* \([a-z0-9]*\)$/\1 \2/p; s/^returned/returned/p' "$TMPDIR/report"
    else
        grep '^# calling' "$TMPDIR/report" | tail -n 1
    fi | paste -sd,
}

while IFS=: read -r promise expected; do
    found=$(notice "$promise" 2>/dev/null)
    [ "$found" = "${expected# }" ] && continue
    echo "'$promise': expected$expected, found $found" >&2
    status=1
done <<'TABLE'
: returned 0
throw: env_get_string string,returned 1
copy: env_set_string copied,returned 1
not held: env_get_string string,returned 1
log again: log_init too,returned 1
long line: print_log is,returned 1
link: path place,returned 1
relative: path empty,returned 1
linked folder: is_dir else,returned 1
writable: is_writable else,returned 1
kept content: folder_create content,returned 1
umask: folder_create 0755,returned 1
mode: dir_copy kept,returned 1
quotes: get_command_output quotes,returned 1
wait: get_command_output ended,returned 1
input: get_command_output up,returned 1
status: get_command_output stored,get_command_output command,returned 1
much output: get_command_output complete,returned 1
path: fileList paths,returned 1
slot: # calling fileList
components: components components,returned 1
other keys: IniDb kept,returned 1
TABLE
[ "$(compgen -G "$TMPDIR/hostcheck-*" | wc -l)" -eq 1 ] || status=1 # of the host that crashed
exit $status
