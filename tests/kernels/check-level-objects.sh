#!/usr/bin/env bash
# check-level-objects.sh OBJDUMP NM OBJECT...: looks into the kernels' object files. A processor without a level's instructions
# must never meet them:
#   - wide registers and later instructions stand only in objects whose name ends in the level's suffix;
#   - those objects export no code, so that the linker cannot put their copy of a shared function into everybody's hands;
#   - a function that stores aligned wide vectors to its stack aligns the stack first (32-bit callers align to 4 bytes only).
set -euo pipefail
objdump=$1 nm=$2
shift 2
failures=0
complain() {
    echo "$*"
    failures=$((failures + 1))
}

listing() { "$objdump" -d --no-show-raw-insn "$1"; }

avx='%[yz]mm|%k[0-7]|[[:space:]]v[a-z0-9]+[[:space:]].*%xmm'
avx512='%zmm|%k[0-7]|%[xy]mm(1[6-9]|2[0-9]|3[01])'
after_sse2='[[:space:]](pshufb|pmaddubsw|palignr|pabs[bwd]|ph(add|sub)|pmulhrsw|psign|pblend|ptest|pmov[sz]x|p(ext|ins)r[bdq]|pmulld|pm(in|ax)(sb|sd|uw|ud)|packusdw|round[ps][sd]|popcnt|crc32|lddqu|movddup|mov[hl]dup|haddp)'

# foreign OBJECT PATTERN WHAT: complains about instructions that match.
foreign() {
    local found
    found=$(listing "$1" | grep -E -m 3 -- "$2" || true)
    [ -z "$found" ] || complain "$(basename "$1") holds $3:
$found"
}

# unaligned_stack OBJECT: functions with aligned wide accesses relative to a stack that they did not align.
unaligned_stack() {
    listing "$1" | awk '
        function report() { if (wide > aligned) print name ": " line }
        /^[0-9a-f]+ <.*>:$/ { report(); name = $2; wide = 0; aligned = 0; next }
        /and[lq]? +\$0xf+e0,%[er]sp/ { if (aligned < 32) aligned = 32 }
        /and[lq]? +\$0xf+[8c]0,%[er]sp|and[lq]? +\$0xf+[0-9a-f]00,%[er]sp/ { aligned = 64 }
        /vmov(dqa|aps|apd|dqa32|dqa64|ntdq|ntps)[[:space:]].*\(%[er][sb]p/ {
            width = /%zmm/ ? 64 : /%ymm/ ? 32 : 0
            if (width > wide) { wide = width; line = $0 }
        }
        END { report() }'
}

declare -A seen=()
for object in "$@"; do
    case $object in
    *_avx512.cpp.o*)
        seen[avx512]=$object
        ;;
    *_avx2.cpp.o*)
        seen[avx2]=$object
        foreign "$object" "$avx512" "instructions of AVX-512"
        ;;
    *_sse2.cpp.o*)
        seen[sse2]=$object
        foreign "$object" "$avx" "instructions of AVX"
        foreign "$object" "$after_sse2" "instructions after SSE2"
        ;;
    *)
        foreign "$object" "$avx" "instructions of AVX"
        foreign "$object" "$after_sse2" "instructions after SSE2"
        continue
        ;;
    esac
    shared=$("$nm" --defined-only "$object" | grep -E ' [TWu] ' || true)
    [ -z "$shared" ] || complain "$(basename "$object") exports code:
$shared"
    bare=$(unaligned_stack "$object")
    [ -z "$bare" ] || complain "$(basename "$object") stores wide vectors to a stack it did not align:
$bare"
done

# The patterns must find what they look for where it is known to be.
for level in sse2 avx2 avx512; do
    [ -n "${seen[$level]:-}" ] || complain "no object of the level $level among: $*"
done
[ "$(listing "${seen[avx2]}" | grep -cE -- "$avx")" -gt 0 ] || complain "the pattern for AVX finds nothing in ${seen[avx2]}"
[ "$(listing "${seen[avx512]}" | grep -cE -- "$avx512")" -gt 0 ] || complain "the pattern for AVX-512 finds nothing in ${seen[avx512]}"

if [ "$failures" -gt 0 ]; then
    echo "$failures faults"
    exit 1
fi
echo "$# objects, no fault"
