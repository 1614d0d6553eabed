#include "host/base/Text.h"
#include "host/commands/Commands.h"

#include <objbase.h>

namespace vixahost::commands {

void ListEffects()
{
    std::string text;
    for (const effects::EffectEntry& effect : effects::Effects()) {
        wchar_t identifier[40] = {};
        StringFromGUID2(*effect.classId, identifier, 40);
        std::string name = effect.name;
        name.resize(18, ' ');
        text += name + Utf8(identifier) + "\n";
        const auto parameters = vixavideofx::ParametersOf(*effect.classId);
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

} // namespace vixahost::commands
