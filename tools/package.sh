#!/usr/bin/env bash
# package.sh: makes the installer and a plain zip of the same files in build/package. The same commit gives the same bytes:
# every file carries the commit's date, and all lists are sorted.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

"$ROOT/tools/setup.sh"
build win32 VixaVideoFX vixahost languages

version=$(sed -n 's/^project(VixaVideoFX VERSION \([0-9.]*\) .*/\1/p' "$ROOT/CMakeLists.txt")
# Without the history, as in an unpacked archive of the sources, their own date does.
SOURCE_DATE_EPOCH=$(git -C "$ROOT" log -1 --format=%ct 2>/dev/null || stat -c %Y "$ROOT/CMakeLists.txt")
export SOURCE_DATE_EPOCH TZ=UTC LC_ALL=C
[ -z "$(git -C "$ROOT" status --porcelain 2>/dev/null)" ] || say "    (the working tree differs from the commit)"

out="$BUILD/package"
name="VixaVideoFX-$version"
stage="$out/$name"
rm -rf "$out"
mkdir -p "$stage"/{include/vixavideofx,lib,docs,examples}

# The library and its language files stand side by side: that is where the library looks for them.
bin="$BUILD/win32/bin"
for file in VixaVideoFX.dll vixahost.exe; do
    i686-w64-mingw32-strip --strip-all --remove-section=.gnu_debuglink -o "$stage/$file" "$bin/$file"
done
cp "$bin"/VixaVideoFX_*.nls "$stage/"
cp "$ROOT"/include/vixavideofx/*.h "$stage/include/vixavideofx/"
cp "$ROOT"/examples/host.* "$stage/examples/"
i686-w64-mingw32-objcopy --enable-deterministic-archives \
    "$(find "$BUILD/win32/module" -name 'libVixaVideoFX.dll.a')" "$stage/lib/libVixaVideoFX.dll.a"
cp "$ROOT"/README.md "$stage/"
find "$ROOT/docs" -maxdepth 1 -name '*.md' -exec cp {} "$stage/docs/" \;
cp "$BUILD/deps/tinyxml/copyright" "$stage/docs/tinyxml-copyright.txt"
find "$stage" -type f -exec chmod 644 {} + -o -type d -exec chmod 755 {} +
find "$stage" -exec touch --no-dereference --date="@$SOURCE_DATE_EPOCH" {} +

step package-zip "Making $name.zip" \
    sh -c "cd '$out' && find '$name' -type f | sort | zip -X -q -9 -@ '$name.zip'"

# The installer's lists, from the same tree: what goes in, and exactly that out again, the deepest folder first.
lists="$out/files.nsh"
mapfile -t folders < <(cd "$stage" && find . -mindepth 1 -type d | sort)
{
    printf '!macro InstallFiles\n'
    for folder in . "${folders[@]}"; do
        target=$(printf '%s' "${folder#.}" | tr / '\\')
        printf '    SetOutPath "$INSTDIR%s"\n' "$target"
        (cd "$stage" && find "$folder" -maxdepth 1 -type f | sort | sed "s|^\./|    File \"$stage/|; s|\$|\"|")
    done
    printf '!macroend\n!macro DeleteFiles\n'
    (cd "$stage" && find . -type f | sort | sed 's|^\./|    Delete "$INSTDIR\\|; s|$|"|' | tr / '\\')
    printf '!macroend\n!macro DeleteOwnFiles\n'
    # The check sum of gzip's trailer, as the signed number that the script compares.
    (cd "$stage" && find . -type f | sort | while read -r file; do
        printf '    !insertmacro DeleteOwnFile "%s" %s %s\n' "$(printf '%s' "${file#./}" | tr / '\\')" \
            "$(stat -c %s "$file")" "$(gzip -1 -c "$file" | tail -c 8 | od -A n -t d4 -N 4 | tr -d ' ')"
    done)
    printf '!macroend\n!macro RemoveFolders\n'
    (cd "$stage" && find . -mindepth 1 -type d | sort -r | sed 's|^\./|    RMDir "$INSTDIR\\|; s|$|"|' | tr / '\\')
    printf '!macroend\n'
} >"$lists"
step package-installer "Making $name-setup.exe" \
    makensis -V3 "-DVERSION=$version" "-DFILES=$lists" "-DOUT_FILE=$out/$name-setup.exe" \
    "-DSIZE_KB=$(du -sk --apparent-size "$stage" | cut -f1)" "$ROOT/installer/VixaVideoFX.nsi"

(cd "$out" && sha256sum "$name.zip" "$name-setup.exe")
