#!/usr/bin/env bash
# panels.sh [FILE.png [DPI]]: opens every settings panel in five languages on a display of its own and keeps a picture of
# them, docs/panels.png unless another file is named, at 96 dpi unless another resolution is.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

file=$(realpath -m "${1:-$ROOT/docs/panels.png}")
build win32 panel_sheet
mkdir -p "$(dirname "$file")"
run=("$ROOT/tools/wine-run.sh" --display) screen=1600x1000
if [ "${2:-96}" != 96 ]; then
    export VIXA_WINEPREFIX="$BUILD/wine-dpi-screen" VIXA_DISPLAY=1
    run=("$ROOT/tools/wine-dpi.sh" "$2") screen=3200x2000
fi
step panels "Drawing $file" timeout 120 xvfb-run -a -s "-screen 0 ${screen}x24" \
    "${run[@]}" "$BUILD/win32/bin/panel_sheet.exe" "$file"
