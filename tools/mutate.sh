#!/usr/bin/env bash
# mutate.sh ROOM [COUNT [SEED]]: plants COUNT faults by rule (60; 0: all), one at a time, in the sources of a room and says which
# of them the room's tests notice. ROOM is a folder: effects/kernels, bitmap, sxs and localisation are tested natively, the
# others on Wine, and what is of the library itself by the validator too. Works in a copy of the tree, build/mutation;
# build/mutation/ROOM.txt lists every fault: killed by which test, alive, or refused by the compiler (which counts as neither).
# The same COUNT and SEED (1) give the same faults. VIXA_WITH is a command that runs the builds and tests, `nice` unless said
# otherwise.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

[ $# -ge 1 ] || fail "Which room? tools/mutate.sh effects/kernels 60"
room=${1%/} count=${2:-60} seed=${3:-1}
read -ra with <<<"${VIXA_WITH:-nice}"
[ -d "$ROOT/$room" ] || fail "There is no room $room."
"$ROOT/tools/setup.sh"

# The build tree, and the tests, which are its targets too. What they need not run is in GTEST_FILTER.
preset=win32 tests="test_${room##*/}"
case $room in
    effects/kernels | bitmap | sxs) preset=native ;;
    localisation) preset=native tests=test_localisation_core ;;
    host/media)
        tests='test_media test_host'
        export GTEST_FILTER='AviOutput.*:RawFrames.*:YuvPixels.*:ClipFile.*:PictureFile.*'
        ;;
    host/*) tests=test_host ;;
    ui | dialogs) tests='test_ui test_dialogs' ;;
    localisation/*) tests=test_localisation ;;
    framework | filter | effects | parameters | catalogue | registration | module)
        [ "$room" != registration ] || tests+=' test_registry test_registered'
        tests+=' test_validator'
        export GTEST_FILTER='-Report.*:Validator.EachCheck*:Validator.OneFault*:Validator.Files*'
        ;;
esac

copy="$BUILD/mutation/$preset" report="$BUILD/mutation/${room//\//-}.txt"
mkdir -p "$copy/build"
ln -sfn "$BUILD/deps" "$copy/build/deps"
cd "$ROOT"
git ls-files -z --cached --others --exclude-standard | xargs -0 cp -u --parents -t "$copy" 2>/dev/null || true # without what was deleted
git ls-files -z -- "$room" | xargs -0 cp --parents -t "$copy" # also what the last run left broken
tree="$copy/build/$preset"
# Natively without the sanitizers: the tests guard their memory by inaccessible pages, and are ten times as fast. Optimised as
# the product is (with -O3, which Release would be, GCC 12 takes a copy of four bytes for one of seven, and warns).
[ $preset = win32 ] || set -- -DVIXA_SANITIZE=OFF -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_FLAGS_RELEASE=-O2
[ $preset != win32 ] || set --
step mutate-configure "Preparing $room" cmake --preset $preset -S "$copy" -B "$tree" "$@"
read -ra targets <<<"$tests"
step mutate-build "Building ${targets[*]}" "${with[@]}" cmake --build "$tree" --target "${targets[@]}"
step mutate-tool "Building the tool that finds faults to plant" \
    g++ -std=c++20 -O1 -o "$BUILD/mutation/mutants" "$ROOT/tools/mutate/main.cpp"

# run_tests SECONDS: the name of the first test that fails, on standard output.
run_tests() {
    local name
    for name in "${targets[@]}"; do
        "${with[@]}" timeout --kill-after=5 "$1" ctest --test-dir "$tree" -R "^$name$" --no-tests=error >"$LOGS/mutate-test.log" 2>&1 || {
            printf '%s' "$name"
            return
        }
    done
}
unnoticed=$(run_tests 600)
[ -z "$unnoticed" ] || fail "$unnoticed fails before any fault is planted; see $LOGS/mutate-test.log"
# Three times as long as the slowest test takes, and some seconds, is a fault that has no end.
limit=$(sed -n 's/.* Passed *\([0-9]*\)\..*/\1/p' "$tree"/Testing/Temporary/LastTest.log "$LOGS/mutate-test.log" | sort -n | tail -n 1)
limit=$((3 * ${limit:-30} + 20))

# What this tree compiles of the room, and what those sources include of it.
mapfile -t sources < <({
    sed -n "s|^ *\"file\": \"$copy/\($room/[^\"]*\.cpp\)\".*|\1|p" "$tree/compile_commands.json"
    cd "$copy" && find "$room" -maxdepth 1 -name '*.inl'
} | sort -u)
[ ${#sources[@]} -gt 0 ] || fail "Nothing of $room is compiled in the tree $preset."
(cd "$copy" && "$BUILD/mutation/mutants" "$seed" "$count" "${sources[@]}") >"$BUILD/mutation/list"

killed=0 alive=0 refused=0
: >"$report"
say "Planting $(wc -l <"$BUILD/mutation/list") faults in ${#sources[@]} files of $room"
while IFS=$'\t' read -u 3 -r file line at length instead rule; do
    was=$(tail -c +$((at + 1)) "$ROOT/$file" | head -c "$length" | tr '\n' ' ' | tr -s ' ' || true) # the first of them may be cut off
    {
        head -c "$at" "$ROOT/$file"
        printf '%s' "$instead"
        tail -c +$((at + length + 1)) "$ROOT/$file"
    } >"$copy/$file"
    if ! "${with[@]}" timeout 600 cmake --build "$tree" --target "${targets[@]}" >"$LOGS/mutate-build.log" 2>&1; then
        result=refused refused=$((refused + 1))
    else
        by=$(run_tests $limit)
        if [ -n "$by" ]; then
            result="killed by $by" killed=$((killed + 1))
        else
            result=alive alive=$((alive + 1))
        fi
    fi
    printf '%-9s %s:%s  %s  ->  %s  (%s)\n' "$result" "$file" "$line" "$was" "$instead" "$rule" >>"$report"
    cp "$ROOT/$file" "$copy/$file"
done 3<"$BUILD/mutation/list"
grep '^alive' "$report" || true
say "$room: $killed killed, $alive alive, $refused refused by the compiler: \
$((killed + alive ? 100 * killed / (killed + alive) : 0)) % of the faults that can be built; $report"
