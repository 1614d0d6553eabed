#!/usr/bin/env bash
# setup.sh [plugins | hosts | decoders]: installs what a build needs on Debian 12 and is not there yet; or what the frei0r
# plug-ins are built with; or the hosts that their tests run; or the decoders that Wine has from GStreamer. Says what and why;
# does nothing the second time.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

case ${1:-} in
    plugins) list=packages-plugins why="the plug-ins are built with" programs="cmake ninja g++" ;;
    hosts)
        list=packages-hosts programs="ffmpeg melt gst-launch-1.0 go"
        why="the tests run the frei0r plug-ins in FFmpeg, MLT and GStreamer, and a host in Go, and so need"
        ;;
    decoders) list=packages-decoders why="Wine decodes compressed clips with" programs= ;;
    *)
        list=packages why="the build needs"
        programs="wine i686-w64-mingw32-g++-posix x86_64-w64-mingw32-g++-posix cmake ninja clang++ xvfb-run"
        ;;
esac
stamp="$BUILD/setup-done${1:+-$1}"
fingerprint=$(cat "$ROOT/tools/$list.txt" "${BASH_SOURCE[0]}" | cksum)
sources() { [ $list != packages ] || "$ROOT/tools/fetch-tinyxml.sh"; }
have() {
    for program; do
        command -v "$program" >/dev/null || return 1
    done
}
# The stamp lives with the checkout; the machine under it may have changed since.
if [ -f "$stamp" ] && [ "$(cat "$stamp")" = "$fingerprint" ] &&
    have $programs; then
    sources
    exit
fi

alone setup
mapfile -t wanted < <(sed -e 's/#.*//' -e 's/[[:space:]]*$//' -e '/^$/d' "$ROOT/tools/$list.txt")
installed() { dpkg-query -W -f '${Status}' "$1" 2>/dev/null | grep -q '^install ok installed'; }
missing=()
for package in "${wanted[@]}"; do
    installed "$package" || missing+=("$package")
done

if [ ${#missing[@]} -gt 0 ]; then
    os=$(. /etc/os-release 2>/dev/null && printf '%s %s' "${ID:-?}" "${VERSION_ID:-?}") || os="? ?"
    [ "$os" = "debian 12" ] ||
        fail "Set-up knows Debian 12 only (this is: $os). Install by hand what tools/$list.txt lists, then start again."
    [ "$(id -u)" = 0 ] || fail "Set-up must install packages (${missing[*]}) and needs root: start this command as root once."
    say "Setting up: $why ${#missing[@]} Debian packages that are not here: ${missing[*]}"
    added=
    if printf '%s\n' "${missing[@]}" | grep -q ':i386$' && ! dpkg --print-foreign-architectures | grep -qx i386; then
        ! dpkg --add-architecture i386 || added=i386
    fi
    # An index of a side suite may be stale on a mirror; whether what is needed can be had shows in the next step.
    apt-get update >"$LOGS/apt-update.log" 2>&1 || say "    (package lists: not all could be refreshed, see $LOGS/apt-update.log)"
    codename=$(. /etc/os-release && printf '%s' "$VERSION_CODENAME")
    install=(env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends -t "$codename")
    # Not every mirror and machine has the 32-bit packages; what needs them is left out then.
    mapfile -t own < <(printf '%s\n' "${missing[@]}" | grep -v ':i386$')
    if [ ${#own[@]} -lt ${#missing[@]} ] && ! "${install[@]}" --simulate "${missing[@]}" >"$LOGS/apt-32-bit.log" 2>&1; then
        say "    (32-bit Wine can't be had here, see $LOGS/apt-32-bit.log: only 64-bit programs will run)"
        [ -z "$added" ] || dpkg --remove-architecture i386
        missing=("${own[@]}")
    fi
    [ ${#missing[@]} -eq 0 ] || step apt-install "Installing packages (about a minute)" "${install[@]}" "${missing[@]}"
    # A build looks for what is there now; the others go on meanwhile.
    if [ -n "${1:-}" ]; then
        rm -f "$BUILD"/{frei0r,win32,win64}/build.ninja
    else
        rm -f "$BUILD"/*/build.ninja
    fi
fi
printf '%s\n' "$fingerprint" >"$stamp"
sources
