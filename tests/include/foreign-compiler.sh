#!/usr/bin/env bash
# Compiles what hosts compile, with clang for the ABI of Microsoft's compilers, 32 and 64 bits, over MinGW-w64's platform
# headers: each public header alone, their identifiers, the C declarations as C, and the examples.
. "$(dirname "${BASH_SOURCE[0]}")/../../tools/common.sh"

mapfile -t folders < <(i686-w64-mingw32-g++-posix -E -x c++ -v /dev/null 2>&1 |
    sed -n 's,^ \(/.*\(/c++.*\|mingw32/include\)\)$,\1,p')
[ ${#folders[@]} -gt 1 ] || fail "the cross compiler's headers were not found"
failed=0 compiled=0

# compiles LANGUAGE WHAT SOURCE: SOURCE is a file or, with "-", standard input.
compiles() {
    local language=$1 what=$2 source=$3 target text
    text=$(cat "$source")
    for target in i686 x86_64; do
        compiled=$((compiled + 1))
        # MinGW's headers know the language by the GNU version; libstdc++'s have no 128-bit integers in a strict one.
        clang --target=$target-pc-windows-msvc -fsyntax-only -fms-extensions -fms-compatibility -fgnuc-version=4.2.1 \
            -x "${language%%[0-9]*}" -std="$language" -Wall -Wextra -Wno-unused-const-variable -Werror \
            -D__STRICT_ANSI__ -U__SIZEOF_INT128__ "-D_$([ $target = i686 ] && echo X86 || echo AMD64)_" \
            -I "$ROOT/include" "${folders[@]/#/-isystem}" - <<<"$text" || {
            say "^ $what as $language for $target"
            failed=$((failed + 1))
        }
    done
}

for header in "$ROOT"/include/vixavideofx/*.h; do
    name=vixavideofx/$(basename "$header")
    language=c++14
    [ "$name" != vixavideofx/EffectParameters.h ] || language=c++20
    compiles $language "$name" - <<<"#include <$name>"
done
compiles c99 vixavideofx/VixaVideoFX.h - <<<"#include <vixavideofx/VixaVideoFX.h>"
compiles c++14 "the identifiers" "$ROOT/tests/include/InterfaceIds.cpp"

say "$compiled compiled, $failed failed"
[ $failed -eq 0 ]
