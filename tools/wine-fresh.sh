#!/usr/bin/env bash
# wine-fresh.sh PROGRAM [ARGUMENT...]: runs a Windows program in a Wine prefix that nothing has run in before, and removes
# the prefix afterwards. For what writes to the registry or installs something.
# wine-fresh.sh --host COMMAND [ARGUMENT...]: runs a command of this machine, for which tools/wine-run.sh uses that prefix.
set -euo pipefail
tools=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
build=$(cd "$tools/.." && pwd)/build
. "$tools/wine-arch.sh" "${1:-}"
template="$build/wine-template$WIDTH_SUFFIX"

mkdir -p "$build"
exec 9>"$template.lock"
flock 9
if [ ! -f "$template/.complete" ]; then
    VIXA_WINEPREFIX="$template" "$tools/wine-run.sh" cmd /c exit 9>&-
    # The server writes the registry files when it ends.
    WINEPREFIX="$template" wineserver -k 9>&-
    WINEPREFIX="$template" wineserver -w 9>&-
    touch "$template/.complete"
fi
exec 9>&-

# discard PREFIX: ends what still runs in it, and removes it.
discard() {
    WINEPREFIX="$1" wineserver -k 2>/dev/null || true
    WINEPREFIX="$1" wineserver -w 2>/dev/null || true
    rm -rf "$1"
}
for left in "$build"/wine-fresh.*; do
    [ ! -d "$left" ] || kill -0 "${left##*.}" 2>/dev/null || discard "$left" # its run was killed
done

prefix="$build/wine-fresh.$$"
mkdir "$prefix"
trap 'discard "$prefix"' EXIT
trap 'exit 143' TERM INT
# Links are enough for files that nobody writes; the server writes linked registry files in place, so those are copied.
cp -al "$template/." "$prefix/"
cp --remove-destination "$template"/*.reg "$prefix/"
export VIXA_WINEPREFIX="$prefix"
if [ "${1:-}" = --host ]; then
    shift
    "$@" &
else
    "$tools/wine-run.sh" "$@" &
fi
wait $!
