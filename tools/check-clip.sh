#!/usr/bin/env bash
# check-clip.sh [graph|files|memory [FRAMES]]: long checks of frames on their way through the host's graph. Without words:
# 300 frames of 1920 x 1080 through every effect, in memory and as clips on the disk (needs 4 GB below build/), equal to
# the plain kernels' result; then 10,000 frames through all effects in series, and what memory they took.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

"$ROOT/tools/setup.sh"
build win32 VixaVideoFX clip_check
mkdir -p "$BUILD/clip-check"
cd "$BUILD/clip-check"
run() { "$ROOT/tools/wine-run.sh" "$BUILD/win32/bin/clip_check.exe" "$@"; }
if [ $# -gt 0 ]; then
    run "$@"
else
    run graph && run files && run memory
fi
