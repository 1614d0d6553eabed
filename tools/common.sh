# Shared by ./run, ./test and the tools: where things are, how they speak, how a step runs. Sourced, not run.
set -euo pipefail

ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
BUILD="$ROOT/build"
LOGS="$BUILD/logs"

say() { printf '%s\n' "$*"; }
fail() {
    printf '%s\n' "$*" >&2
    exit 1
}
mkdir -p "$LOGS" 2>/dev/null || fail "$(id -un) may not write here, and nothing is built yet: clone the repository for yourself."

# runs32: whether 32-bit programs can run here. Debian's Wine has a loader for each width, and some machines get one only.
runs32() { [ -x /usr/lib/wine/wine ] || [ ! -x /usr/lib/wine/wine64 ]; }

# step NAME WHAT COMMAND...: runs a command with its output in a log, and says in one line when it fails and where to read why.
step() {
    local name=$1 what=$2 log="$LOGS/$1.log"
    shift 2
    say "$what"
    if ! "$@" >"$log" 2>&1; then
        grep -E 'error:|Error|FAILED|Unable|Temporary failure|E:' "$log" | head -n 3 | sed 's/^/    /' >&2 || true
        fail "$what: failed; the whole log is $log"
    fi
}

# configure PRESET: makes or refreshes a build tree; silent when it is there already.
configure() {
    [ -f "$BUILD/$1/build.ninja" ] || step "configure-$1" "Configuring $1" cmake --preset "$1" -S "$ROOT"
}

# alone NAME: waits until nobody else does the same in this checkout, and then keeps others waiting until this shell ends or calls
# it again. Commands that live longer than the shell must be started with 9>&-.
alone() {
    exec 9>>"$BUILD/$1.lock"
    if ! flock -n 9; then
        say "Waiting for process $(tail -n 1 "$BUILD/$1.lock"), which does the same here"
        flock 9
    fi
    printf '%s (%s)\n' $$ "${0##*/}" >"$BUILD/$1.lock"
}

# steps_of PROCESS LOG: while a build lives, says how many of its steps are done: in place on a terminal, else once a minute.
steps_of() {
    local shown= now since=$SECONDS
    while kill -0 "$1" 2>/dev/null; do
        sleep 0.2
        now=$(tail -c 4096 "$2" | grep -oE '^\[[0-9]+/[0-9]+\]' | tail -n 1) || continue
        if [ -t 1 ] && [ "$now" != "$shown" ]; then
            printf '\r    %s ' "$now"
            shown=$now
        elif [ ! -t 1 ] && [ $((SECONDS - since)) -ge 60 ]; then
            say "    $now"
            since=$SECONDS
        fi
    done
    [ -z "$shown" ] || printf '\r\033[K'
}

# compile TREE TARGET...: with its steps counted.
compile() {
    local tree=$1
    shift
    cmake --build "$tree" --target "$@" &
    steps_of $! "$LOGS/build-${tree##*/}.log" >&3
    wait $!
}

# build PRESET TARGET...: builds what changed. Who may not write here uses what stands, unless it is older than its sources.
build() {
    local preset=$1 tree=$BUILD/$1 built
    shift
    built="$tree/.built$(printf -- '-%s' "$@")"
    if [ ! -w "$BUILD" ]; then
        [ -f "$built" ] && [ -z "$(find "$ROOT" -path "$BUILD" -prune -o -name .git -prune -o -type f -newer "$built" -print -quit)" ] ||
            fail "This has to be built first, and $(id -un) may not write here: ask $(stat -c %U "$BUILD") to start ./run, or clone it."
        return
    fi
    alone build
    configure "$preset"
    touch "$built.new"
    step "build-$preset" "Building $preset" compile "$tree" "$@" 3>&1
    mv "$built.new" "$built"
    exec 9>&-
}
