// One effect with all that it needs for a frame. Like the kernels this needs no C++ run-time library.
#pragma once

#include "effects/kernels/Kernels.h"

#include <cstdint>
#include <variant>

namespace vixa::kernels {

struct MultiplyParameters
{
    std::int32_t factor;
};

struct InvertParameters
{
    std::int32_t mask;
};

// A convolution with what it needs beside its kernel. Scratch is its own until the chain has run.
struct PictureConvolution
{
    std::int32_t width;
    std::int32_t height;
    ConvolutionParameters parameters;
    Frame scratch;
};

using StepParameters = std::variant<GammaTable, MultiplyParameters, InvertParameters, FilterColorParameters,
                                    AddParameters, PictureConvolution>;

// One effect: which bytes it is given, and what it does to them.
struct Step
{
    const KernelSet* kernels;
    Frame frame;
    StepParameters parameters;
};

// The whole step at once.
void RunStep(const Step& step) noexcept;

} // namespace vixa::kernels
