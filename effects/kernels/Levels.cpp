// Which form of each kernel runs, and the step from checked parameters to a level's bare loops.
#include "effects/kernels/Plan.h"
#include "effects/kernels/Scalar.h"
#include "effects/kernels/VectorKernels.h"

#include <algorithm>
#include <limits>

namespace vixa::kernels {

namespace {

template <const VectorKernels& level>
void Gamma(Frame frame, const GammaTable& table) noexcept
{
    level.gamma(frame.data(), frame.size() / 4, table.entries.data());
}

template <const VectorKernels& level>
void Multiply(Frame frame, std::int32_t factor) noexcept
{
    const std::int32_t multiplier = MultiplierOf(factor);
    if (!FitsVectors(multiplier))
        return scalar::Multiply(frame, factor);
    level.multiply(frame.data(), frame.size() / 4, static_cast<std::uint32_t>(multiplier));
}

template <const VectorKernels& level>
void Invert(Frame frame, std::int32_t mask) noexcept
{
    if (mask != 0)
        level.invert(frame.data(), frame.size() / 8 * 2, InvertPattern(mask));
}

template <const VectorKernels& level>
void FilterColor(Frame frame, const FilterColorParameters& parameters) noexcept
{
    if (parameters.colour >= 0 && parameters.colour <= 2)
        level.filterColor(frame.data(), frame.size() / 4, parameters.colour, ByteMagnitude(parameters.intensity),
                          parameters.brighten);
}

template <const VectorKernels& level>
void Add(Frame frame, const AddParameters& parameters) noexcept
{
    const AddPatterns patterns = AddPatternsOf(parameters);
    level.add(frame.data(), frame.size() / 8 * 2, patterns.add, patterns.subtract);
}

// The plain form makes all rows at once.
std::size_t PlainConvolveRows(Frame frame, std::int32_t width, std::int32_t height,
                              const ConvolutionParameters& parameters, Frame scratch, std::size_t done,
                              std::size_t ready) noexcept
{
    const ConvolutionPlan plan = PlanConvolution(frame, width, height, parameters, scratch);
    if (plan.leaveAlone || done >= plan.height)
        return ready;
    if (ready < plan.height)
        return 0;
    scalar::Convolve(frame, width, height, parameters, scratch);
    return plan.height;
}

template <const VectorKernels& level>
std::size_t ConvolveRows(Frame frame, std::int32_t width, std::int32_t height, const ConvolutionParameters& parameters,
                         Frame scratch, std::size_t done, std::size_t ready) noexcept
{
    const ConvolutionPlan plan = PlanConvolution(frame, width, height, parameters, scratch);
    if (plan.leaveAlone || ready == 0 || done >= plan.height)
        return ready;
    // The vector forms know the ten kinds. A kernel that outlived its kind is rare and goes the plain way.
    const ConvolutionKernel* kernel = KernelOf(parameters.kind);
    if (!kernel || kernel->coefficients != parameters.coefficients || plan.height < 3)
        return PlainConvolveRows(frame, width, height, parameters, scratch, done, ready);
    return level.convolve(frame.data(), plan.width, plan.height, static_cast<ConvolutionKind>(parameters.kind),
                          scratch.data(), done, std::min(ready, plan.height));
}

template <const VectorKernels& level>
void Convolve(Frame frame, std::int32_t width, std::int32_t height, const ConvolutionParameters& parameters,
              Frame scratch) noexcept
{
    ConvolveRows<level>(frame, width, height, parameters, scratch, 0, std::numeric_limits<std::size_t>::max());
}

template <const VectorKernels& level>
void Points(std::span<const std::uint8_t> frame, std::uint8_t* to, std::span<const PointStep> steps,
            bool keepFourth) noexcept
{
    level.points(frame.data(), to, frame.size() / 4, steps.data(), steps.size(), keepFourth);
}

constexpr KernelSet scalarKernels = {scalar::Gamma, scalar::Multiply, scalar::Invert,    scalar::FilterColor,
                                     scalar::Add,   scalar::Convolve, PlainConvolveRows, nullptr};

template <const VectorKernels& level, bool runs = true>
constexpr KernelSet vectorKernels = {
    Gamma<level>, Multiply<level>, Invert<level>,       FilterColor<level>,
    Add<level>,   Convolve<level>, ConvolveRows<level>, runs ? Points<level> : nullptr};

} // namespace

Level HighestLevel() noexcept
{
    // These ask the processor and whether the operating system saves the wide registers.
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vl") &&
        __builtin_cpu_supports("avx512vbmi") && __builtin_cpu_supports("avx512vnni"))
        return Level::Avx512;
    if (__builtin_cpu_supports("avx2"))
        return Level::Avx2;
    return Level::Sse2;
}

const KernelSet& KernelsOf(Level level) noexcept
{
    switch (std::min(level, HighestLevel())) {
    case Level::Avx512:
        return vectorKernels<avx512Kernels>;
    case Level::Avx2:
        return vectorKernels<avx2Kernels>;
    case Level::Sse2:
        return vectorKernels<sse2Kernels, false>;
    default:
        return scalarKernels;
    }
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
