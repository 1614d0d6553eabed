#!/usr/bin/env bash
# bench.sh [--peers] [--json] [--native | --wine] [--quick] [--only PART-OF-A-NAME] [WIDTHxHEIGHT...]: builds and runs the
# benchmarks: the kernels natively (beside other libraries, as far as they are installed; --peers installs them), the kernels
# in 32-bit code on Wine, and the filters of the libraries of both widths on Wine through their input pins. On one core, as
# ratios. bench.sh --clips [FRAMES]: clips from file to file (bench-clips.sh).
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

json= native=1 wine=1
words=()
if [ "${1:-}" = --clips ]; then
    shift
    exec "$ROOT/tools/bench-clips.sh" "$@"
fi
while [ $# -gt 0 ]; do
    case $1 in
    --peers) peers=1 ;;
    --json) json=1 words+=("$1") ;;
    --native) wine= ;;
    --wine) native= ;;
    *) words+=("$1") ;;
    esac
    shift
done
# With --json only the figures go to standard output.
exec 3>&1
[ -z "$json" ] || exec 1>&2

if [ -n "${peers:-}" ]; then
    mapfile -t packages < <(sed -e 's/#.*//' -e '/^[[:space:]]*$/d' "$ROOT/tools/packages-bench.txt")
    if ! dpkg-query -W -f '${Status}\n' "${packages[@]}" 2>/dev/null | awk '!/^install ok installed$/ { bad = 1 } END { exit bad || NR < '${#packages[@]}' }'; then
        [ "$(id -u)" = 0 ] || fail "The peers need packages (${packages[*]}): start this command as root once."
        step apt-bench "Installing the peers' packages" env DEBIAN_FRONTEND=noninteractive \
            apt-get install -y --no-install-recommends "${packages[@]}"
    fi
    rm -f "$BUILD/bench/build.ninja" # look for them again
fi

# The last core of those that may be used: the first one usually serves the system's interrupts.
core=$(taskset -cp $$ | sed 's/.*[^0-9]//')
pinned() { taskset -c "$core" "$@" >&3; }
separator() { [ -z "$json" ] || printf ',\n' >&3; }

[ -z "$native" ] || build bench vixa_bench
if [ -n "$wine" ]; then
    build win64 vixa_filter_bench VixaVideoFX
    ! runs32 || build win32 vixa_bench vixa_filter_bench VixaVideoFX
fi

# Names alone do not tell generations apart: some machines say no more than the maker's.
processor=$(awk -F': *' '/^cpu family/ { family = $2 } /^model\t/ { model = $2 } /^model name/ { name = $2 }
    /^stepping/ { exit } END { print name ", family " family ", model " model }' /proc/cpuinfo)
if [ -n "$json" ]; then
    printf '{"processor": "%s", "programs": [\n' "$processor" >&3
else
    printf '%s\n\n' "$processor" >&3
fi
if [ -n "$native" ]; then
    pinned "$BUILD/bench/bin/vixa_bench" "${words[@]}"
fi
if [ -n "$wine" ]; then
    [ -z "$native" ] || separator
    if runs32; then
        pinned "$ROOT/tools/wine-run.sh" "$BUILD/win32/bin/vixa_bench.exe" "${words[@]}"
        separator
        pinned "$ROOT/tools/wine-run.sh" "$BUILD/win32/bin/vixa_filter_bench.exe" "${words[@]}"
        separator
    fi
    pinned "$ROOT/tools/wine-run.sh" "$BUILD/win64/bin/vixa_filter_bench.exe" "${words[@]}"
fi
[ -z "$json" ] || printf ']}\n' >&3
