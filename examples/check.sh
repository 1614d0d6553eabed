#!/usr/bin/env bash
# check.sh LIBRARY HOST [ARGUMENT...]: runs an example on Wine with the library and holds its words and its exit status to what
# they must be; then with a library that isn't there. HOST may be host.go, which is built first, for the library's width.
. "$(dirname "${BASH_SOURCE[0]}")/../tools/common.sh"

library=$1
shift
if [[ $1 == *.go ]]; then
    command -v go >/dev/null || fail "$1 needs Go, which is not here: tools/setup.sh hosts installs it"
    . "$ROOT/tools/wine-arch.sh" "$library"
    [ "$VIXA_WINEARCH" = win64 ] && machine=amd64 || machine=386
    program="${library%/*}/example_host_go.exe"
    # Nothing but the compiler and its own library: no modules, no network, no C compiler.
    env GOOS=windows GOARCH=$machine CGO_ENABLED=0 GO111MODULE=off GOPROXY=off GOFLAGS= GOCACHE="$BUILD/go-cache" \
        go build -o "$program" "$1"
    shift
    set -- "$program" "$@"
fi

# Into files, as not every foreign program can write to a pipe on Wine.
words=$(mktemp) complaints=$(mktemp)
trap 'rm -f "$words" "$complaints"' EXIT
status=0
"$ROOT/tools/wine-run.sh" "$@" "$library" >"$words" 2>"$complaints" </dev/null || status=$?
diff <(tr -d '\r' <"$words") - <<'END' || fail "It said something else (status $status): $(cat "$complaints")"
The effect is called Gammakorrektur
It starts with 4 bytes: 100
404040 becomes 6B6B6B
Its panel is a child of the host's window: yes
The library can be unloaded: yes
END
[ $status -eq 0 ] || fail "Its exit status is $status: $(cat "$complaints")"

status=0
"$ROOT/tools/wine-run.sh" "$@" "$library.missing" >"$words" 2>"$complaints" </dev/null || status=$?
grep -q '^host: the library cannot be loaded' "$complaints" && [ $status -ne 0 ] ||
    fail "Without a library it ends with $status and says: $(cat "$complaints")"
