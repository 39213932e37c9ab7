#!/bin/bash
# usage: check_hostcheck.sh HOST LIBRARY
# A host that keeps all promises passes. One that breaks a promise is noticed by the line of that
# promise and by no other, but for the faults in the table.
set -euo pipefail
host=$(realpath "$1") library=$(realpath "$2") status=0
TMPDIR=$(mktemp -d)
export TMPDIR HOSTCHECK_REPORT=$TMPDIR/report
trap 'rm -rf "$TMPDIR"' EXIT
cd "$TMPDIR"
mkfifo idle # an input that does not end

[[ "$(TMPDIR=/absent "$host" "$library" && cat report)" == 'returned 1'*'Bail out! '* ]] || status=1
[ "$("$host" "$library")" = 'returned 0' ] || status=1
sed 's/^hostcheck: //' log | cmp - report || status=1
sed -n 's/^ok [0-9]* - //p' report >promises
{ sed 's/.*/&|&/' promises && cat; } >rows <<'TABLE'
exception|env_get_string.*
lost link|dir_copy: all is copied.*
ended twice|print_log: one call.*
wait|get_command_output: .*\(status\|ended\).*
control character|.*fileList.*
TABLE
while IFS='|' read -r broken noticed; do
    "$host" "$library" "$broken" >returned 2>/dev/null || status=1
    found=$(sed -n 's/^not ok [0-9]* - //p' report && cat returned)
    [ "$found" = "$(grep -x "$noticed" promises && echo 'returned 1')" ] && continue
    printf '%s: found\n%s\n' "$broken" "$found" >&2
    status=1
done <rows

# A crash is named by the last line, in the log too, and leaves the folder.
(! "$host" "$library" moved) >/dev/null 2>&1 || status=1
[[ "$(tail -qn 1 report log)" == '# calling '*fileList$'\nhostcheck: # calling '*fileList ]] || status=1
[ "$(compgen -G "$TMPDIR/hostcheck-*" | wc -l)" -eq 1 ] || status=1
exit $status
