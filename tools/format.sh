#!/usr/bin/env bash
# format.sh [--check]: lays out the project's C++ with clang-format; with --check only says which files would change.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
cd "$ROOT"
mapfile -t files < <(git ls-files '*.h' '*.c' '*.cpp')
if [ "${1:-}" = --check ]; then
    clang-format --dry-run --Werror "${files[@]}"
else
    clang-format -i "${files[@]}"
fi
