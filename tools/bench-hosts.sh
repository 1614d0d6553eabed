#!/usr/bin/env bash
# bench-hosts.sh [WIDTHxHEIGHT]: the frei0r plug-ins in FFmpeg against FFmpeg's own nearest filter, on one core: milliseconds a
# frame, the host's own copies and conversions between its layouts included. Each filter gets frames of noise in the layout that
# suits it best. Prints a table.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

"$ROOT/tools/setup.sh" plugins >&2
command -v ffmpeg >/dev/null || fail "This measures in FFmpeg: install it first (apt-get install ffmpeg, or tools/setup.sh hosts)."
build frei0r plugins >&2
size=${1:-1920x1080}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
head -c $((4 * ${size%x*} * ${size#*x})) /dev/urandom >"$work/noise"
export FREI0R_PATH=$BUILD/frei0r
core=$(taskset -cp $$ | sed 's/.*[^0-9]//')

# fastest FORMAT FILTER FRAMES: microseconds of the fastest of three runs over so many frames.
fastest() {
    local run start took least=
    for run in 1 2 3; do
        start=$(date +%s%N)
        taskset -c "$core" ffmpeg -nostdin -v error -threads 1 -filter_threads 1 -f rawvideo -pix_fmt bgra -s "$size" \
            -i "$work/noise" -vf "format=$1,loop=loop=-1:size=1,$2" -frames:v "$3" -f null - || fail "FFmpeg refuses $2"
        took=$((($(date +%s%N) - start) / 1000))
        [ -n "$least" ] && [ "$took" -ge "$least" ] || least=$took
    done
    echo "$least"
}

# cost FORMAT FILTER: microseconds a frame, the start not counted.
cost() {
    local short long
    short=$(fastest "$1" "$2" 10)
    long=$(fastest "$1" "$2" 70)
    echo $(((long - short) / 60))
}

# kernel WEIGHTS DIVISOR OFFSET: FFmpeg's convolution of three planes.
kernel() { echo "convolution=0m='$1':1m='$1':2m='$1':0rdiv=1/$2:1rdiv=1/$2:2rdiv=1/$2:0bias=$3:1bias=$3:2bias=$3"; }

# row NAME PLUGIN WHAT FILTER: the filter in packed and in planar RGB, whichever is faster.
row() {
    local ours packed planar theirs
    ours=$(cost bgra "frei0r=vixa_$2")
    planar=$(cost gbrp "$4") packed=$(cost bgra "$4")
    theirs=$((packed < planar ? packed : planar))
    awk -v name="$1" -v ours="$ours" -v theirs="$theirs" -v what="$3" \
        'BEGIN { printf "| %s | %.2f | %.2f | %.1f | %s |\n", name, ours / 1000, theirs / 1000, theirs / ours, what }'
}

printf '| Effect, %s | plug-in, ms | FFmpeg, ms | times as fast | FFmpeg filter |\n|---|---:|---:|---:|---|\n' "$size"
row 'Add pixel' 'add_pixel:0.6|0.4|0.55' lutrgb "lutrgb=r='clip(val+51,0,255)':g='clip(val-51,0,255)':b='clip(val+26,0,255)'"
row 'Filter color' 'filter_color:0.7|1' huesaturation huesaturation=intensity=0.4:colors=r
row 'Invert color' 'invert_color:y|y|y' negate negate
row 'Multiply pixel' multiply_pixel:0.7 lutrgb "lutrgb=r='clip(val*1.4,0,255)':g='clip(val*1.4,0,255)':b='clip(val*1.4,0,255)'"
row 'Gamma correction' gamma_correction:0.657 lutrgb 'lutrgb=r=gammaval(0.625):g=gammaval(0.625):b=gammaval(0.625)'
row 'Detect edges' detect_edges convolution "$(kernel '-1 -1 -1 -1 8 -1 -1 -1 -1' 1 0)"
row Emboss emboss convolution "$(kernel '0 1 1 -1 0 1 -1 -1 0' 1 128)"
row 'Enhance details' enhance_details convolution "$(kernel '0 -1 0 -1 9 -1 0 -1 0' 5 0)"
row 'Enhance edges' enhance_edges convolution "$(kernel '-1 -1 -1 -1 9 -1 -1 -1 -1' 1 0)"
row 'Enhance focus' enhance_focus convolution "$(kernel '-1 0 -1 0 7 0 -1 0 -1' 3 0)"
row 'Light edges' light_edges convolution "$(kernel '0 1 0 1 -4 1 0 1 0' 1 0)"
row 'Shift edges' shift_edges convolution "$(kernel '0 0 0 0 1 0 -1 0 0' 1 128)"
row 'Soften filter' soften_filter avgblur avgblur=1
