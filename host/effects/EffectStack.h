// The effects a picture goes through, in order, each with its own parameters.
#pragma once

#include "host/effects/EffectCatalogue.h"

#include <vixavideofx/EffectParameters.h>

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vixahost::effects {

// One effect with its parameters, apart from any object of the library.
struct EffectStep
{
    GUID classId = {};
    std::string name;                // English
    std::vector<std::int32_t> block; // its data block, as a property set holds it
    bool on = true;

    // The same effect with the same parameters.
    friend bool operator==(const EffectStep& a, const EffectStep& b)
    {
        return IsEqualGUID(a.classId, b.classId) && a.block == b.block && a.on == b.on;
    }
};

using EffectStack = std::vector<EffectStep>;

// An effect with its default parameters.
EffectStep StepOf(const CatalogueEntry& entry);

// An effect as a user names it, with its "name=value" settings.
struct EffectWords
{
    std::string name;
    std::vector<std::string> settings;
};

// Throws WrongWords as RequireEntry and SetParameter do.
EffectStep StepOf(const std::vector<CatalogueEntry>& catalogue, const EffectWords& words);

// Sets one parameter from "name=value"; the value is a number or one of the parameter's named values. Throws WrongWords
// that names the parameters there are, or the range; the step is then unchanged.
void SetParameter(EffectStep& step, std::string_view assignment);

// How many rows away the stack's effects look, all together: a convolution takes its row's neighbours, and none looks
// farther.
inline int ReachOf(const EffectStack& stack)
{
    return static_cast<int>(stack.size());
}

// The steps that are switched on.
EffectStack SwitchedOn(EffectStack stack);

// "gamma=160", "red=60, green=-20, blue=0", or "" for an effect without parameters.
std::string SettingsText(const EffectStep& step);

// What a parameter takes: "45 to 220", or "both, vertical or horizontal" when only the named values are allowed.
std::string RangeOf(const vixavideofx::ParameterDescription& parameter);

// A value as the user would write it: its name where it has one, else the number.
std::string ShowValue(const vixavideofx::ParameterDescription& parameter, std::int32_t value);

} // namespace vixahost::effects
