#!/usr/bin/env bash
# bill.sh: writes the bill of materials of the packages in build/package to standard output, in SPDX 2.3: every file of the main
# package with its check sums, and what was linked into library and host. That is read from the linker's maps, and of code that
# is headers only from the compiler's list of what it read; Debian's package manager says where each came from. Started by
# tools/package.sh, which sets SOURCE_DATE_EPOCH. What has no notice in THIRD-PARTY.md makes it fail.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
export LC_ALL=C TZ=UTC

cd "$BUILD/package"
stage=$(basename "$(find . -maxdepth 1 -type d -name '*-x86-x64')")
version=${stage#VixaVideoFX-} version=${version%-x86-x64}

# id TEXT: as an identifier of the document.
id() { printf 'SPDXRef-%s' "$(printf '%s' "$1" | tr -c 'A-Za-z0-9.-' '-')"; }
sum() { "sha$1sum" "$2" | cut -d' ' -f1; }
sums() { printf '[{"algorithm": "SHA1", "checksumValue": "%s"}, {"algorithm": "SHA256", "checksumValue": "%s"}]' "$(sum 1 "$1")" "$(sum 256 "$1")"; }

# linked WIDTH FILE: "SOURCE VERSION" of every Debian source package of which something is in a program.
linked() {
    local tree="$BUILD/win$1" library
    {
        # The archives of which a member was taken, and the objects with which every program begins and ends.
        sed -n -e '/^Discarded input sections/q' -e 's/^\([^ (]*\.a\)(.*/\1/p' "$tree/bin/$2.map"
        sed -n 's/^LOAD \(\/usr\/.*\.o\)$/\1/p' "$tree/bin/$2.map"
        # The compiler names a header by the link's path or by the shorter one that the link leads to.
        [ "$2" != vixahost.exe ] || ninja -C "$tree" -t deps |
            awk '/^[^ ]/ { mine = /^host\// } mine && /^ .*host-headers\/|^ +\/usr\/include\// { sub(/^ +/, ""); print }'
    } | sort -u | while read -r library; do
        case $library in
            */libtinyxml.a) printf 'tinyxml %s\n' "$(cat "$BUILD/deps/tinyxml/.ready")" ;;
            /* | *host-headers/*) (cd "$tree" && realpath "$library") ;;
            *) ;; # the project's own
        esac
    done | sort -u | while read -r library rest; do
        case $library in
            /*) dpkg -S "$library" | sed 's/: .*//' ;;
            *) printf '=%s %s\n' "$library" "$rest" ;;
        esac
    done | sort -u | while read -r library rest; do
        case $library in
            =*) printf '%s %s\n' "${library#=}" "$rest" ;;
            *) dpkg-query -W -f '${source:Package} ${source:Version}\n' "$library" ;;
        esac
    done | sort -u
}

# notices: "SOURCE LICENCE" of what THIRD-PARTY.md names.
notices() {
    local licence text package
    sed -n 's/^|[^|]*|[^|]*| *\([^|]*[^ |]\) *| `notices[^`]*` | `\([^`]*\)` |$/\2|\1/p' "$ROOT/THIRD-PARTY.md" |
        while IFS='|' read -r text licence; do
            package=tinyxml
            [ "${text#/usr/share/doc/}" = "$text" ] || package=$(dpkg-query -W -f '${source:Package}' "$(basename "$(dirname "$text")")")
            printf '%s %s\n' "$package" "$licence"
        done
}

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
notices >"$work/notices"
for folder in x86:32 x64:64; do
    for file in VixaVideoFX.dll vixahost.exe; do
        linked "${folder#*:}" $file >"$work/linked"
        [ -s "$work/linked" ] || fail "Nothing is said to be linked into $file."
        cat "$work/linked" >>"$work/components"
        sed "s|^|$(id "$stage/${folder%:*}/$file") |" "$work/linked" >>"$work/uses"
    done
done
sort -u -o "$work/components" "$work/components"

find "$stage" -type f | sort >"$work/files"
while read -r file; do
    printf '    {"SPDXID": "%s", "fileName": "./%s", "checksums": %s, "copyrightText": "NOASSERTION", "licenseConcluded": "NOASSERTION"},\n' \
        "$(id "$file")" "${file#"$stage"/}" "$(sums "$file")"
done <"$work/files" | sed '$ s/,$//' >"$work/files.json"
# (so the standard defines it: over the check sums of all files, in their order)
verification=$(while read -r file; do sum 1 "$file"; done <"$work/files" | sort | tr -d '\n' | sha1sum | cut -d' ' -f1)
{
    for file in "$stage.zip" "VixaVideoFX-$version-sdk.zip" "$stage-setup.exe"; do
        scanned='"filesAnalyzed": false'
        [ "$file" != "$stage.zip" ] || scanned="\"filesAnalyzed\": true, \"packageVerificationCode\": {\"packageVerificationCodeValue\": \"$verification\"}"
        printf '    {"SPDXID": "%s", "name": "%s", "versionInfo": "%s", "packageFileName": "%s", "downloadLocation": "NOASSERTION", %s, "checksums": %s},\n' \
            "$(id "$file")" "${file%.*}" "$version" "$file" "$scanned" "$(sums "$file")"
    done
    while read -r source release; do
        licence=$(sed -n "s/^$source //p" "$work/notices" | head -n 1)
        [ -n "$licence" ] || fail "THIRD-PARTY.md has no notice for $source, which is linked."
        printf '    {"SPDXID": "%s", "name": "%s", "versionInfo": "%s", "supplier": "Organization: Debian", "downloadLocation": "NOASSERTION", "filesAnalyzed": false, "licenseDeclared": "NOASSERTION", "licenseComments": "%s"},\n' \
            "$(id "$source")" "$source" "$release" "$licence"
    done <"$work/components"
} | sed '$ s/,$//' >"$work/packages.json"
relation() { printf '    {"spdxElementId": "%s", "relationshipType": "%s", "relatedSpdxElement": "%s"},\n' "$@"; }
{
    for file in "$stage.zip" "VixaVideoFX-$version-sdk.zip" "$stage-setup.exe"; do
        relation SPDXRef-DOCUMENT DESCRIBES "$(id "$file")"
    done
    while read -r file; do relation "$(id "$stage.zip")" CONTAINS "$(id "$file")"; done <"$work/files"
    while read -r file source _; do relation "$file" STATIC_LINK "$(id "$source")"; done <"$work/uses"
} | sed '$ s/,$//' >"$work/relations.json"

cat <<END
{
  "spdxVersion": "SPDX-2.3",
  "dataLicense": "CC0-1.0",
  "SPDXID": "SPDXRef-DOCUMENT",
  "name": "$stage",
  "documentNamespace": "urn:sha256:$(sum 256 "$stage.zip")",
  "creationInfo": {"created": "$(date -u -d "@$SOURCE_DATE_EPOCH" +%Y-%m-%dT%H:%M:%SZ)", "creators": ["Tool: tools/bill.sh"]},
  "packages": [
$(cat "$work/packages.json")
  ],
  "files": [
$(cat "$work/files.json")
  ],
  "relationships": [
$(cat "$work/relations.json")
  ]
}
END
