# Sets VIXA_WINEARCH, unless it is set, to the kind of prefix that a program needs: win64 for a 64-bit PE file, else win32; and
# WIDTH_SUFFIX to what the names of 64-bit prefixes end with, and WINE_HOME to where prefixes are: below build/, or in the user's
# cache when build/ is somebody else's, because Wine refuses other people's prefixes. Sourced with the program's path as the only
# argument.
if [ -z "${VIXA_WINEARCH:-}" ]; then
    VIXA_WINEARCH=win32
    # The machine word follows the signature, which lies where the word at 0x3c says.
    if [ -f "${1:-}" ] &&
        [ "$(od -An -tx2 -j$(($(od -An -tu4 -j60 -N4 "$1") + 4)) -N2 "$1" 2>/dev/null)" = " 8664" ]; then
        VIXA_WINEARCH=win64
    fi
fi
export VIXA_WINEARCH
WIDTH_SUFFIX=
[ "$VIXA_WINEARCH" = win32 ] || WIDTH_SUFFIX=-64
WINE_HOME=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)/build
if [ -d "$WINE_HOME" ] && [ ! -O "$WINE_HOME" ]; then
    WINE_HOME="${XDG_CACHE_HOME:-$HOME/.cache}/vixavideofx/$(printf '%s' "$WINE_HOME" | cksum | tr -d ' ')"
    mkdir -p "$WINE_HOME"
fi
