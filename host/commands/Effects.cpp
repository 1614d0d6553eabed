#include "host/commands/Effects.h"
#include "host/base/Text.h"
#include "host/commands/Words.h"
#include "host/effects/EffectStack.h"

#include <objbase.h>

namespace vixahost::commands {

void Run(const EffectsCommand&)
{
    const effects::EffectLibrary library;
    std::string text;
    for (const effects::CatalogueEntry& effect : effects::ReadCatalogue(library)) {
        wchar_t identifier[40] = {};
        StringFromGUID2(effect.classId, identifier, 40);
        std::string name = effect.englishName;
        name.resize(18, ' ');
        text += name + Utf8(identifier) + "\n";
        const auto parameters = vixavideofx::ParametersOf(effect.classId);
        if (parameters.empty())
            text += "    no parameters\n";
        for (const auto& parameter : parameters) {
            const std::int32_t start = effect.defaults[parameter.offset / sizeof(std::int32_t)];
            std::string label = parameter.name;
            label.resize(11, ' ');
            text += "    " + label + effects::RangeOf(parameter) + ", at first " +
                    effects::ShowValue(parameter, start) + ": " + parameter.meaning + "\n";
        }
    }
    Say(text);
}

Words EffectsWords(CLI::App& program)
{
    CLI::App* const parser =
        program.add_subcommand("effects", "Lists the effects, their identifiers and their parameters with ranges");
    return {parser, [] { return EffectsCommand{}; }};
}

} // namespace vixahost::commands
