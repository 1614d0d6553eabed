#!/usr/bin/env bash
# Builds every language file and checks all of them: what a translator runs after a change.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

"$ROOT/tools/setup.sh"
build win32 languages test_localisation
"$ROOT/tools/wine-run.sh" "$BUILD/win32/bin/test_localisation.exe" --gtest_brief=1 '--gtest_filter=LanguageTexts.*' ||
    fail "A text needs another look: the lines above name the language and the text's number (resources/languages/StringIds.h)."
say "The language files are in $BUILD/win32/bin"
