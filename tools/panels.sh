#!/usr/bin/env bash
# panels.sh [FILE.png]: opens every settings panel in five languages on a display of its own and keeps a picture of them,
# docs/panels.png unless another file is named.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

file=$(realpath -m "${1:-$ROOT/docs/panels.png}")
build win32 panel_sheet
# Chinese, Japanese and Korean characters come from another font than the panels' own, as they do on Windows.
step panels-font "Linking a font with the characters of East Asia" "$ROOT/tools/wine-run.sh" --display \
    reg add 'HKLM\Software\Microsoft\Windows NT\CurrentVersion\FontLink\SystemLink' \
    /v Tahoma /t REG_MULTI_SZ /d 'wqy-microhei.ttc,WenQuanYi Micro Hei' /f
mkdir -p "$(dirname "$file")"
step panels "Drawing $file" timeout 120 xvfb-run -a -s "-screen 0 1600x1000x24" \
    "$ROOT/tools/wine-run.sh" --display "$BUILD/win32/bin/panel_sheet.exe" "$file"
