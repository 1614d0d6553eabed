// What the kernel tests share: frames from pixels, seeded contents, levels to run through.
#pragma once

#include "effects/kernels/Kernels.h"

#include <cstdint>
#include <random>
#include <vector>

namespace vixa::kernels::test {

using Bytes = std::vector<std::uint8_t>;

// The levels that this machine can run.
inline std::vector<Level> AvailableLevels()
{
    std::vector<Level> levels;
    for (int level = 0; level <= static_cast<int>(HighestLevel()); ++level)
        levels.push_back(static_cast<Level>(level));
    return levels;
}

inline Bytes RandomBytes(std::size_t size, std::uint32_t seed)
{
    std::mt19937 random(seed);
    Bytes bytes(size);
    for (auto& byte : bytes)
        byte = static_cast<std::uint8_t>(random());
    return bytes;
}

inline ConvolutionParameters ParametersOfKind(std::int32_t kind)
{
    ConvolutionParameters parameters;
    parameters.SetKind(kind);
    return parameters;
}

inline void Convolve(const KernelSet& kernels, Frame frame, std::int32_t width, std::int32_t height,
                     const ConvolutionParameters& parameters)
{
    Bytes scratch(ConvolutionScratchBytes(width));
    kernels.convolve(frame, width, height, parameters, scratch);
}

} // namespace vixa::kernels::test
