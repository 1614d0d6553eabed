#!/usr/bin/env bash
# check-images.sh OBJDUMP FOLDER: looks into the thirteen plug-ins of a folder: each exports frei0r's functions and nothing
# else, and needs no library but the system's C library and mathematics or, in Windows, what the
# compiler's own libraries ask for.
set -euo pipefail
functions='construct deinit destruct get_param_info get_param_value get_plugin_info init set_param_value update update2'
expected=$(printf 'f0r_%s\n' $functions)
seen=0
for image in "$2"/vixa_*.so "$2"/vixa_*.dll; do
    [ -f "$image" ] || continue
    seen=$((seen + 1))
    case $image in
        *.so)
            exports=$("$1" -T "$image" | awk '/\.text/ { print $NF }')
            needed=$("$1" -p "$image" | awk '$1 == "NEEDED" { print $2 }')
            known='^lib(c|m)\.so\.6$'
            ;;
        *)
            exports=$("$1" -p "$image" | awk '/^\[Ordinal\/Name/ { table = 1; next } !NF { table = 0 } table { print $NF }')
            needed=$("$1" -p "$image" | awk '/DLL Name:/ { print $3 }')
            known='^(ADVAPI32|KERNEL32|msvcrt)\.dll$'
            ;;
    esac
    exports=$(sort <<<"$exports")
    [ "$exports" = "$expected" ] || { echo "${image##*/} exports: $exports"; exit 1; }
    ! grep -vE "$known" <<<"$needed" || { echo "(above) is needed by ${image##*/}"; exit 1; }
done
[ $seen = 13 ] || { echo "$seen plug-ins in $2 instead of 13"; exit 1; }
