#include "host/effects/Languages.h"

#include "host/base/Handles.h"
#include "host/base/HostError.h"
#include "host/base/NearestNames.h"
#include "host/base/Text.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace vixahost::effects {

namespace {

constexpr LanguageCode codes[] = {
    {"en-US", 0x0409}, {"zh-TW", 0x0404}, {"zh-CN", 0x0804}, {"cs-CZ", 0x0405}, {"da-DK", 0x0406}, {"de-DE", 0x0407},
    {"el-GR", 0x0408}, {"es-ES", 0x040A}, {"es-CL", 0x340A}, {"fi-FI", 0x040B}, {"fr-FR", 0x040C}, {"hu-HU", 0x040E},
    {"it-IT", 0x0410}, {"ja-JP", 0x0411}, {"ko-KR", 0x0412}, {"nl-NL", 0x0413}, {"nb-NO", 0x0414}, {"pl-PL", 0x0415},
    {"pt-BR", 0x0416}, {"pt-PT", 0x0816}, {"ru-RU", 0x0419}, {"sk-SK", 0x041B}, {"sv-SE", 0x041D}, {"th-TH", 0x041E},
    {"tr-TR", 0x041F}, {"uk-UK", 0x0422}, {"sl-SI", 0x0424},
};

// Whether a user means this code: "de-DE" by itself or by its primary language.
bool Means(std::string_view text, std::string_view code)
{
    const std::string wanted = LowerCase(text), full = LowerCase(code);
    return full == wanted || full.substr(0, full.find('-')) == wanted;
}

// The identifier of a code such as "de-DE"; 0 for a code of no known language. For codes that are not the library's own
// the system is asked; a territory that it doesn't know leaves the language by itself.
LANGID IdentifierOf(const std::wstring& code)
{
    for (const LanguageCode& known : codes)
        if (Wide(known.code) == code)
            return known.id;
    for (const std::wstring& name : {code, code.substr(0, code.find(L'-'))})
        if (const LCID locale = LocaleNameToLCID(name.c_str(), 0);
            locale != 0 && LANGIDFROMLCID(locale) != LOCALE_CUSTOM_UNSPECIFIED)
            return LANGIDFROMLCID(locale);
    return 0;
}

std::wstring NativeName(LANGID language)
{
    std::array<wchar_t, 100> name = {};
    if (!GetLocaleInfoW(MAKELCID(language, SORT_DEFAULT), LOCALE_SNATIVELANGNAME, name.data(), name.size()))
        return {};
    CharUpperBuffW(name.data(), 1);
    return name.data();
}

} // namespace

std::span<const LanguageCode> LanguageCodes()
{
    return codes;
}

LANGID AnyLanguage(std::string_view text)
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
    std::vector<std::string> known;
    for (const LanguageCode& language : codes) {
        if (Means(text, language.code))
            return language.id;
        known.emplace_back(language.code);
    }
    throw WrongWords("There is no language \"" + std::string(text) + "\"; did you mean " +
                     Alternatives(NearestNames(text, known)) + "? A number such as 1031 will do as well.");
}

std::vector<Language> InstalledLanguages(const std::filesystem::path& libraryFile)
{
    std::vector<Language> languages = {{englishLanguage, "en-US", NativeName(englishLanguage)}};
    const std::wstring prefix = libraryFile.stem().native() + L"_";
    WIN32_FIND_DATAW found = {};
    const auto search =
        Opened<UniqueSearch>(FindFirstFileW((libraryFile.parent_path() / (prefix + L"*.nls")).c_str(), &found));
    if (!search)
        return languages;
    do {
        const std::wstring stem = std::filesystem::path(found.cFileName).stem().native();
        const std::wstring code = stem.substr(std::min(prefix.size(), stem.size()));
        const LANGID id = IdentifierOf(code);
        if (id != 0 && id != englishLanguage)
            languages.push_back({id, Utf8(code), NativeName(id)});
    } while (FindNextFileW(search.get(), &found));
    // One language may have two files; only then does the code tell them apart.
    std::vector<Language> named = languages;
    for (Language& language : named) {
        const auto sameName = [&](const Language& other) { return other.name == language.name; };
        if (language.name.empty())
            language.name = Wide(language.code);
        else if (std::count_if(languages.begin(), languages.end(), sameName) > 1)
            language.name += L" (" + Wide(language.code) + L")";
    }
    std::sort(named.begin(), named.end(),
              [](const Language& a, const Language& b) { return lstrcmpiW(a.name.c_str(), b.name.c_str()) < 0; });
    return named;
}

LANGID InstalledLanguage(std::string_view code, const std::filesystem::path& libraryFile)
{
    std::string known;
    for (const Language& language : InstalledLanguages(libraryFile)) {
        if (Means(code, language.code))
            return language.id;
        known += (known.empty() ? "" : ", ") + language.code;
    }
    throw WrongWords("There is no language \"" + std::string(code) + "\" beside the library; there are " + known + ".");
}

} // namespace vixahost::effects
