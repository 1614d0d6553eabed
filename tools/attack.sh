#!/usr/bin/env bash
# attack.sh [MINUTES]: tries to break the built library, 20 minutes unless said otherwise: `vixahost validate --attack`, and at
# the same time four processes that register and unregister it, in a Wine prefix of their own. Fails when the library gives
# way; says at the end how often what was done.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
minutes=${1:-20}
bin="$BUILD/win32/bin"
[ -f "$bin/vixahost.exe" ] && [ -f "$bin/VixaVideoFX.dll" ] || fail "There is nothing to attack yet; ./run builds it."

# register_for SECONDS FILE: four at once, each on and off again; the number of calls goes to FILE. What one registers another
# removes, so only a crash or a refusal to start counts as a failure. The last call registers and must succeed.
register_for() {
    local end=$((SECONDS + $1)) worker
    for worker in 1 2 3 4; do
        (
            calls=0
            while [ $SECONDS -lt "$end" ]; do
                for word in "" /u; do
                    status=0
                    "$ROOT/tools/wine-run.sh" regsvr32 /s $word "$bin/VixaVideoFX.dll" >/dev/null 2>&1 || status=$?
                    [ $status -le 5 ] || exit 1 # regsvr32's own answers; a crash has a larger one
                    calls=$((calls + 1))
                done
            done
            echo $calls >"$2.$worker"
        ) &
    done
    wait
    "$ROOT/tools/wine-run.sh" regsvr32 /s "$bin/VixaVideoFX.dll"
    cat "$2".? | awk '{ sum += $1 } END { print sum " registrations and removals by " NR " processes" }' >"$2"
}
if [ "${2:-}" = --register ]; then
    register_for $((minutes * 60)) "$3"
    exit
fi

figures=$(mktemp -d)
trap 'rm -rf "$figures"' EXIT
"$ROOT/tools/wine-fresh.sh" --host "${BASH_SOURCE[0]}" "$minutes" --register "$figures/registrations" &
registering=$!
"$ROOT/tools/wine-run.sh" "$bin/vixahost.exe" validate --attack "$minutes" || fail "The attack ended with status $?."
wait $registering || fail "Registering the library failed."
say "$(cat "$figures/registrations")"
