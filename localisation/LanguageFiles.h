// Which language file belongs to a language identifier, and where it stands: beside the library, named after it.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace vixa {

// A Windows language identifier: primary language in bits 0 to 9, sublanguage in bits 10 to 15.
using LanguageId = std::uint16_t;

inline constexpr LanguageId englishLanguage = 1033;

// Every language code that has a file of its own ("cs-CZ", "da-DK", ...), each once.
std::span<const std::wstring_view> LanguageCodes() noexcept;

// The code of the language file that serves `language`; languages without one are served by "en-US".
std::wstring_view LanguageCode(LanguageId language) noexcept;

// Turns the library's path into that of its language file: "C:\fx\VixaVideoFX.dll" and 1031 give
// "C:\fx\VixaVideoFX_de-DE.nls". The last four characters are the extension, whatever they say; a path of fewer becomes
// the bare name "VixaVideoFX" with the suffix.
void MakeLanguageFileName(LanguageId language, std::wstring& path);

} // namespace vixa
