// The effects with the settings that are measured, and what runs them.
#pragma once

#include "effects/kernels/Step.h"

#include <cstdint>
#include <string>
#include <vector>

namespace vixa::bench {

struct Size
{
    int width;
    int height;
};

inline constexpr Size sizes[] = {{640, 480}, {1280, 720}, {1920, 1080}, {3840, 2160}, {7680, 4320}};

struct Case
{
    std::string effect;                 // as the table names it
    kernels::StepParameters parameters; // of a convolution without its picture
    std::vector<std::int32_t> block;    // the effect's data block for the same settings
    std::int32_t kind = 0;              // of the convolutions

    // The effect over a whole frame. `scratch` is for a convolution's rows.
    kernels::Step StepFor(const kernels::KernelSet& set, kernels::Frame frame, Size size, kernels::Frame scratch) const;
};

const std::vector<Case>& Cases();

// Effects that an editor stacks, by the names of their cases in order.
struct Stack
{
    std::string name;
    std::vector<std::string> effects;
};

const std::vector<Stack>& Stacks();

// Throws std::invalid_argument for a name that no case has.
const Case& CaseNamed(const std::string& effect);

} // namespace vixa::bench
