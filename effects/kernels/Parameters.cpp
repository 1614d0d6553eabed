#include "effects/kernels/Parameters.h"

#include <algorithm>
#include <cmath>

namespace vixa::kernels {

GammaTable MakeGammaTable(std::int32_t gamma) noexcept
{
    const double exponent = gamma > 0 ? 100.0 / gamma : 0.01;
    GammaTable table{};
    table.entries[255] = 255;
    for (int i = 254; i > 0; --i) {
        const double value = 255.0 * std::pow(i / 255.0, exponent) + 0.5;
        table.entries[static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(std::min(static_cast<int>(value), 255));
    }
    return table;
}

const ConvolutionKernel* KernelOf(std::int32_t kind) noexcept
{
    if (kind < firstKind || kind > lastKind)
        return nullptr;
    return &convolutionKernels[static_cast<std::size_t>(kind - firstKind)];
}

void ConvolutionParameters::SetKind(std::int32_t newKind) noexcept
{
    kind = newKind;
    if (const ConvolutionKernel* kernel = KernelOf(newKind)) {
        coefficients = kernel->coefficients;
        hasKernel = true;
    }
}

} // namespace vixa::kernels
