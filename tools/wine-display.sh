#!/usr/bin/env bash
# wine-display.sh PROGRAM [ARGUMENT...]: runs a Windows program on Wine on a virtual display of its own, one program at a time.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
. "$root/tools/wine-arch.sh" "${1:-}"
export VIXA_WINEPREFIX="${VIXA_WINEPREFIX:-$WINE_HOME/wine-screen$WIDTH_SUFFIX}"
mkdir -p "$WINE_HOME"
exec 8>"$VIXA_WINEPREFIX.lock"
flock 8
# No window manager runs there: Wine would wait two seconds for one whenever a window closes.
if [ ! -f "$VIXA_WINEPREFIX/.unmanaged" ]; then
    "$root/tools/wine-run.sh" --display reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /d N /f >/dev/null 2>&1 8>&- || true
    touch "$VIXA_WINEPREFIX/.unmanaged"
fi
# What still lives of an earlier run belongs to a display that is gone.
WINEPREFIX="$VIXA_WINEPREFIX" wineserver -w 8>&- || true
# Ended before their display goes, the desktop's own processes don't complain about it.
status=0
# Two at the same time, one of each width, must not find the same number free.
number=100
[ -z "$WIDTH_SUFFIX" ] || number=200
xvfb-run -a -n $number -s "-screen 0 ${VIXA_SCREEN:-2560x1600}x24" bash -c '
    "$0" --display "$@"
    status=$?
    WINEPREFIX="$VIXA_WINEPREFIX" wineserver -k
    exit $status' "$root/tools/wine-run.sh" "$@" 8>&- || status=$?
exit $status
