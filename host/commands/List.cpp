#include "host/commands/List.h"
#include "host/base/HostError.h"
#include "host/base/Json.h"
#include "host/base/ResultCode.h"
#include "host/base/Text.h"
#include "host/commands/HandOver.h"
#include "host/commands/Words.h"
#include "host/effects/EffectCatalogue.h"
#include "host/effects/EffectStack.h"
#include "host/effects/LibraryFile.h"

namespace vixahost::commands {

namespace {

// How many columns a text takes on a terminal: East Asian characters take two, combining marks none.
std::size_t Columns(std::wstring_view text)
{
    std::size_t columns = 0;
    for (const wchar_t letter : text) {
        const bool wide = (letter >= 0x1100 && letter < 0x1160) || (letter >= 0x2E80 && letter < 0xD7B0) ||
                          (letter >= 0xF900 && letter < 0xFB00) || (letter >= 0xFE30 && letter < 0xFE70) ||
                          (letter >= 0xFF00 && letter < 0xFF61);
        const bool mark = (letter >= 0x0300 && letter < 0x0370) || letter == 0x0E31 ||
                          (letter >= 0x0E34 && letter <= 0x0E3A) || (letter >= 0x0E47 && letter <= 0x0E4E);
        columns += mark ? 0 : wide ? 2 : 1;
    }
    return columns;
}

std::wstring Cell(std::wstring text, std::size_t columns)
{
    const std::size_t taken = Columns(text);
    return text.append(taken < columns ? columns - taken : 1, L' ');
}

// The defaults by the names of the public parameter description; a block without names as its numbers.
std::string DefaultsOf(const effects::CatalogueEntry& entry)
{
    std::string text;
    const auto add = [&](const std::string& part) { text += (text.empty() ? "" : ", ") + part; };
    for (const auto& parameter : vixavideofx::ParametersOf(entry.classId))
        if (const std::size_t index = parameter.offset / sizeof(std::int32_t); index < entry.defaults.size())
            add(std::string(parameter.name) + "=" + effects::ShowValue(parameter, entry.defaults[index]));
    if (text.empty())
        for (const std::int32_t value : entry.defaults)
            add(std::to_string(value));
    return text;
}

ULONG KindOf(const effects::CatalogueEntry& entry)
{
    ULONG kind = 0;
    if (const HRESULT result = entry.info->GetPropertySetKind(&kind); FAILED(result))
        throw FailedJob("The kind of \"" + entry.englishName + "\" can't be read: " + Explain(result) + ".");
    return kind;
}

std::string ToJson(const std::filesystem::path& file, const std::vector<effects::CatalogueEntry>& catalogue)
{
    Json list = Json::array();
    for (const effects::CatalogueEntry& entry : catalogue) {
        wchar_t identifier[40] = {};
        StringFromGUID2(entry.classId, identifier, 40);
        Json parameters = Json::array();
        for (const auto& parameter : vixavideofx::ParametersOf(entry.classId))
            parameters.push_back({{"name", parameter.name},
                                  {"minimum", parameter.minimum},
                                  {"maximum", parameter.maximum},
                                  {"default", entry.defaults.at(parameter.offset / sizeof(std::int32_t))},
                                  {"meaning", parameter.meaning}});
        list.push_back({{"name", Utf8(entry.name)},
                        {"englishName", entry.englishName},
                        {"classId", Utf8(identifier)},
                        {"group", Utf8(entry.group)},
                        {"groupId", entry.groupId},
                        {"sortKey", entry.sortKey},
                        {"propertySetKind", KindOf(entry)},
                        {"defaults", entry.defaults},
                        {"parameters", parameters}});
    }
    return Json({{"library",
                  {{"file", Show(file)}, {"version", effects::VersionOf(file)}, {"width", effects::WidthOf(file)}}},
                 {"effects", list}})
               .dump(2) +
           "\n";
}

} // namespace

void Run(const ListCommand& command)
{
    const auto dll = effects::LibraryOr(command.dll);
    if (HandOver(dll))
        return;
    const effects::EffectLibrary library(dll);
    const auto catalogue = effects::ReadCatalogue(library, command.language);
    if (command.json)
        return Say(ToJson(library.File(), catalogue));
    std::size_t width = 4;
    for (const effects::CatalogueEntry& entry : catalogue)
        width = std::max(width, Columns(entry.name));
    std::wstring text = Wide(Show(library.File()) + ": version " + effects::VersionOf(library.File()) + ", for " +
                             std::to_string(effects::WidthOf(library.File())) + "-bit programs\n");
    text += L"  " + Cell(L"effect", width + 2) + L"sort key    kind  defaults\n";
    ULONG group = 0;
    for (const effects::CatalogueEntry& entry : catalogue) {
        if (entry.groupId != group)
            text += entry.group + L"\n";
        group = entry.groupId;
        wchar_t key[16] = {};
        swprintf(key, 16, L"0x%08lX  ", entry.sortKey);
        text += L"  " + Cell(entry.name, width + 2) + key + Cell(std::to_wstring(KindOf(entry)), 6) +
                Wide(DefaultsOf(entry)) + L"\n";
    }
    Say(Utf8(text));
}

Words ListWords(CLI::App& program)
{
    struct Given
    {
        std::string language, library;
        bool json = false;
    };
    CLI::App* const parser =
        program.add_subcommand("list", "Lists the catalogue: groups, names, sort order, kinds and defaults");
    const auto given = std::make_shared<Given>();
    parser->add_option("--language", given->language, "de, de-DE, pt-BR, or a number such as 1031");
    parser->add_option("--dll", given->library, "The library; without it the one beside this program");
    parser->add_flag("--json", given->json, "For programs");
    return {parser, [given] {
                return ListCommand{effects::AnyLanguage(given->language.empty() ? "en" : given->language), given->json,
                                   Wide(given->library)};
            }};
}

} // namespace vixahost::commands
