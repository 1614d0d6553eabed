#!/usr/bin/env bash
# lint.sh: holds the code against its layout (.clang-format), clang-tidy (.clang-tidy) and cppcheck (tools/cppcheck.txt).
# Reads what the build trees native and win32 say of how a file is compiled, so they must be built. A file in which
# nothing was found is looked at again when its object file was made anew or the rules changed.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
cd "$ROOT"
lint="$BUILD/lint"
found=0

# stale TREE: the project's sources in a build tree that have no stamp of their own younger than their object file.
stale() {
    sed -n 's/.* -o \([^ ]*\) -c \([^ ]*\)",$/\2 \1/p' "$BUILD/$1/compile_commands.json" |
        while read -r source object; do
            case $source in "$BUILD"/* | /usr/*) continue ;; esac
            stamp=$lint/$1/${source#"$ROOT"/}
            if [ ! "$stamp" -nt "$BUILD/$1/$object" ] || [ ! "$stamp" -nt .clang-tidy ]; then
                printf '%s\n' "${source#"$ROOT"/}"
            fi
        done | sort -u
}

# tidy TREE SOURCE [ARGUMENT...]: one file of a tree.
tidy() {
    local tree=$1 source=$2 report
    shift 2
    mkdir -p "$lint/$tree/${source%/*}"
    if report=$(clang-tidy -p "$BUILD/$tree" --quiet "$@" "$source" 2>/dev/null) && [ -z "$report" ]; then
        touch "$lint/$tree/$source"
    else
        printf '%s\n' "${report:-$source: clang-tidy gave up}"
        return 1
    fi
}
export -f tidy
export BUILD lint

say "Checking the layout"
tools/format.sh --check || found=1

say "Checking with clang-tidy"
# clang compiles for the cross compiler's target, with that compiler's own library.
library=$(i686-w64-mingw32-g++-posix -print-file-name=include/c++)
cross=(--extra-arg=--target=i686-w64-mingw32 --extra-arg=-nostdinc++)
for folder in "$library" "$library/i686-w64-mingw32" "$library/backward"; do
    cross+=("--extra-arg=-isystem$folder")
done
portable=$(stale native)
printf '%s' "$portable" | xargs -r -d '\n' -P "$(nproc)" -I{} bash -c 'tidy "$@"' - native {} || found=1
# What is compiled natively too has been seen.
comm -13 <(sed -n "s|^ *\"file\": \"$ROOT/\(.*\)\".*|\1|p" "$BUILD/native/compile_commands.json" | sort -u) \
    <(stale win32) |
    xargs -r -d '\n' -P "$(nproc)" -I{} bash -c 'tidy "$@"' - win32 {} "${cross[@]}" || found=1

say "Checking with cppcheck"
mkdir -p "$lint/cppcheck"
mapfile -t sources < <(git ls-files '*.cpp')
cppcheck --quiet --std=c++20 --enable=warning,performance,portability --inline-suppr --error-exitcode=1 \
    --suppressions-list=tools/cppcheck.txt --cppcheck-build-dir="$lint/cppcheck" -j "$(nproc)" \
    --library=windows --library=googletest --platform=win32W -I . -I include "${sources[@]}" || found=1

[ "$found" -eq 0 ] || fail "The checks above found something."
