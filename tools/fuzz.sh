#!/usr/bin/env bash
# fuzz.sh [RUNS | --keep [NAME...]]: runs the fuzz targets (all of them without names) with RUNS inputs each, a million without a
# number. What crashes, hangs or grows too large stands in build/fuzz/fuzz/found/NAME afterwards; inputs that reached
# something new are kept there for the next run. --keep takes those of them into fuzz/corpus, the smallest first, that reach a
# place in the code which nothing there reaches, and no others: how often a place is reached doesn't count.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

runs=${1:-1000000}
shift || true
configure fuzz
[ $# -gt 0 ] || mapfile -t names < <(sed -n 's/^ *vixa_fuzz(\([a-z0-9_]*\) .*/\1/p' "$ROOT/fuzz/CMakeLists.txt")
[ $# -eq 0 ] || names=("$@")
build fuzz "${names[@]/#/fuzz_}"

for name in "${names[@]}"; do
    found="$BUILD/fuzz/fuzz/found/$name"
    log="$LOGS/fuzz-$name.log"
    row=$(grep "^ *vixa_fuzz($name " "$ROOT/fuzz/CMakeLists.txt")
    limit=$(sed -n 's/.*MAX_BYTES \([0-9]*\).*/\1/p' <<<"$row") words=$(sed -n 's/.*DICTIONARY \([^ )]*\).*/\1/p' <<<"$row")
    options=(-runs="$runs" -timeout=10 -rss_limit_mb=1024 -max_len="$limit" -print_final_stats=1)
    [ -z "$words" ] || options+=("-dict=$ROOT/fuzz/$words")
    mkdir -p "$found"
    if [ "$runs" = --keep ]; then
        before=$(ls "$ROOT/fuzz/corpus/$name" | wc -l)
        step "fuzz-keep-$name" "Looking for what $name adds" "$BUILD/fuzz/bin/fuzz_$name" -merge=1 -use_counters=0 -max_len="$limit" \
            "$ROOT/fuzz/corpus/$name" "$found"
        say "$name: $(($(ls "$ROOT/fuzz/corpus/$name" | wc -l) - before)) new, $(du -bs "$ROOT/fuzz/corpus/$name" | cut -f1) bytes with them"
        continue
    fi
    status=0
    (cd "$found" && "$BUILD/fuzz/bin/fuzz_$name" "${options[@]}" "$found" "$ROOT/fuzz/corpus/$name") >"$log" 2>&1 || status=$?
    count=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
    if [ $status -eq 0 ]; then
        say "$name: ${count:-?} inputs, nothing found"
    else
        say "$name: failed after ${count:-?} inputs; see $log and $found"
        failed=true
    fi
done
[ -z "${failed:-}" ]
