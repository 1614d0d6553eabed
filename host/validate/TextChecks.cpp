// Group "texts": names and groups in every language that lies beside the library.
#include "host/base/Text.h"
#include "host/effects/Languages.h"
#include "host/fixtures/GuardedMemory.h"
#include "host/validate/Contract.h"
#include "host/validate/Subject.h"
#include "host/validate/Threads.h"

#include <vixavideofx/ClassIds.h>

#include <algorithm>
#include <set>
#include <vector>

namespace vixahost::validate {

namespace {

using namespace vixavideofx;

constexpr ULONG english = 1033;

// The two calls of a text, into a buffer of exactly the answered size that ends at an inaccessible page.
template <typename Request>
std::wstring TextOf(const std::string& what, Request request)
{
    ULONG length = 0xDEAD;
    RequireResult(request(nullptr, &length), S_OK, what + "'s size query");
    Require(length >= 1 && length < 1000, what + ": an absurd length, " + std::to_string(length));
    const fixtures::GuardedMemory buffer(length * sizeof(WCHAR), fixtures::GuardedMemory::Guard::Behind);
    auto* const text = reinterpret_cast<WCHAR*>(buffer.Bytes().data());
    std::fill_n(text, length, L'\xFFFF');
    RequireResult(request(text, &length), S_OK, what);
    RequireNumber(static_cast<long long>(wcsnlen(text, length)), length - 1LL,
                  what + ": the characters before the terminator");
    return {text, length - 1};
}

std::wstring NameOf(IEffectInfo* info, ULONG language, const std::string& what)
{
    return TextOf(what + ": GetEffectName",
                  [&](WCHAR* text, ULONG* length) { return info->GetEffectName(language, text, length); });
}

std::wstring GroupOf(IEffectInfo* info, const std::string& what)
{
    return TextOf(what + ": GetGroupName",
                  [&](WCHAR* text, ULONG* length) { return info->GetGroupName(0, text, length); });
}

void Same(const std::wstring& got, const std::wstring& wanted, const std::string& what)
{
    Require(got == wanted, what + " is \"" + Utf8(got) + "\" instead of \"" + Utf8(wanted) + "\"");
}

std::filesystem::path FileOf(Subject& library, const effects::LanguageCode& language)
{
    auto path = library.File();
    return path.replace_filename(path.stem().wstring() + L"_" + Wide(language.code) + L".nls");
}

std::vector<effects::LanguageCode> Present(Subject& library)
{
    std::vector<effects::LanguageCode> present;
    for (const effects::LanguageCode& language : effects::LanguageCodes())
        if (GetFileAttributesW(FileOf(library, language).c_str()) != INVALID_FILE_ATTRIBUTES)
            present.push_back(language);
    return present;
}

std::vector<effects::LanguageCode> RequirePresent(Subject& library)
{
    auto present = Present(library);
    if (present.empty())
        Skip("no language file lies beside the library");
    return present;
}

void English(Subject& library)
{
    for (const Promise& effect : Promises()) {
        const auto info = library.Info(*effect.classId);
        Same(NameOf(info.Get(), english, effect.name), Wide(effect.name), std::string("the name of ") + effect.name);
        Same(GroupOf(info.Get(), effect.name), Wide(effect.groupName), std::string("the group of ") + effect.name);
    }
}

void AllFiles(Subject& library)
{
    const auto present = RequirePresent(library);
    if (present.size() == effects::LanguageCodes().size())
        return;
    std::string missing;
    for (const effects::LanguageCode& language : effects::LanguageCodes())
        if (std::none_of(present.begin(), present.end(),
                         [&](const effects::LanguageCode& one) { return one.id == language.id; }))
            missing += missing.empty() ? language.code : std::string(", ") + language.code;
    Warn("language files are missing: " + missing);
}

// What a language file itself holds, read without the library.
std::wstring TextIn(const UniqueModule& file, UINT id)
{
    WCHAR text[256] = {};
    return {text, static_cast<std::size_t>(LoadStringW(file.get(), id, text, 256))};
}

UniqueModule OpenFile(Subject& library, const effects::LanguageCode& language)
{
    UniqueModule file(LoadLibraryExW(FileOf(library, language).c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE));
    Require(file != nullptr, std::string(language.code) + ": the language file can't be read");
    return file;
}

void FromTheFile(Subject& library)
{
    const auto present = RequirePresent(library);
    for (const effects::LanguageCode& language : present) {
        const UniqueModule file = OpenFile(library, language);
        for (const Promise& effect : Promises()) {
            const auto info = library.Info(*effect.classId);
            const std::string what = std::string(language.code) + ": ";
            Same(NameOf(info.Get(), language.id, what + effect.name), TextIn(file, effect.nameId),
                 what + "the name of " + effect.name);
            Same(GroupOf(info.Get(), what + effect.name), TextIn(file, effect.groupNameId),
                 what + "the group of " + effect.name);
        }
    }
}

void Complete(Subject& library)
{
    for (const effects::LanguageCode& language : RequirePresent(library)) {
        std::set<std::wstring> names;
        bool translated = false;
        for (const Promise& effect : Promises()) {
            const auto info = library.Info(*effect.classId);
            const std::string what = std::string(language.code) + ": " + effect.name;
            const std::wstring name = NameOf(info.Get(), language.id, what);
            Require(!name.empty(), what + " has no name");
            Require(!GroupOf(info.Get(), what).empty(), what + " has no group name");
            Require(names.insert(name).second, what + " has the name of another effect");
            translated = translated || name != Wide(effect.name);
        }
        if (!translated && language.id != english)
            Warn(std::string(language.code) + ": all names are English");
    }
    NameOf(library.Info(CLSID_Emboss).Get(), english, "English");
}

void GroupFollows(Subject& library)
{
    const auto present = RequirePresent(library);
    const auto emboss = library.Info(CLSID_Emboss), add = library.Info(CLSID_AddPixel);
    std::set<std::wstring> groups;
    for (const effects::LanguageCode& language : present) {
        NameOf(emboss.Get(), language.id, language.code);
        groups.insert(GroupOf(add.Get(), language.code));
    }
    NameOf(emboss.Get(), english, "English");
    Same(GroupOf(add.Get(), "English"), L"Color filter", "the group's name back in English");
    if (present.size() > 3)
        Require(groups.size() > 3, "a switch of one effect's language does not reach the others");
}

void MissingLanguage(Subject& library)
{
    const auto info = library.Info(CLSID_Emboss);
    // Hebrew: there is no file for it. The low 16 bits count.
    Same(NameOf(info.Get(), 0x040D, "Hebrew"), L"Emboss", "the name in a language without a file");
    Same(NameOf(info.Get(), 0, "language 0"), L"Emboss", "the name in language 0");
    Same(NameOf(info.Get(), 0xFFFF, "language 0xFFFF"), L"Emboss", "the name in language 0xFFFF");
}

void OneCall(Subject& library)
{
    const auto info = library.Info(CLSID_Emboss);
    WCHAR text[64] = {};
    RequireResult(info->GetEffectName(english, text, nullptr), S_OK, "GetEffectName with a buffer and no length");
    Same(text, L"Emboss", "the name");
    ULONG length = 0;
    RequireResult(info->GetEffectName(english, text, &length), S_OK, "GetEffectName with a length of 0 on entry");
    RequireNumber(length, 7, "the length, which is not read on entry");
}

void TextArguments(Subject& library)
{
    const auto info = library.Info(CLSID_Emboss);
    NameOf(info.Get(), english, "English");
    RequireResult(info->GetEffectName(0x0407, nullptr, nullptr), E_INVALIDARG, "GetEffectName(null, null)");
    RequireResult(info->GetGroupName(0, nullptr, nullptr), E_INVALIDARG, "GetGroupName(null, null)");
    Same(GroupOf(info.Get(), "English"), L"Edges", "the group's name after a refused request in German");
}

void BackAndForth(Subject& library)
{
    const auto present = RequirePresent(library);
    const auto info = library.Info(CLSID_SoftenFilter);
    for (int i = 0; i < 100; ++i) {
        const effects::LanguageCode& language = present[static_cast<std::size_t>(i) % present.size()];
        Require(!NameOf(info.Get(), language.id, language.code).empty(), "a name vanished after many switches");
    }
    Same(NameOf(info.Get(), english, "English"), L"Soften filter", "the English name after a hundred switches");
}

// Hosts ask on several threads, each in its language: a name is of the language that was asked for, a group's of
// either.
void SwitchingThreads(Subject& library)
{
    std::vector<effects::LanguageCode> languages;
    std::vector<std::wstring> names, groups;
    const Promise& emboss = PromiseOf(CLSID_Emboss);
    for (const effects::LanguageCode& language : RequirePresent(library)) {
        const UniqueModule file = OpenFile(library, language);
        const std::wstring name = TextIn(file, emboss.nameId), group = TextIn(file, emboss.groupNameId);
        if (languages.size() < 2 && (names.empty() || (name != names[0] && group != groups[0]))) {
            languages.push_back(language);
            names.push_back(name);
            groups.push_back(group);
        }
    }
    if (languages.size() < 2)
        Skip("no two language files with different texts lie beside the library");
    {
        const ComPtr<IEffectInfo> infos[] = {library.Info(CLSID_Emboss), library.Info(CLSID_Emboss)};
        NameOf(infos[0].Get(), languages[0].id, languages[0].code);
        const Meanwhile others(4, [&](int i) {
            ULONG length = 0;
            infos[0]->GetEffectName(languages[static_cast<std::size_t>(i % 2)].id, nullptr, &length);
        });
        OnTwoThreads([&](int thread) {
            const auto own = static_cast<std::size_t>(thread);
            for (const ULONGLONG end = GetTickCount64() + 400; GetTickCount64() < end;) {
                WCHAR text[256] = {};
                RequireResult(infos[own]->GetEffectName(languages[own].id, text, nullptr), S_OK, "GetEffectName");
                Same(text, names[own], std::string(languages[own].code) + ": the name of Emboss");
                RequireResult(infos[own]->GetGroupName(0, text, nullptr), S_OK, "GetGroupName");
                Require(text == groups[0] || text == groups[1],
                        "the group's name is \"" + Utf8(text) + "\", which is of neither language");
            }
        });
    }
    library.Unload();
    for (const effects::LanguageCode& language : languages)
        Require(Opened<UniqueFile>(CreateFileW(FileOf(library, language).c_str(), GENERIC_READ, 0, nullptr,
                                               OPEN_EXISTING, 0, nullptr)) != nullptr,
                std::string(language.code) + ": the unloaded library left its language file open");
}

constexpr Check textChecks[] = {
    {"texts", "english", "Names and groups in English are the agreed ones.", English},
    {"texts", "files", "A file for each of the 27 languages lies beside the library.", AllFiles},
    {"texts", "from-the-file", "Each language's texts are those of that language's file.", FromTheFile},
    {"texts", "complete", "Each language names every effect and group, and no two effects alike.", Complete},
    {"texts", "one-switch", "GetEffectName switches the language of all effects.", GroupFollows},
    {"texts", "missing-language", "A language without a file gets English texts.", MissingLanguage},
    {"texts", "one-call", "A caller that knows the size needs one call, with or without a length.", OneCall},
    {"texts", "arguments", "Requests without buffer and length give E_INVALIDARG and switch nothing.", TextArguments},
    {"texts", "back-and-forth", "A hundred switches leave the texts whole.", BackAndForth},
    {"texts", "two-threads", "Threads that switch languages get whole texts, and no file stays open.",
     SwitchingThreads},
};

} // namespace

std::span<const Check> TextChecks()
{
    return textChecks;
}

} // namespace vixahost::validate
