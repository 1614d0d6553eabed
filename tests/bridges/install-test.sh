#!/usr/bin/env bash
# install-test.sh: what ./run plugins prints works, from the build's folder and when the plug-ins are installed for a user;
# what is removed again is only what was installed.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export HOME=$work/home QT_QPA_PLATFORM=offscreen LC_ALL=C.UTF-8 XDG_CACHE_HOME=$work/cache
unset FREI0R_PATH
mkdir -p "$HOME" "$work/results"
cd "$work/results"
lib=$HOME/.frei0r-1/lib

try() { # try ARGUMENT...: runs the printed lines
    rm -f ./*
    "$root/run" plugins "$@" >../printed
    sed -n 's/^    //p' ../printed >../lines
    [ "$(wc -l <../lines)" = 3 ]
    while read -r line; do
        timeout 60 bash -c "$line" >../log 2>&1 </dev/null || { cat ../log; echo "^ $line"; exit 1; }
    done <../lines
    for result in ffmpeg.mkv melt.mkv gstreamer.ppm; do
        [ -s $result ] || { cat ../log; echo "no $result from: $(cat ../lines)"; exit 1; }
    done
}

try
[ ! -e "$lib" ]
try --install
[ "$(ls "$lib" | grep -c '^vixa_.*\.so$')" = 13 ]
touch "$lib/another.so"
"$root/run" plugins --remove >/dev/null
[ "$(ls "$lib")" = another.so ]
! "$root/run" plugins --instal 2>/dev/null
