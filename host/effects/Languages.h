// Languages as users write them, as the platform numbers them, and as the library has files for them.
#pragma once

#include <windows.h>

#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vixahost::effects {

inline constexpr LANGID englishLanguage = 1033;

struct LanguageCode
{
    const char* code; // as in the language files' names: "de-DE"
    LANGID id;
};

// The languages for which a language file may lie beside the library.
std::span<const LanguageCode> LanguageCodes();

// "de", "de-DE", "pt-BR" (the case doesn't matter), or a number ("1031", "0x407"), whether the library has a file for
// it or not. A primary language alone means the first entry of it. Throws WrongWords that offers the nearest codes.
LANGID AnyLanguage(std::string_view text);

struct Language
{
    LANGID id = englishLanguage;
    std::string code;  // "de-DE"
    std::wstring name; // "Deutsch"
};

// English, and the languages whose files are beside the library. Sorted by what their speakers call them.
std::vector<Language> InstalledLanguages(const std::filesystem::path& libraryFile);

// "de" or "de-DE", when its file is beside the library. Throws WrongWords that lists the codes there are.
LANGID InstalledLanguage(std::string_view code, const std::filesystem::path& libraryFile);

} // namespace vixahost::effects
