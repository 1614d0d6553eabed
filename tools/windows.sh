#!/usr/bin/env bash
# windows.sh [DPI [WIDTHxHEIGHT [dark] [CODE...]]]: pictures of the browser's window, its menus and its questions, one file a
# language below build/windows: all languages at 1180x760 and 96 dpi, unless others are named ("de-DE"). A translator looks
# at them after a change. With "dark" under dark system colours.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

dpi=${1:-96} size=${2:-1180x760}
[ $# -le 2 ] && languages=(all) || languages=("${@:3}")
[ "${languages[*]}" != dark ] || languages=(dark all)
folder="$BUILD/windows/$size-$dpi"
[ "${languages[0]}" != dark ] || folder+=-dark
build win32 window_sheet
mkdir -p "$folder"
export VIXA_WINEPREFIX="$BUILD/wine-dpi-screen" VIXA_DISPLAY=1
step windows "Drawing the windows" timeout 600 xvfb-run -a -s "-screen 0 3840x2400x24" \
    "$ROOT/tools/wine-dpi.sh" "$dpi" "$BUILD/win32/bin/window_sheet.exe" "$folder" "$size" "${languages[@]}"
say "The pictures are in $folder"
