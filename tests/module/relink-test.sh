#!/usr/bin/env bash
# relink-test.sh TREE: whether the library is the same wherever and whenever it is built, its debug file included: neither names the
# folder of the sources, and linked once more, at another time and into another folder, both come out byte for byte.
# (tools/package.sh --verify compares whole builds.)
. "$(dirname "${BASH_SOURCE[0]}")/../../tools/common.sh"
cd "$1"

! grep -alF -e "$ROOT" bin/VixaVideoFX.dll bin/VixaVideoFX.dll.debug || fail "That names the folder of the sources."
rm -rf relinked
mkdir relinked
ninja -t commands bin/VixaVideoFX.dll | tail -n 1 |
    sed -e 's|bin/VixaVideoFX|relinked/VixaVideoFX|g' -e 's|-Wl,--out-implib,[^ ]*||' | sh -e
for file in VixaVideoFX.dll VixaVideoFX.dll.debug; do
    cmp "bin/$file" "relinked/$file" || fail "$file is another one when it is linked again."
done
rm -r relinked
