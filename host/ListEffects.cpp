#include "host/Commands.h"
#include "host/Text.h"

#include <objbase.h>

namespace vixa::host {

void ListEffects()
{
    std::string text;
    for (const EffectEntry& effect : Effects()) {
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
            text += "    " + label + RangeOf(parameter) + ", at first " + ShowValue(parameter, start) + ": " +
                    parameter.meaning + "\n";
        }
    }
    Say(text);
}

} // namespace vixa::host
