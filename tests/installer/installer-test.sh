#!/usr/bin/env bash
# Installs, uses, upgrades and uninstalls silently in a fresh Wine prefix, and compares its registry and files with what they
# were before: nothing may differ but the host's category keys, which stay behind empty, and what Wine itself writes at every
# start. On the way, what fails must change nothing, and no file of the user's may be lost. Then, shorter, the same on a
# 32-bit system. Takes the installer of tools/package.sh; leaves the states and their differences in build/package/check.
. "$(dirname "${BASH_SOURCE[0]}")/../../tools/common.sh"

if [ -z "${VIXA_WINEPREFIX:-}" ]; then
    runs32 || fail "The installer is a 32-bit program, and these don't run here: it was not tested."
    VIXA_WINEARCH=win64 "$ROOT/tools/wine-fresh.sh" --host "${BASH_SOURCE[0]}"
    VIXA_WINEARCH=win32 exec "$ROOT/tools/wine-fresh.sh" --host "${BASH_SOURCE[0]}"
fi

prefix=$VIXA_WINEPREFIX
installer=$(ls "$BUILD"/package/VixaVideoFX-*-setup.exe)
stage=${installer%-setup.exe}
programs='Program Files (x86)'
[ "$VIXA_WINEARCH" = win64 ] || programs='Program Files'
installed="$prefix/drive_c/$programs/VixaVideoFX"
check="$BUILD/package/check/$VIXA_WINEARCH"
rm -rf "$check"
mkdir -p "$check"
wine() { timeout 120 "$ROOT/tools/wine-run.sh" "$@" </dev/null; }

# settle: until every program of the prefix has ended, the uninstaller's copy of itself too, and the registry is on the disk.
settle() { WINEPREFIX="$prefix" timeout 120 wineserver -w; }

# state NAME: every key and value, without the times of keys, and every file with its size. The data that Wine writes anew
# at each start are left out.
state() {
    settle
    for hive in system user userdef; do
        awk -v hive="$hive" '
            /^#time=/ { next }
            /^\[/ { sub(/\] [0-9]+$/, "]"); key = $0 }
            /^"DriverDate(Data)?"=/ || /^@="(Display adapters|Monitors)"$/ { next }
            /^$/ { next }
            { print hive ".reg", ($0 == key ? key : key " " $0) }' "$prefix/$hive.reg"
    done | sort >"$check/$1.registry"
    (cd "$prefix" && find . \( -name '*.reg' -o -name '.lock' \) -prune -o -printf '%y %s %p\n' |
        sed 's/^d [0-9]* /d /' | sort -k3) >"$check/$1.files"
}

# expect WHAT WANTED FOUND
expect() {
    [ "$2" = "$3" ] || fail "$1: expected $2, found $3"
    say "    $1: $3"
}

code() {
    local status=0
    "$@" >>"$check/output.log" 2>&1 || status=$?
    printf '%s' "$status"
}

# differences NAME [EARLIER]: what a state has or lacks that an earlier one, the first if none is named, had or lacked not.
differences() {
    diff "$check/${2:-before}.files" "$check/$1.files" | grep '^[<>]' || true
    diff "$check/${2:-before}.registry" "$check/$1.registry" | grep '^[<>]' || true
}

# unpacked: how the installed files differ from the packed ones.
unpacked() {
    [ -d "$installed" ] || say "there is no $installed"
    diff -r "$stage" "$installed" 2>&1 | sed "s|$installed|.|" | grep -v '^Only in .: Uninstall.exe$' || true
}

# registered NAME: how many effects a state has in the host's lists.
registered() { grep -c 'Editor\\\\Effects\] "{' "$check/$1.registry"; }

# What a removal may leave: the categories are the hosts', in each view of the registry.
other_categories='
> system.reg [Software\\Wow6432Node\\Vixa\\Vixa 12\\Editor\\Effects7]
> system.reg [Software\\Wow6432Node\\Vixa\\Vixa 12\\Editor\\Effects]'
categories='> system.reg [Software\\Vixa\\Vixa 12\\Editor\\Effects7]
> system.reg [Software\\Vixa\\Vixa 12\\Editor\\Effects]'
[ "$VIXA_WINEARCH" = win32 ] || categories=$categories$other_categories

if [ "$VIXA_WINEARCH" = win32 ]; then
    say "Installing and uninstalling on a 32-bit system"
    wine wineboot --restart
    state before
    expect "exit code, installation" 0 "$(code wine "$installer" /S)"
    state installed
    expect "effects registered" 13 "$(registered installed)"
    expect "files not as packed" "Only in $stage: x64" "$(unpacked)"
    expect "exit code, uninstallation" 0 "$(code wine "$installed/Uninstall.exe" /S)"
    settle
    wine wineboot --restart
    state after
    expect "differences after uninstallation" "$categories" "$(differences after)"
    exit
fi

say "Installing, using and uninstalling in a fresh prefix"
# An uninstaller's copy of itself goes with a restart; what else that changes is so in both states.
wine wineboot --restart
state before

expect "exit code without administrator rights" $((740 % 256)) \
    "$(code wine "$BUILD/win64/bin/RunWithoutRights.exe" "$installer" /S)"
state refused
expect "differences after that" "" "$(differences refused)"

# A version whose second library cannot be registered.
sed "s|File \"$stage/x64/VixaVideoFX.dll\"|File \"/oname=VixaVideoFX.dll\" \"$stage/README.md\"|" "$BUILD/package/files.nsh" \
    >"$check/broken.nsh"
makensis -V1 -DVERSION=9.9.9 "-DFILES=$check/broken.nsh" "-DOUT_FILE=$check/broken-setup.exe" -DSIZE_KB=1 \
    "$ROOT/installer/VixaVideoFX.nsi"
expect "exit code, failing installation" 2 "$(code wine "$check/broken-setup.exe" /S)"
state failed
expect "differences after that" "${other_categories:1}" "$(differences failed)"

# Nobody's folder becomes ours because it was chosen.
mine="$prefix/drive_c/Mine"
mkdir -p "$mine/docs"
printf 'mine\n' | tee "$mine/README.md" >"$mine/docs/notes.md"
state chosen
expect "exit code, folder with files of somebody else" 6 "$(code wine "$installer" /S '/D=C:\Mine')"
state foreign
expect "differences after that" "" "$(differences foreign chosen)"
rm -r "$mine"

for round in first repeated; do
    expect "exit code, $round installation" 0 "$(code wine "$installer" /S)"
    settle
    expect "files not as packed, $round installation" "" "$(unpacked)"
done
state installed
expect "effects registered" 26 "$(registered installed)"
expect "exit code, checking the 64-bit library in the installed folder" 0 \
    "$(cd "$installed" && code wine x64/vixahost.exe validate --only loading)"
expect "exit code, checking the 32-bit one, by way of the other host" 0 \
    "$(cd "$installed" && code wine x64/vixahost.exe validate 'x86\VixaVideoFX.dll')"
expect "the 32-bit manifest, and what the library says" "" \
    "$(diff "$installed/x86/VixaVideoFX.Effects.manifest" <(cd "$installed" && wine x86/vixahost.exe manifest) 2>&1)"

# One library goes and the other one's half of the registry stays as it is.
for half in x64:system32:-c x86:syswow64:-vc; do
    IFS=: read -r library folder others <<<"$half"
    register=(wine "C:\\windows\\$folder\\regsvr32.exe" /s "C:\\$programs\\VixaVideoFX\\$library\\VixaVideoFX.dll")
    expect "exit code, removing the $library library alone" 0 "$(code "${register[@]}" /u)"
    state alone
    expect "effects registered then" 13 "$(registered alone)"
    expect "differences in the other half" 0 "$(differences alone installed | grep $others Wow6432Node)"
    expect "exit code, registering it again" 0 "$(code "${register[@]}")"
    state again
    expect "differences after that" "" "$(differences again installed)"
done

# A failing upgrade, in the same folder and to another, leaves the installed version as it was.
for folder in "" '/D=C:\Other'; do
    expect "exit code, failing upgrade $folder" 2 "$(code wine "$check/broken-setup.exe" /S $folder)"
    state upgraded
    expect "differences after that" "" "$(differences upgraded installed)"
done

# An upgrade whose computer was switched off is made good by the next: the old version waits aside, of the new one a part is
# there.
mkdir "$prefix/drive_c/aside"
mv "$installed"/* "$prefix/drive_c/aside/"
mv "$prefix/drive_c/aside" "$installed/.previous"
mkdir "$installed/x86"
printf 'part' >"$installed/x86/VixaVideoFX.dll"
expect "exit code, installation after one that was cut short" 0 "$(code wine "$installer" /S)"
state again
expect "differences after that" "" "$(differences again installed)"

# What the user has put into the folder or changed in it stays.
printf 'mine\n' | tee "$installed/README.md" >"$installed/docs/mine.txt"
expect "exit code, installation over changed files" 0 "$(code wine "$installer" /S)"
settle
expect "beside what was packed after that" "Only in .: README.md.kept Only in ./docs: mine.txt" "$(unpacked | xargs)"
rm "$installed/README.md.kept" "$installed/docs/mine.txt"

# While somebody reads the library nothing is touched.
printf '@ping -n 9 127.0.0.1 <"C:\\%s\\VixaVideoFX\\x64\\VixaVideoFX.dll" >nul\r\n' "$programs" >"$prefix/drive_c/read.cmd"
wine cmd /c 'C:\read.cmd' &
sleep 2
expect "exit code, installation over a library in use" 5 "$(code wine "$installer" /S)"
# The uninstaller goes on in a copy of itself, whose exit code nobody gets.
code wine "$installed/Uninstall.exe" /S >/dev/null
wait $!
settle
rm "$prefix/drive_c/read.cmd"
expect "files not as packed after that" "" "$(unpacked)"

expect "exit code, moving to a folder of any name" 0 "$(code wine "$installer" /S '/D=C:\日本')"
settle
expect "left in the old folder" "" "$(ls -A "$installed" 2>/dev/null)"
installed="$prefix/drive_c/日本"
expect "files not as packed after that" "" "$(unpacked)"
expect "exit code, checking the library there" 0 "$(cd "$installed" && code wine x86/vixahost.exe validate --only loading)"

# When one library cannot be unregistered nothing is removed.
state moved
mv "$installed/x64/VixaVideoFX.dll" "$check/"
expect "exit code, uninstallation without the 64-bit library" 2 "$(code wine "$installed/Uninstall.exe" /S '_?=C:\日本')"
mv "$check/VixaVideoFX.dll" "$installed/x64/"
state kept
expect "differences after that" "" "$(differences kept moved)"

touch "$installed/of somebody else.txt"
printf 'mine\n' >"$installed/docs/installation.md"
expect "exit code, uninstallation" 0 "$(code wine "$installed/Uninstall.exe" /S)"
settle
expect "left in the folder" "./docs/installation.md ./of somebody else.txt" \
    "$(cd "$installed" && find . -type f | sort | xargs -d '\n')"
rm -r "$installed"
wine wineboot --restart
state after
differences after >"$check/after.diff"
expect "differences after uninstallation" "$categories" "$(cat "$check/after.diff")"
