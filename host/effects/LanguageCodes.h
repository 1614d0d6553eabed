// Languages as users write them and as the platform numbers them.
#pragma once

#include <windows.h>

#include <span>
#include <string>
#include <string_view>

namespace vixahost::effects {

struct LanguageCode
{
    const char* code; // as in the language files' names: "de-DE"
    LANGID id;
};

// The languages for which a language file may lie beside the library.
std::span<const LanguageCode> LanguageCodes();

// "de", "de-DE", "pt-BR" (the case doesn't matter), or a number ("1031", "0x407"). A primary language alone means the
// first entry of it. Throws WrongWords that offers the nearest codes.
LANGID ParseLanguage(std::string_view text);

} // namespace vixahost::effects
