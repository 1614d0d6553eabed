#!/usr/bin/env bash
# endings-test.sh HOST: how jobs end that can't go on: on a disk that is really full, a file system of 2 MB in a namespace of
# this test's own; and when ./run is told to end by SIGTERM or SIGHUP, also while it waits for frames. Each time the old result
# stays and nothing else is left.
set -euo pipefail
host=$1
. "$(dirname "${BASH_SOURCE[0]}")/../../tools/common.sh"
case $host in *win64*) wide=--64 ;; *) wide= ;; esac

fault() { fail "endings-test: $*"; }
# clip FILE WIDTH HEIGHT FRAMES: y4m, grey.
clip() {
    local frame="$1.frame" number
    { printf 'FRAME\n'; head -c $(($2 * $3)) /dev/zero | tr '\0' '\200'; } >"$frame"
    printf 'YUV4MPEG2 W%d H%d F25:1 Cmono\n' "$2" "$3" >"$1"
    for ((number = 0; number < $4; ++number)); do cat "$frame"; done >>"$1"
    rm "$frame"
}
# only FOLDER NAME...: whether nothing else is in it.
only() {
    local folder=$1
    shift
    [ "$(ls "$folder")" = "$(printf '%s\n' "$@")" ] || fault "left behind: $(ls "$folder")"
}

if [ "${2:-}" = --on-a-full-disk ]; then
    cd "$3"
    mkdir disk
    mount -t tmpfs -o size=2m tmpfs disk
    echo old >disk/out.avi
    for target in out.avi out.y4m frame%04d.bmp; do
        status=0
        "$ROOT/tools/wine-run.sh" "$host" apply Emboss in.y4m "disk/$target" >said 2>&1 || status=$?
        [ $status = 1 ] || fault "$target: status $status on a full disk: $(cat said)"
        grep -q 'full' said && ! grep -q partial said && grep -q "${target%%[.%]*}" said || fault "$target: $(cat said)"
        only disk out.avi
        [ "$(cat disk/out.avi)" = old ] || fault "$target: the old result is gone"
    done
    exit
fi

folder=$(mktemp -d "$BUILD/endings.XXXXXX")
trap 'rm -rf "$folder"' EXIT
clip "$folder/in.y4m" 160 120 60
# (a container may forbid namespaces to everybody)
own_space=
for way in -rm -m; do
    [ -n "$own_space" ] || ! unshare $way true 2>/dev/null || own_space=$way
done
if [ -n "$own_space" ]; then
    VIXA_WINEARCH=$([ -z "$wide" ] && echo win32 || echo win64) "$ROOT/tools/wine-fresh.sh" --host \
        unshare $own_space "${BASH_SOURCE[0]}" "$host" --on-a-full-disk "$folder"
else
    say "NOT tested: a full disk, because this machine gives nobody a file system of his own (unshare fails)"
fi

mkdir "$folder/signals"
clip "$folder/long.y4m" 320 240 400
slow=(Emboss --level plain)
for step in {1..20}; do slow+=(--then Emboss); done
# The last one waits for frames that don't come: one and a half are in the pipe, whose other end stays open.
mkfifo "$folder/silent"
exec 5<>"$folder/silent"
head -c 30000 "$folder/in.y4m" >&5
for ending in "TERM $folder/long.y4m" "HUP $folder/long.y4m" "TERM -"; do
    signal=${ending%% *}
    echo old >"$folder/signals/out.avi"
    "$ROOT/run" $wide apply "${slow[@]}" "${ending#* }" "$folder/signals/out.avi" >"$folder/said" 2>&1 <"$folder/silent" &
    run=$!
    until compgen -G "$folder/signals/*.partial-*" >/dev/null; do
        kill -0 $run 2>/dev/null || fault "SIG$ending: it ended by itself: $(cat "$folder/said")"
        sleep 0.05
    done
    [ "$ending" != "TERM -" ] || sleep 1 # until the frame is through
    kill -$signal $run
    timeout 20 tail --pid=$run -f /dev/null || fault "SIG$ending: it goes on"
    status=0
    wait $run || status=$?
    [ $status = 1 ] && grep -q Stopped "$folder/said" || fault "SIG$ending: status $status: $(cat "$folder/said")"
    only "$folder/signals" out.avi
    [ "$(cat "$folder/signals/out.avi")" = old ] || fault "SIG$ending: the old result is gone"
done
