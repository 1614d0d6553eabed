#!/usr/bin/env bash
# javascript.sh: runs the example in JavaScript on Wine, in a 32-bit node.exe, against the 32-bit library. What it needs comes once
# through npm (31 MB), is held to its check sums, and stays in build/deps/javascript.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

packages="$BUILD/deps/javascript"
mkdir -p "$packages"

# package NAME VERSION FOLDER SHA512: has it unpacked below node_modules.
package() {
    local name=$1 version=$2 folder="$packages/node_modules/$3" sum=$4 file
    [ ! -f "$folder/.complete" ] || [ "$(cat "$folder/.complete")" != "$sum" ] || return 0
    command -v npm >/dev/null ||
        fail "The example in JavaScript needs $name $version, which npm fetches, and npm is not here (Debian's package npm has it)."
    say "Fetching $name $version"
    file=$(cd "$packages" && npm pack --silent "$name@$version" 2>"$LOGS/npm.log") ||
        fail "$name $version could not be fetched; see $LOGS/npm.log"
    printf '%s  %s\n' "$sum" "$packages/$file" | sha512sum --check --quiet - ||
        fail "$packages/$file is not what it should be: its check sum differs"
    rm -rf "$folder"
    mkdir -p "$folder"
    tar -xzf "$packages/$file" --strip-components=1 -C "$folder"
    rm "$packages/$file"
    printf '%s\n' "$sum" >"$folder/.complete"
}
package node-win-x86 22.23.2 node-win-x86 \
    2822050a2e6ba744a5c782280fd7e52b29e101fbc6365a1eabfb25971fffa86b8a674f5a4afaec7de8d1f2944f712e0e6eff6631c545029619c4121d82d70bc4
package koffi 3.3.4 koffi \
    df556bf8b33ec35744b0d70e26d256bd8c944e355cfd258ec4d0d92717e1b010baa99e58567f7c9f9c75a016c3ab9b24c426d60f8481c89a4d9aaeb77ef83d03
package @koromix/koffi-win32-ia32 3.3.4 @koromix/koffi-win32-ia32 \
    cf4b98de6a970135355fb832909c9d738a6a7b1b20fbe6accba5ee17077995cec181d31e80c0a6eb404eb5cef7128373fec8265776d7e5b11a35532d23fbb934

runs32 || fail "32-bit programs don't run here (wine32:i386 is not installed), so the example in JavaScript can't."
build win32 VixaVideoFX languages
export VIXA_WINEPREFIX="$BUILD/wine-javascript" VIXA_WINEARCH=win32
"$ROOT/tools/wine-run.sh" winecfg /v win10 # which this node.exe asks for
export NODE_PATH="Z:${packages//\//\\}\\node_modules"
say "Running examples/host.js"
"$ROOT/examples/check.sh" "$BUILD/win32/bin/VixaVideoFX.dll" "$packages/node_modules/node-win-x86/bin/node.exe" \
    "Z:${ROOT//\//\\}\\examples\\host.js"
say "The example in JavaScript did what it should."
