#!/usr/bin/env bash
# Puts TinyXML's sources into build/deps/tinyxml: Debian's source package with the package's own patches, which hold its
# security fixes. The machine's own package sources are read, never changed; nothing is fetched the second time.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

target="$BUILD/deps/tinyxml"
[ ! -f "$target/.ready" ] || exit 0
mkdir -p "$BUILD/deps"
exec 9>"$BUILD/deps/.tinyxml.lock"
flock 9
[ ! -f "$target/.ready" ] || exit 0
command -v apt-get dpkg-source >/dev/null ||
    fail "TinyXML comes from Debian's source package, which takes apt-get and dpkg-source: run tools/setup.sh first."

work="$BUILD/deps/fetch"
codename=$(. /etc/os-release && printf '%s' "$VERSION_CODENAME")

# mirrors: "URI SUITE" of every main archive of this release, as apt understands the machine's lists, whatever their syntax.
# Archives that say they are Debian's come first; before the first update no archive says so.
mirrors() {
    apt-get indextargets --format '$(ORIGIN)|$(REPO_URI)|$(RELEASE)|$(COMPONENT)' 'Created-By: Packages' |
        awk -F'|' -v name="$codename" '
            $4 == "main" && ($3 == name || $3 == name "-security" || $3 == "stable" || $3 == "oldstable") {
                print ($1 == "Debian" ? 0 : 1), $2, $3 }' |
        sort -u | cut -d' ' -f2-
}

# fetch: one private source list and one private list folder; the newest version of the release's suites wins.
fetch() {
    local options=(-o "Dir::Etc::SourceList=$work/sources.list" -o Dir::Etc::SourceParts=-
        -o "Dir::State::Lists=$work/lists" -o "Dir::Cache=$work/cache" -o APT::Sandbox::User=
        -o Acquire::Languages=none -o Acquire::Retries=2)
    apt-get "${options[@]}" update
    (cd "$work" && apt-get "${options[@]}" source --download-only tinyxml)
    dpkg-source --extract "$work"/tinyxml_*.dsc "$work/tinyxml"
}

rm -rf "$work"
mkdir -p "$work/lists/partial" "$work/cache/archives/partial"
keyring=/usr/share/keyrings/debian-archive-keyring.gpg
options=
[ ! -f "$keyring" ] || options="[signed-by=$keyring] "
mirrors | awk -v options="$options" '{ print "deb-src " options $1 " " $2 " main" }' >"$work/sources.list"
[ -s "$work/sources.list" ] ||
    fail "No Debian mirror of $codename is configured on this machine (apt-get indextargets), so TinyXML cannot be had."
step fetch-tinyxml "Fetching TinyXML's source package" fetch

rm -rf "$target"
mkdir -p "$target"
cp "$work"/tinyxml/tiny{str,xml,xmlerror,xmlparser}.cpp "$work"/tinyxml/tiny{str,xml}.h "$target/"
cp "$work/tinyxml/debian/copyright" "$target/"
dpkg-parsechangelog -l "$work/tinyxml/debian/changelog" -S Version >"$target/.ready"
rm -rf "$work"
