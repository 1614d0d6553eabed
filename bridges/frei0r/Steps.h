// What the kernels are told of each effect's data block, by the effect's name in vixavideofx::descriptions. A
// convolution's size and scratch are left to who has the frame.
#pragma once

#include "effects/kernels/Step.h"

#include <vixavideofx/DataBlocks.h>

#include <cstdlib>

namespace vixa::frei0r::steps {

inline kernels::StepParameters AddPixel(const vixavideofx::AddBlock& block) noexcept
{
    return kernels::AddParameters{block.redDelta, block.greenDelta, block.blueDelta};
}
inline kernels::StepParameters FilterColor(const vixavideofx::FilterColorBlock& block) noexcept
{
    return kernels::FilterColorParameters{std::abs(block.intensity), block.colour, block.intensity >= 0};
}
inline kernels::StepParameters InvertColor(const vixavideofx::InvertBlock& block) noexcept
{
    return kernels::InvertParameters{block.mask};
}
inline kernels::StepParameters MultiplyPixel(const vixavideofx::MultiplyBlock& block) noexcept
{
    return kernels::MultiplyParameters{block.factor};
}
inline kernels::StepParameters GammaCorrection(const vixavideofx::GammaBlock& block) noexcept
{
    return kernels::MakeGammaTable(block.gamma);
}
inline kernels::StepParameters Convolution(const vixavideofx::ConvolutionBlock& block) noexcept
{
    kernels::PictureConvolution convolution{};
    convolution.parameters.SetKind(block.kind);
    return convolution;
}
inline constexpr auto &DetectEdges = Convolution, &Emboss = Convolution, &EnhanceDetails = Convolution,
                      &EnhanceEdges = Convolution, &EnhanceFocus = Convolution, &LightEdges = Convolution,
                      &ShiftEdges = Convolution, &SoftenFilter = Convolution;

} // namespace vixa::frei0r::steps
