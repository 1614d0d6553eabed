// Which form of each kernel runs.
#include "effects/kernels/Kernels.h"
#include "effects/kernels/Scalar.h"

#include <algorithm>

namespace vixa::kernels {

namespace {

constexpr KernelSet scalarKernels = {scalar::Gamma,       scalar::Multiply, scalar::Invert,
                                     scalar::FilterColor, scalar::Add,      scalar::Convolve};

} // namespace

Level HighestLevel() noexcept
{
    return Level::Scalar;
}

const KernelSet& KernelsOf(Level level) noexcept
{
    switch (std::min(level, HighestLevel())) {
    default:
        return scalarKernels;
    }
}

const KernelSet& BestKernels(Level ceiling) noexcept
{
    return KernelsOf(ceiling);
}

const char* NameOf(Level level) noexcept
{
    switch (level) {
    case Level::Sse2:
        return "SSE2";
    case Level::Avx2:
        return "AVX2";
    case Level::Avx512:
        return "AVX-512";
    default:
        return "scalar";
    }
}

} // namespace vixa::kernels
