#include "host/effects/EffectCatalogue.h"

#include "host/base/HostError.h"
#include "host/base/NearestNames.h"
#include "host/base/ResultCode.h"
#include "host/base/Text.h"
#include "host/effects/DataPropertySet.h"

#include <vixavideofx/EffectParameters.h>

#include <algorithm>
#include <tuple>

namespace vixahost::effects {

using namespace vixavideofx;

namespace {

void Require(HRESULT result)
{
    if (FAILED(result))
        throw FailedJob("The library's list of effects can't be read: " + Explain(result) +
                        "; is VixaVideoFX.dll of the same version as this program?");
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

} // namespace

std::vector<CatalogueEntry> ReadCatalogue(const EffectLibrary& library, LANGID language)
{
    std::vector<CatalogueEntry> catalogue;
    for (const EffectParameters& effect : effectParameters) {
        CatalogueEntry entry;
        entry.classId = effect.effect;
        entry.info = library.CatalogueOf(effect.effect);
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
    names.reserve(catalogue.size());
    for (const CatalogueEntry& entry : catalogue)
        names.push_back(entry.englishName);
    throw WrongWords("There is no effect \"" + std::string(name) + "\"; did you mean " +
                     Alternatives(NearestNames(name, names)) + "? `vixahost effects` lists all.");
}

std::string FileStem(const CatalogueEntry& entry)
{
    std::string stem = LowerCase(entry.englishName);
    std::replace(stem.begin(), stem.end(), ' ', '-');
    return stem;
}

} // namespace vixahost::effects
