#!/bin/bash
# usage: check_binary.sh LIBRARY BUILD_FOLDER
# Whether the library is one for programs that are ten years old, and for those that run as root.
# NM and OBJDUMP name the tools for another architecture than this machine's.
set -euo pipefail
[ -e /proc/self ] || exit 77 # skipped, for `<(...)` needs it
library=$1 lists=$(dirname "$0")/.. status=0
nm() { command "${NM:-nm}" "$@"; }
objdump() { command "${OBJDUMP:-objdump}" "$@"; }

# must WHAT COMMAND...: fails the check where the command does
must() { "${@:2}" || { echo "$library: has to $1" >&2 && status=1; }; }

# The names as source code has them, whichever string type the library was built with.
readable() {
    c++filt | sed -E -e 's/std::(__cxx11::)?basic_string<char, std::char_traits<char>, std::allocator<char> >/std::string/g' \
        -e 's/\[abi:cxx11\]//g' | LC_ALL=C sort -u
}

# newest NAME LIMIT: the newer of the limit and the newest version of that runtime's symbols
newest() { grep -oE "\<$1_[0-9.]+" <<<"$symbols $1_$2" | sort -V | tail -n 1; }

symbols=$(nm -D "$library")
exported=$(nm -D --defined-only "$library" | awk '{ print $3 }' | sort)
elf=$(readelf -dlrW "$library")
code=$(objdump -d --no-show-raw-insn "$library")
# The oldest C library, and the instructions at which an indirect call may arrive.
case $(readelf -h "$library") in
*X86-64*) oldest=2.14 landings=endbr64 ;;
*AArch64*) oldest=2.17 landings='bti|paciasp' ;;
esac
commands=$(grep workbench_int_EXPORTS "$2/compile_commands.json")

must "export these" diff -u "$lists/workbench-int.exports" <(readable <<<"$exported")
# The runtimes' names carry a version; weak ones may stay unresolved.
must "import these" diff -u "$lists/workbench-int.imports" \
    <(awk '$1 == "U" && $2 !~ /@/ { print $2 }' <<<"$symbols" | readable)
must "have its soname" grep -qF "soname: [libworkbench-int.so.1n]" <<<"$elf"
must "need the runtimes only" diff /dev/null <(sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' <<<"$elf" |
    grep -vxE 'libstdc\+\+\.so\.6|libgcc_s\.so\.1|libc\.so\.6|ld-linux-aarch64\.so\.1')
# The older string type brings newer runtime names with it.
[[ $symbols != *cxx11* ]] || must "do with systems that are ten years old" \
    test "$(newest GLIBC "$oldest") $(newest GLIBCXX 3.4.21)" = "GLIBC_$oldest GLIBCXX_3.4.21"
must "call its own functions directly" diff /dev/null \
    <(comm -12 <(echo "$exported") <(awk '/JUMP_SLO|GLOB_DAT/ { print $5 }' <<<"$elf" | sort))
must "watch its stack" grep -q __stack_chk_fail <<<"$symbols"
must "have relocations that get read-only, but for the host's names" grep -q GNU_RELRO <<<"$elf"
must "leave its host's names for later" diff /dev/null <(grep -E 'BIND_NOW|FLAGS.*\<NOW\>' <<<"$elf")
must "have a stack that is not code" grep -qE 'GNU_STACK.* RW ' <<<"$elf"
must "begin each exported function with $landings" diff <(echo "$exported") \
    <(comm -12 <(echo "$exported") <(sed -nE "/>:\$/{N;s/.*<(.*)>:\\n.*($landings).*/\\1/p}" <<<"$code" | sort))
# The binary does not show these.
must "be compiled with two more options" diff /dev/null \
    <(grep -v -e " -D_FORTIFY_SOURCE=2 .* -fstack-clash-protection " <<<"$commands")
exit $status
