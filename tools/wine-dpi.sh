#!/usr/bin/env bash
# wine-dpi.sh DPI PROGRAM [ARGUMENT...]: runs a Windows program on Wine at a screen resolution, in a prefix of its own, one
# program at a time. The program finds the resolution in VIXA_DPI too. With VIXA_DISPLAY set, it runs on the caller's display.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export VIXA_DPI=$1
shift
. "$root/tools/wine-arch.sh" "${1:-}"
export VIXA_WINEPREFIX="${VIXA_WINEPREFIX:-$root/build/wine-dpi$WIDTH_SUFFIX}"
mkdir -p "$root/build"
exec 8>"$VIXA_WINEPREFIX.lock"
flock 8
"$root/tools/wine-run.sh" ${VIXA_DISPLAY:+--display} reg add 'HKCU\Control Panel\Desktop' /v LogPixels /t REG_DWORD /d "$VIXA_DPI" /f >/dev/null 2>&1 8>&-
status=0
"$root/tools/wine-run.sh" ${VIXA_DISPLAY:+--display} "$@" 8>&- || status=$?
exit $status
