#!/usr/bin/env bash
# package.sh [--verify]: makes the installer, a plain zip of the same files, a zip for programs that use the library, and their bill
# of materials, in build/package. The same commit gives the same bytes: every file carries the commit's date, and all lists are
# sorted. --verify makes them once more, from nothing, of a copy of the sources in another folder, at another time, by another
# user when root starts it, and compares everything, debug files included. (Compiler caches that rewrite paths get in its way.)
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

"$ROOT/tools/setup.sh"
for width in 32 64; do
    build win$width VixaVideoFX vixahost languages
done

version=$(sed -n 's/^project(VixaVideoFX VERSION \([0-9.]*\) .*/\1/p' "$ROOT/CMakeLists.txt")
# Without the history, as in an unpacked archive of the sources, their own date does.
: "${SOURCE_DATE_EPOCH:=$(git -C "$ROOT" log -1 --format=%ct 2>/dev/null || stat -c %Y "$ROOT/CMakeLists.txt")}"
export SOURCE_DATE_EPOCH TZ=UTC LC_ALL=C
[ -z "$(git -C "$ROOT" status --porcelain 2>/dev/null)" ] || say "    (the working tree differs from the commit)"

out="$BUILD/package"
name="VixaVideoFX-$version-x86-x64" sdk_name="VixaVideoFX-$version-sdk"
stage="$out/$name" sdk="$out/$sdk_name"
rm -rf "$out"
mkdir -p "$stage"/{x86,x64,docs,notices} "$sdk"/{include/vixavideofx,cmake,docs,examples}

# of_package FILE TARGET: a text of the packages' own.
of_package() { sed "s/@VERSION@/$version/g" "$ROOT/installer/$1" >"$2"; }

# A library and its language files stand side by side: that is where the library looks for them.
for folder in x86:32:i686 x64:64:x86_64; do
    IFS=: read -r folder width machine <<<"$folder"
    bin="$BUILD/win$width/bin"
    for file in VixaVideoFX.dll vixahost.exe; do
        $machine-w64-mingw32-strip --preserve-dates --strip-all --remove-section=.gnu_debuglink -o "$stage/$folder/$file" "$bin/$file"
    done
    cp "$bin"/VixaVideoFX_*.nls "$stage/$folder/"
done
# The two manifests differ in the processor only, and 64-bit programs run everywhere.
manifest=VixaVideoFX.Effects.manifest
step package-manifest "Asking the library for its manifest" \
    sh -c "'$ROOT/tools/wine-run.sh' '$BUILD/win64/bin/vixahost.exe' manifest >'$stage/x64/$manifest'"
sed 's/"amd64"/"x86"/' "$stage/x64/$manifest" >"$stage/x86/$manifest"

of_package README.md "$stage/README.md"
cp "$ROOT"/docs/{hosting,installation,stack-files,troubleshooting,validator}.md "$ROOT/CHANGELOG.md" "$stage/docs/"
cp -r "$ROOT"/docs/{effects,performance.md,performance.svg} "$stage/docs/" # F1 in the window opens a page
of_package sdk/README.md "$sdk/README.md"
cmake "-DVERSION=$version" "-DFILE=$sdk/cmake/VixaVideoFXConfigVersion.cmake" -P "$ROOT/installer/sdk/version.cmake"
cp "$ROOT/installer/sdk/VixaVideoFXConfig.cmake" "$sdk/cmake/"
cp "$ROOT"/include/vixavideofx/*.h "$sdk/include/vixavideofx/"
cp "$ROOT"/examples/host.* "$sdk/examples/"
cp "$ROOT/module/VixaVideoFX.def" "$sdk/"
cp "$ROOT/docs/hosting.md" "$ROOT/CHANGELOG.md" "$sdk/docs/"
# Everything that is linked statically, by the texts of the packages that it came from; the table of THIRD-PARTY.md says which.
cp "$ROOT/THIRD-PARTY.md" "$stage/notices/README.md"
(
    cd "$ROOT"
    sed -n 's/^|.*| `\(notices[^`]*\)` | `\([^`]*\)` |$/\1 \2/p' THIRD-PARTY.md | while read -r notice text; do
        cp "$text" "$stage/$notice" || exit 1
    done
)
find "$stage" "$sdk" -type f -exec chmod 644 {} + -o -type d -exec chmod 755 {} +
find "$stage" "$sdk" -exec touch --no-dereference --date="@$SOURCE_DATE_EPOCH" {} +

for zip in "$name" "$sdk_name"; do
    step "package-zip-$zip" "Making $zip.zip" \
        sh -c "cd '$out' && find '$zip' -type f | sort | zip -X -q -9 -@ '$zip.zip'"
done

# The installer's lists, from the same tree: what goes in (x64 on 64-bit systems only), and exactly that out again, the
# deepest folder first.
lists="$out/files.nsh"
mapfile -t folders < <(cd "$stage" && find . -mindepth 1 -type d | sort)
{
    printf '!macro InstallFiles\n'
    for folder in . "${folders[@]}"; do
        [ "$folder" != ./x64 ] || printf '    ${If} ${RunningX64}\n'
        target=$(printf '%s' "${folder#.}" | tr / '\\')
        printf '    SetOutPath "$INSTDIR%s"\n' "$target"
        (cd "$stage" && find "$folder" -maxdepth 1 -type f | sort | sed "s|^\./|    File \"$stage/|; s|\$|\"|")
        [ "$folder" != ./x64 ] || printf '    ${EndIf}\n'
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

bill="VixaVideoFX-$version.spdx.json"
step package-bill "Making $bill" sh -c "'$ROOT/tools/bill.sh' >'$out/$bill'"

(cd "$out" && sha256sum "$bill" "$name.zip" "$sdk_name.zip" "$name-setup.exe" | tee SHA256SUMS)

[ "${1:-}" = --verify ] || exit 0
other=$(mktemp -d)
trap 'rm -rf "$other"' EXIT
copy="$other/the same once more"
mkdir -p "$copy/build"
(cd "$ROOT" && git ls-files -z --cached --others --exclude-standard | xargs -0 cp --parents -t "$copy")
cp -r "$BUILD/deps" "$copy/build/"
find "$copy" -type f -exec touch --date=2001-02-03 {} +
as=(env HOME="$other" XDG_CACHE_HOME="$other" TZ=Asia/Tokyo SOURCE_DATE_EPOCH="$SOURCE_DATE_EPOCH")
if [ "$(id -u)" = 0 ]; then
    chown -R nobody "$other"
    as=(setpriv --reuid=nobody --regid=nogroup --clear-groups "${as[@]}")
fi
step package-verify "Making them once more" "${as[@]}" bash -c 'umask 027; exec "$0"' "$copy/tools/package.sh"
differing=0
while read -r file; do
    cmp "$BUILD/$file" "$copy/build/$file" || differing=$((differing + 1))
done < <(cd "$BUILD" && ls package/SHA256SUMS package/*.{zip,exe,json} win{32,64}/bin/{VixaVideoFX.dll,VixaVideoFX.dll.debug,vixahost.exe})
[ $differing -eq 0 ] || fail "$differing files are others when they are made again."
say "Made twice, the packages and both widths' programs with their debug information are the same."
