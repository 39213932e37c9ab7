#!/bin/bash
# usage: check_binary.sh LIBRARY
# Compares what the built library exports and needs with the lists beside the version script.
set -euo pipefail
library=$1
lists=$(dirname "$0")/..
status=0

fail() {
    echo "$library: $*" >&2
    status=1
}

# The names as source code has them, whichever string type the library was built with.
readable() {
    c++filt | sed -E -e 's/std::(__cxx11::)?basic_string<char, std::char_traits<char>, std::allocator<char> >/std::string/g' \
        -e 's/\[abi:cxx11\]//g' | LC_ALL=C sort -u
}

# compare LIST, with the names found on standard input
compare() {
    diff -u --label "$1" --label found "$lists/$1" - || fail "differs from $1"
}

# at_most PREFIX VERSION: no newer version of a runtime's symbols is needed.
at_most() {
    newest=$(objdump -T "$library" | grep -oE "$1_[0-9.]+" | sort -Vu | tail -n 1)
    [[ $(printf '%s\n' "$newest" "$1_$2" | sort -V | tail -n 1) == "$1_$2" ]] ||
        fail "needs $newest; the limit is $1_$2, for systems that are ten years old"
}

compare workbench-int.exports < <(nm -D --defined-only "$library" | awk '{ print $3 }' | readable)
# The runtimes' names carry a version; weak ones may stay unresolved.
compare workbench-int.imports < <(nm -D --undefined-only "$library" |
    awk '$1 == "U" && $2 !~ /@/ { print $2 }' | readable)

dynamic=$(readelf -d "$library")
[[ $dynamic == *"soname: [libworkbench-int.so.1n]"* ]] || fail "has another soname"
needed=$(sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' <<<"$dynamic" |
    grep -vxE 'libstdc\+\+\.so\.6|libgcc_s\.so\.1|libc\.so\.6' || true)
[[ -z $needed ]] || fail "needs $needed"

# The older string type brings newer runtime names with it.
if [[ $(nm -D "$library") == *cxx11* ]]; then
    at_most GLIBC 2.14
    at_most GLIBCXX 3.4.21
fi
exit $status
