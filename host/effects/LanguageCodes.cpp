#include "host/effects/LanguageCodes.h"

#include "host/base/HostError.h"
#include "host/base/NearestNames.h"
#include "host/base/Text.h"

#include <charconv>
#include <vector>

namespace vixahost::effects {

namespace {

constexpr LanguageCode languages[] = {
    {"en-US", 0x0409}, {"zh-TW", 0x0404}, {"zh-CN", 0x0804}, {"cs-CZ", 0x0405}, {"da-DK", 0x0406}, {"de-DE", 0x0407},
    {"el-GR", 0x0408}, {"es-ES", 0x040A}, {"es-CL", 0x340A}, {"fi-FI", 0x040B}, {"fr-FR", 0x040C}, {"hu-HU", 0x040E},
    {"it-IT", 0x0410}, {"ja-JP", 0x0411}, {"ko-KR", 0x0412}, {"nl-NL", 0x0413}, {"nb-NO", 0x0414}, {"pl-PL", 0x0415},
    {"pt-BR", 0x0416}, {"pt-PT", 0x0816}, {"ru-RU", 0x0419}, {"sk-SK", 0x041B}, {"sv-SE", 0x041D}, {"th-TH", 0x041E},
    {"tr-TR", 0x041F}, {"uk-UK", 0x0422}, {"sl-SI", 0x0424},
};

} // namespace

std::span<const LanguageCode> LanguageCodes()
{
    return languages;
}

LANGID ParseLanguage(std::string_view text)
{
    const std::string wanted = LowerCase(text);
    std::string_view digits = wanted;
    int base = 10;
    if (digits.starts_with("0x")) {
        digits.remove_prefix(2);
        base = 16;
    }
    LANGID number = 0;
    const auto [end, fault] = std::from_chars(digits.data(), digits.data() + digits.size(), number, base);
    if (fault == std::errc() && end == digits.data() + digits.size() && !digits.empty())
        return number;
    std::vector<std::string> codes;
    for (const LanguageCode& language : languages) {
        const std::string code = LowerCase(language.code);
        if (code == wanted || code.substr(0, 2) == wanted)
            return language.id;
        codes.emplace_back(language.code);
    }
    throw WrongWords("There is no language \"" + std::string(text) + "\"; did you mean " +
                     Alternatives(NearestNames(text, codes)) + "? A number such as 1031 will do as well.");
}

} // namespace vixahost::effects
