#!/usr/bin/env bash
# decoders.sh: says whether the decoders for compressed clips are installed that Wine has from GStreamer, and offers to install
# what is missing when it is asked on a terminal; --install: installs without asking. Ends with 0 when something was installed
# or, without --offer, nothing is missing; --offer: is silent and ends with 1 when nothing is missing.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

missing=()
while read -r package; do
    dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q '^install ok installed' || missing+=("$package")
done < <(sed -e 's/#.*//' -e '/^$/d' "$ROOT/tools/packages-decoders.txt")
if [ ${#missing[@]} -eq 0 ]; then
    [ "${1:-}" != --offer ] || exit 1
    say "Wine decodes compressed clips here with GStreamer's base and good plug-ins; other formats need FFmpeg."
    exit
fi
if [ "${1:-}" != --install ]; then
    say "Wine decodes compressed clips with GStreamer's plug-ins, of which are missing: ${missing[*]}" >&2
    [ -t 0 ] && [ -t 2 ] || fail "./run decoders --install installs them (12 MB)."
    read -r -p "Install them now (12 MB)? [y/N] " answer
    [[ $answer == [yY]* ]] || exit 1
fi
rm -f "$BUILD/setup-done-decoders" # the machine may have changed since
exec "$ROOT/tools/setup.sh" decoders
