#!/usr/bin/env bash
# wine-fresh.sh PROGRAM [ARGUMENT...]: runs a Windows program in a Wine prefix that nothing has run in before, and removes
# the prefix afterwards. For what writes to the registry or installs something.
set -euo pipefail
tools=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
build="$tools/../build"
template="$build/wine-template"

mkdir -p "$build"
exec 9>"$build/.wine-template.lock"
flock 9
if [ ! -f "$template/.complete" ]; then
    VIXA_WINEPREFIX="$template" "$tools/wine-run.sh" cmd /c exit 9>&-
    # The server writes the registry files when it ends.
    WINEPREFIX="$template" wineserver -k 9>&-
    WINEPREFIX="$template" wineserver -w 9>&-
    touch "$template/.complete"
fi
exec 9>&-

prefix=$(mktemp -d "$build/wine-fresh.XXXXXX")
finish() {
    WINEPREFIX="$prefix" wineserver -k 2>/dev/null || true
    WINEPREFIX="$prefix" wineserver -w || true
    rm -rf "$prefix"
}
trap finish EXIT
# Links are enough for files that nobody writes; the server writes linked registry files in place, so those are copied.
cp -al "$template/." "$prefix/"
cp --remove-destination "$template"/*.reg "$prefix/"
VIXA_WINEPREFIX="$prefix" "$tools/wine-run.sh" "$@"
