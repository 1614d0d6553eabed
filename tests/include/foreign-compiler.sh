#!/usr/bin/env bash
# Compiles what hosts compile, with clang for the ABI of Microsoft's compilers, 32 and 64 bits, over MinGW-w64's platform
# headers: each public header alone, their identifiers, the C declarations as C, and the examples.
. "$(dirname "${BASH_SOURCE[0]}")/../../tools/common.sh"

mapfile -t folders < <(i686-w64-mingw32-g++-posix -E -x c++ -v /dev/null 2>&1 |
    sed -n 's,^ \(/.*\(/c++.*\|mingw32/include\)\)$,\1,p')
[ ${#folders[@]} -gt 1 ] || fail "the cross compiler's headers were not found"
failed=0 compiled=0

# compiles LANGUAGE WHAT: the source on standard input.
compiles() {
    local language=$1 what=$2 source target machine
    source=$(cat)
    for target in i686 x86_64; do
        [ $target = i686 ] && machine=_X86_ || machine=_AMD64_
        compiled=$((compiled + 1))
        # MinGW's headers know the language by the GNU version; libstdc++'s have no 128-bit integers in a strict one.
        clang --target=$target-pc-windows-msvc -fsyntax-only -fms-extensions -fms-compatibility -fgnuc-version=4.2.1 \
            -D$machine -D__STRICT_ANSI__ -U__SIZEOF_INT128__ -I "$ROOT/include" "${folders[@]/#/-isystem}" \
            -Wall -Wextra -Wno-unused-parameter -Werror -x "${language%%[0-9]*}" -std="$language" - <<<"$source" || {
            say "^ $what as $language for $target"
            failed=$((failed + 1))
        }
    done
}

for header in "$ROOT"/include/vixavideofx/*.h; do
    name=vixavideofx/$(basename "$header")
    language=c++14
    case $name in */Effects.h | */EffectParameters.h) language=c++20 ;; esac
    compiles $language "$name" <<<"#include <$name>"
done
compiles c99 vixavideofx/VixaVideoFX.h <<<"#include <vixavideofx/VixaVideoFX.h>"
compiles c++14 "the identifiers" <"$ROOT/tests/include/InterfaceIds.cpp"

# The identifiers of the platform's own interfaces, which MinGW's headers attach in another way.
platform='#define WIN32_LEAN_AND_MEAN
#include <rpc.h>
#include <rpcndr.h>
#undef WIN32_LEAN_AND_MEAN
#undef MIDL_INTERFACE
#define MIDL_INTERFACE(id) struct __declspec(uuid(id)) __declspec(novtable)
#line 1'
compiles c++17 examples/host.cpp <<<"$platform"$'\n'"$(cat "$ROOT/examples/host.cpp")"
compiles c99 examples/host.c <"$ROOT/examples/host.c"

say "$compiled compiled, $failed failed"
[ $failed -eq 0 ]
