// The effects with the settings that are measured, and what runs them.
#pragma once

#include "effects/kernels/Kernels.h"

#include <cstdint>
#include <functional>
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
    std::string effect; // as the table names it
    std::function<void(const kernels::KernelSet&, kernels::Frame, Size, kernels::Frame scratch)> run;
    std::vector<std::int32_t> block; // the effect's data block for the same settings
    std::int32_t kind = 0;           // of the convolutions
};

const std::vector<Case>& Cases();

} // namespace vixa::bench
