#!/usr/bin/env bash
# plugins.sh [--install | --remove]: builds the effects as frei0r plug-ins, says where they are and how FFmpeg, melt and
# GStreamer use them; --install copies them to where hosts look for a user's plug-ins, --remove takes them away again.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

folder="$HOME/.frei0r-1/lib"
case ${1:-} in
    '' | --install) ;;
    --remove)
        rm -f "$folder"/vixa_*.so
        rmdir "$folder" "${folder%/*}" 2>/dev/null || true
        say "No vixa_*.so is left in $folder."
        exit
        ;;
    *) fail "Usage: ./run plugins [--install | --remove]" ;;
esac

"$ROOT/tools/setup.sh" plugins
build frei0r plugins
if [ "${1:-}" = --install ]; then
    mkdir -p "$folder"
    # A host that has the old file open keeps it.
    install -m 644 "$BUILD"/frei0r/vixa_*.so "$folder/"
    path=
    say "Thirteen plug-ins are in $folder, where hosts look."
else
    path="FREI0R_PATH=$(printf %q "$BUILD/frei0r") "
    say "Thirteen plug-ins are in $BUILD/frei0r. Hosts find them there when FREI0R_PATH names the folder (it takes the
place of all others: add them behind a colon if need be), or anywhere after ./run plugins --install."
fi
cat <<TEXT
One second of a test picture with an effect; the second line reads what the first one made. docs/linux-hosts.md has the
parameters, more commands and the hosts' traps:

    ${path}ffmpeg -y -f lavfi -i testsrc2=size=640x480:duration=1 -vf frei0r=vixa_emboss -c:v ffv1 ffmpeg.mkv
    ${path}melt -silent ffmpeg.mkv -filter frei0r.vixa_soften_filter -consumer avformat:melt.mkv vcodec=ffv1 an=1
    ${path}gst-launch-1.0 videotestsrc num-buffers=1 ! videoconvert ! frei0r-filter-vixa-emboss ! videoconvert ! pnmenc ! filesink location=gstreamer.ppm
TEXT
