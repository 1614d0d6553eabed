#!/usr/bin/env bash
# attack.sh [--64] [MINUTES]: tries to break the built library (the 64-bit one), 20 minutes unless said otherwise: `vixahost
# validate --attack`, and at the same time four processes that register and unregister it, in a Wine prefix of their own.
# Fails when the library gives way; says at the end how often what was done.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
width=32 wide=()
if [ "${1:-}" = --64 ]; then
    width=64 wide=(--64)
    shift
fi
minutes=${1:-20}
export VIXA_WINEARCH=win$width
bin="$BUILD/win$width/bin"
regsvr32='C:\windows\system32\regsvr32.exe' # the one of the prefix's width
[ -f "$bin/vixahost.exe" ] && [ -f "$bin/VixaVideoFX.dll" ] || fail "There is nothing to attack yet; ./run builds it."

# register_for SECONDS FILE: four at once, each on and off again; their figures go to FILE. What one registers another
# removes, so a refusal is an answer; a crash has none. The last call registers alone and must succeed.
register_for() {
    local end=$((SECONDS + $1)) worker
    for worker in 1 2 3 4; do
        (
            done=0 refused=0
            while [ $SECONDS -lt "$end" ]; do
                [ -d "${2%/*}" ] || exit 1 # the attack has failed, and nobody waits for the figures
                for word in "" /u; do
                    case $("$ROOT/tools/wine-run.sh" "$regsvr32" $word "$bin/VixaVideoFX.dll" 2>&1) in
                        *Successfully*) done=$((done + 1)) ;;
                        *regsvr32:*) refused=$((refused + 1)) ;;
                        *) exit 1 ;;
                    esac
                done
            done
            echo $done $refused >"$2.$worker"
        ) &
    done
    wait
    "$ROOT/tools/wine-run.sh" "$regsvr32" /s "$bin/VixaVideoFX.dll"
    [ -f "$2.1" ] && [ -f "$2.2" ] && [ -f "$2.3" ] && [ -f "$2.4" ] || return 1
    cat "$2".? | awk '{ done += $1; refused += $2 }
        END { print "Registrations and removals by four processes: " done " done, " refused " refused" }' >"$2"
}
if [ "${2:-}" = --register ]; then
    register_for $((minutes * 60)) "$3"
    exit
fi

figures=$(mktemp -d)
trap 'rm -rf "$figures"; wait' EXIT # what still registers ends then
"$ROOT/tools/wine-fresh.sh" --host "${BASH_SOURCE[0]}" "${wide[@]}" "$minutes" --register "$figures/registrations" &
registering=$!
"$ROOT/tools/wine-run.sh" "$bin/vixahost.exe" validate --attack "$minutes" || fail "The attack ended with status $?."
wait $registering || fail "Registering the library failed."
say "$(cat "$figures/registrations")"
