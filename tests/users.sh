# shellcheck shell=bash disable=SC2016,SC2034,SC2154
# Sourced after site.sh by the transcripts about the sandbox: everything is done by an ordinary user
# and, where root runs the tests, by root too. Both have to see the same.
chmod 711 "$CRAMTMP"
mkdir -p "$CRAMTMP"/{home,t}
export HOME=$CRAMTMP/home TMPDIR=$CRAMTMP/t
me=$(id -u)

# as USER COMMAND...: by that user, with no further group
as() {
    if [ "$1" = "$me" ]; then
        "${@:2}"
    else
        setpriv --reuid="$1" --regid="$1" --clear-groups "${@:2}"
    fi
}

# Gives the site and the two directories to the user.
own() {
    [ "$me" -ne 0 ] || chown -hR "$1:$1" . "$CRAMTMP"/{home,t}
}

# The users that can have a sandbox here and may run the program.
users() {
    local user
    for user in 4711 "$me"; do
        own "$user"
        if as "$user" test -O . -a -x "$WB_TRIAL_DIR/wb-trial" && as "$user" unshare -Urm true; then
            echo "$user"
        fi
    done 2>/dev/null
    own "$me"
}
users=$(users)

# script NAME TEXT: makes a script of the configuration, which works in the workbench
script() {
    printf '#!/bin/sh\ncd "${0%%/*}/../.."\n%s\n' "$2" >"$config/wr-setup/$1"
}

# lay SETUP UNINSTALL: a site whose two scripts hold these texts, without a preferences file
lay() {
    site
    rm "$prefs"
    mkdir workbench/dir
    touch workbench/dir/{file,other}
    script setup.sh "$1"
    script uninst_wr_qev.sh "${2-:}"
    workbench=workbench
}

# All that is on the disk, as far as a check could change it.
tree() {
    find "$CRAMTMP" -printf '%p %M %U:%G %T@ %l\n' -type f -exec sha256sum {} \;
}

# try COMMAND ARGUMENT...: the report of wb-trial for each user, in `within` if that is set. Printed
# once where all are the same. Nothing on the disk may change.
try() {
    local user before report said=
    for user in $users; do
        own "$user"
        before=$(tree)
        report=$(
            as "$user" "${within[@]}" wb-trial "$1" s.toml --set WB_INTEGRATION_PATH="$workbench" "${@:2}" 2>&1
            echo "status $?"
        )
        tree | diff <(echo "$before") -
        report=${report//"$PWD"/.}
        report=$(sed '/^note: .* because of the mount at [/]/d' <<<"${report//"$CRAMTMP"/..}") # the machine's own
        [ "$report" = "$said" ] || printf '%s\n' "$report"
        said=$report
    done
    own "$me"
    within=()
}

# Of a report: what the uninstall left, or else what the install changed, and the verdict.
changes() {
    sed -n '/^\(changed\|left\) by/,$p' | sed '/^perform\|^  runs\|^  its\|^    [^ ]\|deintegrate.sh$/d; /^[0-9]* failure/,/^status/{/^status/!d}'
}

# Of a report: the verdict and the failures alone, in a line.
verdict() {
    sed -n '/^The workbench/p; /^note: the/p; /^wb-trial/p; /^[0-9]* failure/,$p; /^status/p' | uniq | paste -sd' ' | tr -s ' '
}

# judge: the verdict in a sandbox and without one, once where both are the same
judge() {
    {
        [ -z "$users" ] || try check | verdict
        {
            wb check --no-sandbox s.toml --set WB_INTEGRATION_PATH="$workbench"
            echo "status $?"
        } | verdict
    } | uniq
}

# both_ways SETUP UNINSTALL: judges the two scripts
both_ways() {
    lay "$@"
    judge
}
