# Shared by ./run, ./test and the tools: where things are, how they speak, how a step runs. Sourced, not run.
set -euo pipefail

ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
BUILD="$ROOT/build"
LOGS="$BUILD/logs"
mkdir -p "$LOGS"

say() { printf '%s\n' "$*"; }
fail() {
    printf '%s\n' "$*" >&2
    exit 1
}

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

# build PRESET TARGET...: builds what changed.
build() {
    local preset=$1
    shift
    configure "$preset"
    step "build-$preset" "Building $preset" cmake --build "$BUILD/$preset" --target "$@"
}
