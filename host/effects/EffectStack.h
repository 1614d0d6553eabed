// The effects a picture goes through, in order, each with its own parameters.
#pragma once

#include "host/effects/EffectTable.h"

#include <vixavideofx/EffectParameters.h>

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vixahost::effects {

class EffectStep
{
public:
    // An effect with its default parameters. The entry must outlive the step.
    explicit EffectStep(const EffectEntry& entry);

    // Sets one parameter from "name=value"; the value is a number or one of the parameter's named values. Throws
    // WrongWords that names the parameters there are, or the range; the step is then unchanged.
    void Set(std::string_view assignment);

    // Takes a whole block, as a settings panel has written it.
    void SetBlock(std::span<const std::int32_t> newBlock) { block.assign(newBlock.begin(), newBlock.end()); }

    const EffectEntry& Effect() const noexcept { return *effect; }
    // The effect's data block, as its property set holds it.
    std::span<const std::int32_t> Block() const noexcept { return block; }
    // "gamma=160", "red=60, green=-20, blue=0", or "" for an effect without parameters.
    std::string Settings() const;

private:
    const EffectEntry* effect;
    std::vector<std::int32_t> block;
};

using EffectStack = std::vector<EffectStep>;

// The block with one parameter set from "name=value", as EffectStep::Set does it; the English name is for the
// complaint.
std::vector<std::int32_t> SetInBlock(std::string_view effectName, const GUID& effect, std::vector<std::int32_t> block,
                                     std::string_view assignment);

// What a parameter takes: "45 to 220", or "both, vertical or horizontal" when only the named values are allowed.
std::string RangeOf(const vixavideofx::ParameterDescription& parameter);

// A value as the user would write it: its name where it has one, else the number.
std::string ShowValue(const vixavideofx::ParameterDescription& parameter, std::int32_t value);

} // namespace vixahost::effects
