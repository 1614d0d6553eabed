#include "bench/KernelResult.h"

#include "effects/kernels/Kernels.h"

#include <cstdlib>
#include <string>
#include <vector>

namespace vixahost::bench {

void ApplyKernel(const effects::EffectStep& step, std::span<std::uint8_t> frame, int width, int height)
{
    const vixa::kernels::KernelSet& kernels = vixa::kernels::KernelsOf(vixa::kernels::Level::Scalar);
    const std::string& effect = step.name;
    const auto& block = step.block;
    if (effect == "Add pixel") {
        kernels.add(frame, {block[0], block[1], block[2]});
    } else if (effect == "Filter color") {
        kernels.filterColor(frame, {std::abs(block[0]), block[1], block[0] >= 0});
    } else if (effect == "Invert color") {
        kernels.invert(frame, block[0]);
    } else if (effect == "Multiply pixel") {
        kernels.multiply(frame, block[0]);
    } else if (effect == "Gamma correction") {
        if (block[0] != 100)
            kernels.gamma(frame, vixa::kernels::MakeGammaTable(block[0]));
    } else {
        vixa::kernels::ConvolutionParameters parameters;
        parameters.SetKind(block[0]);
        std::vector<std::uint8_t> scratch(vixa::kernels::ConvolutionScratchBytes(width));
        kernels.convolve(frame, width, height, parameters, scratch);
    }
}

} // namespace vixahost::bench
