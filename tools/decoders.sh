#!/usr/bin/env bash
# decoders.sh: says which decoders for compressed clips, that Wine has from GStreamer, are not installed, and offers to install
# what can be had when it is asked on a terminal; --install: installs without asking. Ends with 0 when something was installed
# or, without --offer, nothing is missing; --offer: is silent and ends with 1 when nothing can be had.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

installed() { dpkg-query -W -f '${Status}' "$1" 2>/dev/null | grep -q '^install ok installed'; }
apt() { env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "$@"; }
missing=()
while read -r package; do
    installed "$package" || missing+=("$package")
done < <(sed -e 's/#.*//' -e '/^$/d' "$ROOT/tools/packages-decoders.txt")
# FFmpeg's decoders come with many libraries, whose 32-bit half can't be had where the other half is newer.
ffmpeg=() refused=()
for package in gstreamer1.0-libav gstreamer1.0-libav:i386; do
    if ! installed "$package"; then
        if apt --simulate "$package" >"$LOGS/apt-decoders.log" 2>&1; then ffmpeg+=("$package"); else refused+=("$package"); fi
    fi
done
if [ $((${#missing[@]} + ${#ffmpeg[@]})) -eq 0 ]; then
    [ "${1:-}" != --offer ] || exit 1
    say "Wine decodes compressed clips here with all of GStreamer's plug-ins that can be had."
    [ ${#refused[@]} -eq 0 ] || say "Not to be had here: ${refused[*]} (MPEG-4, H.264 and what else FFmpeg decodes); see $LOGS/apt-decoders.log."
    exit
fi
if [ "${1:-}" != --install ]; then
    {
        say "Wine decodes compressed clips with GStreamer's plug-ins, of which are missing:"
        [ ${#missing[@]} -eq 0 ] || say "    ${missing[*]} (MJPEG, VP8, VP9, Theora, DV; 12 MB)"
        [ ${#ffmpeg[@]} -eq 0 ] || say "    ${ffmpeg[*]} (MPEG-4, H.264 and what else FFmpeg decodes; with its libraries)"
        [ ${#refused[@]} -eq 0 ] || say "    ${refused[*]}, which can't be had here; see $LOGS/apt-decoders.log"
    } >&2
    [ -t 0 ] && [ -t 2 ] || fail "./run decoders --install installs them."
    read -r -p "Install them now? [y/N] " answer
    [[ $answer == [yY]* ]] || exit 1
fi
if [ ${#missing[@]} -gt 0 ]; then
    rm -f "$BUILD/setup-done-decoders" # the machine may have changed since
    "$ROOT/tools/setup.sh" decoders
fi
if [ ${#ffmpeg[@]} -gt 0 ]; then
    [ "$(id -u)" = 0 ] || fail "Packages (${ffmpeg[*]}) are installed by root: start this command as root once."
    step apt-decoders "Installing FFmpeg's decoders for GStreamer" apt "${ffmpeg[@]}"
    [[ " ${ffmpeg[*]} " == *:i386* ]] || say "They are 64-bit only here: ./run --64 reads clips with them."
fi
