#!/usr/bin/env bash
# lint.sh: holds the code against its layout (.clang-format), clang-tidy (.clang-tidy) and cppcheck (tools/cppcheck.txt);
# ends with 1 when anything was found. Nothing needs to be built. Trees of its own below build/lint only plan how a file is
# compiled, and plan a library or program as one unit that includes its sources, so that the system's headers are read once
# for a room. Ninja runs what has changed since nothing was found in it.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
cd "$ROOT"
lint=build/lint
found=0

# plan TREE PRESET [ARGUMENT...]: makes a tree or brings it up to date.
plan() {
    local tree=$lint/$1 preset=$2
    shift 2
    step "plan-${tree##*/}" "    the plan of $preset" cmake --preset "$preset" -B "$tree" \
        -DCMAKE_UNITY_BUILD=ON -DCMAKE_UNITY_BUILD_BATCH_SIZE=0 -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON "$@"
}

# units TREE: TREE, file and compiler command of each of a tree's units, with tabs between.
units() {
    sed -n 's/^ *"command": "\(.*\)",$/\1/p' "$lint/$1/compile_commands.json" | sed 's/\\\(.\)/\1/g' |
        sed -n "s|^\(.*\) -o [^ ]* -c \(.*\.c[a-z]*\)$|$1\t\2\t\1|p" | grep -vP '^\S+\t[^\t]*/(googletest/|tinyxml\.dir/)'
}

# unseen: of the units on standard input those that have a source, other than a generated one, which no earlier unit has. So
# what is portable is looked at natively, and a source of several programs once.
unseen() {
    local -A seen=()
    local tree file command source new
    while IFS=$'\t' read -r tree file command; do
        new=
        while read -r source; do
            [ -n "${seen["$source"]:-}" ] || new=1
            seen["$source"]=1
        done < <(case $file in
            "$BUILD"/*) sed -n 's/^#include "\(.*\)"$/\1/p' "$file" | grep -v "^$BUILD/" ;;
            *) printf '%s\n' "$file" ;;
        esac)
        [ -z "$new" ] || printf '%s\t%s\t%s\n' "$tree" "$file" "$command"
    done
}

# rules: the build file by which ninja runs the checks; units on standard input.
rules() {
    local tree file command name library flags
    # clang stands in for the cross compiler with that compiler's own library; its headers forbid standard functions by default.
    library=$(i686-w64-mingw32-g++-posix -print-file-name=include/c++)
    flags=" --target=i686-w64-mingw32 -nostdinc++ -DSTRSAFE_NO_DEPRECATE"
    flags+=" -isystem$library -isystem$library/i686-w64-mingw32 -isystem$library/backward"
    cat <<RULES
builddir = $lint
win32 = ${flags// -/ --extra-arg=-}
rule tidy
  command = cd $lint/\$tree && \$compiler -MM -MT \$out -MF $ROOT/\$out.d \$file && \$
    clang-tidy -p . --quiet \$arguments \$file 2>/dev/null && \$
    touch $ROOT/\$out
  depfile = \$out.d
  deps = gcc
rule cppcheck
  command = cppcheck --quiet --std=c++20 --enable=warning,performance,portability --inline-suppr --error-exitcode=1 \$
    --suppressions-list=tools/cppcheck.txt --cppcheck-build-dir=$lint/cppcheck \$
    --library=windows --library=googletest --platform=win32W -I . -I include \$sources 2>&1 && touch \$out
RULES
    printf 'build %s: cppcheck | tools/cppcheck.txt %s\n  sources = %s\n' "$lint/cppcheck.found-nothing" \
        "$(git ls-files '*.cpp' '*.h' '*.inl' | tr '\n' ' ')" "$(git ls-files '*.cpp' | tr '\n' ' ')"
    while IFS=$'\t' read -r tree file command; do
        name=${file#"$ROOT"/}
        name=${name#"$lint/$tree/"}
        name=${name%/Unity/*}
        printf 'build %s: tidy | .clang-tidy\n  tree = %s\n  compiler = %s\n  file = %s\n  arguments = %s\n' \
            "$lint/$tree/${name//\/CMakeFiles\//\/}.found-nothing" "$tree" "${command//\$/\$\$}" "$file" \
            "$([ "$tree" != win32 ] || printf '$win32')"
    done
}

say "Checking the layout"
tools/format.sh --check || found=1

say "Checking with clang-tidy and cppcheck"
plan native native -DVIXA_SANITIZE=OFF -DVIXA_BENCH=ON
plan fuzz fuzz
plan win32 win32
mkdir -p "$lint/cppcheck"
{ units native && units fuzz && units win32; } | unseen | rules >"$lint/lint.ninja.new"
# An older file would have ninja take every command for changed.
cmp -s "$lint/lint.ninja.new" "$lint/lint.ninja" || mv "$lint/lint.ninja.new" "$lint/lint.ninja"
say "    $(grep -c '^build' "$lint/lint.ninja") units, of which $(ninja -f "$lint/lint.ninja" -n | grep -c '^\[') changed"
# Of a unit in which something was found ninja tells the command before the findings.
ninja -f "$lint/lint.ninja" --quiet -k 0 -j "$(nproc)" | sed -e '/^FAILED: /{N;d}' -e "s|$ROOT/||g" || found=1

[ "$found" -eq 0 ] || fail "The checks above found something."
