#include "host/effects/EffectCatalogue.h"

#include "host/base/HostError.h"
#include "host/base/NearestNames.h"
#include "host/base/Text.h"
#include "host/effects/DataPropertySet.h"

#include <vixavideofx/ClassIds.h>

#include <algorithm>
#include <array>
#include <tuple>

namespace vixahost::effects {

using namespace vixavideofx;

namespace {

constexpr const GUID* effects[] = {
    &CLSID_AddPixel,    &CLSID_FilterColor, &CLSID_InvertColor,    &CLSID_MultiplyPixel, &CLSID_GammaCorrection,
    &CLSID_DetectEdges, &CLSID_Emboss,      &CLSID_EnhanceDetails, &CLSID_EnhanceEdges,  &CLSID_EnhanceFocus,
    &CLSID_LightEdges,  &CLSID_ShiftEdges,  &CLSID_SoftenFilter};

void Require(HRESULT result)
{
    if (FAILED(result))
        throw FailedJob("The library's list of effects can't be read (" + Show(result) +
                        "); is VixaVideoFX.dll of the same version as this program?");
}

// A text by two calls: its length with the terminator, then the text.
std::wstring TextOf(IEffectInfo& info, HRESULT (STDMETHODCALLTYPE IEffectInfo::*get)(ULONG, WCHAR*, ULONG*),
                    LANGID language)
{
    ULONG length = 0;
    Require((info.*get)(language, nullptr, &length));
    std::wstring text(length, L'\0');
    Require((info.*get)(language, text.data(), &length));
    text.resize(length > 0 ? length - 1 : 0);
    return text;
}

std::vector<std::uint8_t> IconOf(IEffectInfo& info)
{
    ULONG size = 0;
    Require(info.GetIcon(nullptr, &size));
    std::vector<std::uint8_t> icon(size);
    Require(info.GetIcon(icon.data(), &size));
    return icon;
}

std::vector<std::int32_t> DefaultsOf(IEffectInfo& info)
{
    const auto set = DataPropertySet::Create({});
    Require(info.SetDefaults(set.Get()));
    return set->Block();
}

std::string IdentifierText(const GUID& classId)
{
    wchar_t text[40] = {};
    StringFromGUID2(classId, text, 40);
    return Utf8(text);
}

// The identifier of a code such as "de-DE"; 0 for a code of no known language. A territory that the system doesn't know
// leaves the language by itself.
LANGID LanguageOf(const std::wstring& code)
{
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

std::vector<CatalogueEntry> ReadCatalogue(const EffectLibrary& library, LANGID language)
{
    std::vector<CatalogueEntry> catalogue;
    for (const GUID* const classId : effects) {
        CatalogueEntry entry;
        entry.classId = *classId;
        entry.info = library.CatalogueOf(*classId);
        entry.englishName = Utf8(TextOf(*entry.info.Get(), &IEffectInfo::GetEffectName, englishLanguage));
        Require(entry.info->GetGroupId(&entry.groupId));
        Require(entry.info->GetSortKey(&entry.sortKey));
        entry.icon = IconOf(*entry.info.Get());
        entry.defaults = DefaultsOf(*entry.info.Get());
        catalogue.push_back(std::move(entry));
    }
    // A group's name comes in the language of the last effect name that was asked for.
    for (CatalogueEntry& entry : catalogue) {
        entry.name = TextOf(*entry.info.Get(), &IEffectInfo::GetEffectName, language);
        entry.group = TextOf(*entry.info.Get(), &IEffectInfo::GetGroupName, language);
    }
    std::sort(catalogue.begin(), catalogue.end(), [](const CatalogueEntry& a, const CatalogueEntry& b) {
        return std::tie(a.groupId, a.sortKey, a.englishName) < std::tie(b.groupId, b.sortKey, b.englishName);
    });
    return catalogue;
}

const CatalogueEntry* FindEntry(const std::vector<CatalogueEntry>& catalogue, const GUID& classId)
{
    const auto found = std::find_if(catalogue.begin(), catalogue.end(), [&](const CatalogueEntry& entry) {
        return IsEqualGUID(entry.classId, classId) != FALSE;
    });
    return found == catalogue.end() ? nullptr : &*found;
}

const CatalogueEntry* FindEntry(const std::vector<CatalogueEntry>& catalogue, std::string_view nameOrIdentifier)
{
    const std::string wanted = LowerCase(nameOrIdentifier);
    const auto found = std::find_if(catalogue.begin(), catalogue.end(), [&](const CatalogueEntry& entry) {
        return LowerCase(entry.englishName) == wanted || LowerCase(IdentifierText(entry.classId)) == wanted;
    });
    return found == catalogue.end() ? nullptr : &*found;
}

const CatalogueEntry& RequireEntry(const std::vector<CatalogueEntry>& catalogue, std::string_view name)
{
    if (const CatalogueEntry* const entry = FindEntry(catalogue, name))
        return *entry;
    std::vector<std::string> names;
    for (const CatalogueEntry& entry : catalogue)
        names.push_back(entry.englishName);
    throw WrongWords("There is no effect \"" + std::string(name) + "\"; did you mean " +
                     Alternatives(NearestNames(name, names)) + "? `vixahost list` shows all.");
}

std::vector<Language> FindLanguages(const std::filesystem::path& libraryFile)
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
        const LANGID id = LanguageOf(code);
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

} // namespace vixahost::effects
