#!/usr/bin/env bash
# sharing-test.sh: how one checkout is shared. Who builds keeps others waiting, who are told whom for; and who may not write
# here uses what stands, unless it is older than its sources. In a checkout that holds nothing but the functions for it.
set -euo pipefail
tools=$(cd "$(dirname "${BASH_SOURCE[0]}")/../../tools" && pwd)
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
fault() {
    printf 'sharing-test: %s\n' "$*" >&2
    exit 1
}
mkdir -p "$folder/tools" "$folder/build/logs" "$folder/build/some"
cp "$tools/common.sh" "$folder/tools"
chmod -R a+rX "$folder"
functions=". '$folder/tools/common.sh'"

bash -c "$functions; alone build; echo got; sleep 1; echo one >>'$folder/order'" >"$folder/first" &
first=$!
until grep -qs got "$folder/first"; do sleep 0.05; done
said=$(bash -c "$functions; alone build; echo other >>'$folder/order'")
wait $first
[[ $said == "Waiting for process $first "* ]] || fault "who waits is told: $said"
[ "$(tr '\n' ' ' <"$folder/order")" = "one other " ] || fault "the order was: $(cat "$folder/order")"

# To root every folder is open; so this is somebody else.
somebody=()
[ "$(id -u)" != 0 ] || somebody=(setpriv --reuid=nobody --clear-groups)
chmod a-w "$folder/build"
chmod a+rx "$folder"
use() { "${somebody[@]}" bash -c "$functions; build some goal" 2>&1; }
! use >"$folder/said" || fault "nothing is built, and yet that is used"
grep -q 'has to be built first' "$folder/said" || fault "nothing is built: $(cat "$folder/said")"
rm "$folder"/{said,first,order}
touch "$folder/build/some/.built-goal"
said=$(use) && [ -z "$said" ] || fault "what stands isn't used: $said"
touch -d '+1 minute' "$folder/source"
! said=$(use) || fault "what is older than its sources is used"
