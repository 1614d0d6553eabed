#include "localisation/LanguageFiles.h"

#include <algorithm>
#include <array>

namespace vixa {

namespace {

constexpr int anySublanguage = -1;

struct LanguageRow
{
    int primary;
    int sublanguage;
    std::wstring_view code;
};

// The first row that fits decides. "uk-UK" is the name under which hosts look for the Ukrainian file.
constexpr LanguageRow languageRows[] = {
    {0x04, 1, L"zh-TW"}, // Chinese, traditional script
    {0x04, anySublanguage, L"zh-CN"},
    {0x05, anySublanguage, L"cs-CZ"}, // Czech
    {0x06, anySublanguage, L"da-DK"}, // Danish
    {0x07, anySublanguage, L"de-DE"}, // German
    {0x08, anySublanguage, L"el-GR"}, // Greek
    {0x0A, 1, L"es-ES"},              // Spanish of Spain, traditional sort
    {0x0A, 3, L"es-ES"},              // Spanish of Spain, modern sort
    {0x0A, anySublanguage, L"es-CL"}, // Spanish of Latin America
    {0x0B, anySublanguage, L"fi-FI"}, // Finnish
    {0x0C, anySublanguage, L"fr-FR"}, // French
    {0x0E, anySublanguage, L"hu-HU"}, // Hungarian
    {0x10, anySublanguage, L"it-IT"}, // Italian
    {0x11, anySublanguage, L"ja-JP"}, // Japanese
    {0x12, anySublanguage, L"ko-KR"}, // Korean
    {0x13, anySublanguage, L"nl-NL"}, // Dutch
    {0x14, anySublanguage, L"nb-NO"}, // Norwegian
    {0x15, anySublanguage, L"pl-PL"}, // Polish
    {0x16, 1, L"pt-BR"},              // Portuguese of Brazil
    {0x16, anySublanguage, L"pt-PT"}, // Portuguese of Portugal
    {0x19, anySublanguage, L"ru-RU"}, // Russian
    {0x1B, anySublanguage, L"sk-SK"}, // Slovak
    {0x1D, anySublanguage, L"sv-SE"}, // Swedish
    {0x1E, anySublanguage, L"th-TH"}, // Thai
    {0x1F, anySublanguage, L"tr-TR"}, // Turkish
    {0x22, anySublanguage, L"uk-UK"}, // Ukrainian
    {0x24, anySublanguage, L"sl-SI"}, // Slovenian
};

constexpr std::wstring_view fallbackCode = L"en-US";

// The rows' codes with the fallback, each once: Spanish of Spain stands in two rows.
constexpr auto codes = [] {
    std::array<std::wstring_view, std::size(languageRows)> list{};
    std::size_t count = 0;
    for (const LanguageRow& row : languageRows) {
        if (count == 0 || list[count - 1] != row.code)
            list[count++] = row.code;
    }
    list[count] = fallbackCode;
    return list;
}();
static_assert(codes.size() == 27 && codes.back() == fallbackCode);

constexpr std::size_t extensionLength = 4;

} // namespace

std::span<const std::wstring_view> LanguageCodes() noexcept
{
    return codes;
}

std::wstring_view LanguageCode(LanguageId language) noexcept
{
    const int primary = language & 0x3FF;
    const int sublanguage = language >> 10;
    const auto* const row = std::ranges::find_if(languageRows, [=](const LanguageRow& candidate) {
        return candidate.primary == primary &&
               (candidate.sublanguage == anySublanguage || candidate.sublanguage == sublanguage);
    });
    return row == std::end(languageRows) ? fallbackCode : row->code;
}

void MakeLanguageFileName(LanguageId language, std::wstring& path)
{
    if (path.size() < extensionLength)
        path = L"VixaVideoFX";
    else
        path.resize(path.size() - extensionLength);
    path += L'_';
    path += LanguageCode(language);
    path += L".nls";
}

} // namespace vixa
