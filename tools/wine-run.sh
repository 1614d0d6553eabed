#!/usr/bin/env bash
# wine-run.sh [--display] PROGRAM [ARGUMENT...]: runs a Windows program on Wine in a prefix below build/, never the user's
# own: 32-bit programs in one that knows 32 bit only, 64-bit programs in one that runs both. Without --display windows live
# on a null driver; with it the X display of the caller is used (DISPLAY). VIXA_WINEPREFIX names another prefix; VIXA_WINEARCH
# (win32 or win64) is its kind, and that of programs which are no file, as Wine's own are.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

graphics=null
if [ "${1:-}" = --display ]; then
    graphics=x11
    shift
fi
. "$root/tools/wine-arch.sh" "${1:-}"
export WINEPREFIX="${VIXA_WINEPREFIX:-$WINE_HOME/wine-$graphics$WIDTH_SUFFIX}" WINEARCH=$VIXA_WINEARCH WINEDEBUG="${WINEDEBUG:--all}"
# Without UTF-8 Wine loses every letter of a file name that is not ASCII.
[ "$(locale charmap 2>/dev/null)" = UTF-8 ] || export LC_ALL=C.UTF-8
export WINEDLLOVERRIDES="mscoree=;mshtml=;winemenubuilder.exe=;winedbg.exe="

# Controls are written in Tahoma, which Debian's Wine has but doesn't look for; letters that it lacks (Chinese, Japanese, Korean)
# come from the linked font, as on Windows from fonts of its own.
own_fonts=/usr/share/wine/fonts linked_font='wqy-microhei.ttc,WenQuanYi Micro Hei'
setup='fonts 1, silent' # another one here brings older prefixes up to date
is_ready() { [ "$(cat "$WINEPREFIX/.ready" 2>/dev/null)" = "$setup" ]; }
if ! is_ready; then
    mkdir -p "$WINEPREFIX"
    exec 9>"$WINEPREFIX/.lock"
    # Standard input is the program's.
    exec 8<&0 </dev/null
    flock 9
    if ! is_ready; then
        # The descriptor of the lock must not live on in the server that these start.
        env DISPLAY= wineboot --init >"$WINEPREFIX/wineboot.log" 2>&1 9>&- ||
            { echo "Wine could not make its prefix; see $WINEPREFIX/wineboot.log" >&2; exit 1; }
        wine reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d "$graphics" /f >>"$WINEPREFIX/wineboot.log" 2>&1 9>&-
        # Nothing here plays sound; looking for a card where there is none fills standard error.
        wine reg add 'HKCU\Software\Wine\Drivers' /v Audio /d '' /f >>"$WINEPREFIX/wineboot.log" 2>&1 9>&-
        mkdir -p "$WINEPREFIX/drive_c/windows/Fonts"
        ln -sf "$own_fonts"/tahoma*.ttf "$WINEPREFIX/drive_c/windows/Fonts/"
        for font in Tahoma 'Tahoma Bold' 'Microsoft Sans Serif'; do
            wine reg add 'HKLM\Software\Microsoft\Windows NT\CurrentVersion\FontLink\SystemLink' /v "$font" \
                /t REG_MULTI_SZ /d "$linked_font" /f >>"$WINEPREFIX/wineboot.log" 2>&1 9>&-
        done
        # The desktop that was started on the way knows no display; the next program starts its own.
        wineserver -k 9>&- || true
        rm -f "$WINEPREFIX/.ready" # it may be a link into a template
        printf '%s\n' "$setup" >"$WINEPREFIX/.ready"
    fi
    exec 9>&- <&8 8<&-
fi
exec wine "$@"
