#!/usr/bin/env bash
# bench-clips.sh [FRAMES]: how many frames a second of a 1920 x 1080 clip (RGB, 32 bits) go from a file through "Soften filter" into
# a file, start and end of the program included: vixahost of both widths on Wine, and FFmpeg with the same kernel. Medians of three
# runs. ./run bench --clips starts it. Needs FFmpeg, which makes the clip too, and 4 GB below build/.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

frames=${1:-150}
[[ $frames =~ ^[1-9][0-9]*$ ]] || fail "bench-clips.sh takes a number of frames, not \"$frames\"."
if ! command -v ffmpeg >/dev/null; then
    [ "$(id -u)" = 0 ] || fail "This needs the package ffmpeg: start this command as root once."
    step apt-ffmpeg "Installing FFmpeg" env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends ffmpeg
fi
hosts=(win64)
! runs32 || hosts=(win32 win64)
for preset in "${hosts[@]}"; do
    build $preset VixaVideoFX vixahost
done
folder=$BUILD/bench-clips
mkdir -p "$folder"
cd "$folder"
trap 'rm -f "$folder"/*.avi' EXIT
ffmpeg -v error -y -f lavfi -i testsrc2=size=1920x1080:rate=25 -frames:v "$frames" -pix_fmt bgra -c:v rawvideo in.avi </dev/null

# timed NAME COMMAND...: three runs; prints the median. The first one, which fills the file cache, does not count.
timed() {
    local name=$1 seconds=() begin
    shift
    for run in 0 1 2 3; do
        rm -f out.avi
        begin=$EPOCHREALTIME
        "$@" >run.log 2>&1 </dev/null || fail "$name failed: $(tail -n 1 run.log)"
        [ $run = 0 ] || seconds+=("$(awk -v from="$begin" -v to="$EPOCHREALTIME" 'BEGIN { print to - from }')")
    done
    printf '%s\n' "${seconds[@]}" | sort -n | awk -v name="$name" -v frames="$frames" \
        'NR == 2 { printf "%-28s %6.1f frames/s\n", name, frames / $1 }'
}

say "$frames frames of 1920 x 1080, $(nproc) processors:"
for preset in "${hosts[@]}"; do
    timed "vixahost, ${preset#win} bit" "$ROOT/tools/wine-run.sh" "$BUILD/$preset/bin/vixahost.exe" apply "Soften filter" in.avi out.avi
done
soften='1 1 1 1 1 1 1 1 1'
timed "FFmpeg" ffmpeg -v error -y -i in.avi \
    -vf "format=gbrap,convolution=0m='$soften':1m='$soften':2m='$soften':0rdiv=0.111111:1rdiv=0.111111:2rdiv=0.111111,format=bgra" -c:v rawvideo out.avi
