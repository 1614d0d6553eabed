#include "effects/kernels/Plan.h"

#include "effects/kernels/VectorKernels.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <numeric>

namespace vixa::kernels {

namespace {

constexpr std::uint32_t InByte(std::uint32_t value, int byte) noexcept
{
    return value << (8 * byte);
}

} // namespace

std::uint8_t ByteMagnitude(std::int32_t value) noexcept
{
    return static_cast<std::uint8_t>(std::min<std::int64_t>(std::abs(std::int64_t{value}), 255));
}

std::int32_t MultiplierOf(std::int32_t factor) noexcept
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(factor) * 256u) / 100;
}

bool FitsVectors(std::int32_t multiplier) noexcept
{
    return multiplier >= 0 && multiplier <= 32767;
}

std::uint32_t InvertPattern(std::int32_t mask) noexcept
{
    std::uint32_t pattern = 0;
    for (int channel = 0; channel < 3; ++channel) {
        if (mask & (1 << channel))
            pattern |= InByte(0xFF, channel);
    }
    return pattern;
}

AddPatterns AddPatternsOf(const AddParameters& parameters) noexcept
{
    AddPatterns patterns;
    const std::int32_t deltas[] = {parameters.blue, parameters.green, parameters.red};
    for (int channel = 0; channel < 3; ++channel)
        (deltas[channel] < 0 ? patterns.subtract : patterns.add) |= InByte(ByteMagnitude(deltas[channel]), channel);
    return patterns;
}

namespace {

// As PlanPoint says, for each effect.
struct PlanOf
{
    PointStep& point;

    bool operator()(const GammaTable& table) const noexcept
    {
        point.kind = PointKind::Gamma;
        point.table = table.entries.data();
        return true;
    }
    bool operator()(const MultiplyParameters& parameters) const noexcept
    {
        const std::int32_t multiplier = MultiplierOf(parameters.factor);
        point.kind = PointKind::Multiply;
        point.first = static_cast<std::uint32_t>(multiplier);
        return FitsVectors(multiplier);
    }
    bool operator()(const InvertParameters& parameters) const noexcept
    {
        point.kind = PointKind::Invert;
        point.first = InvertPattern(parameters.mask);
        return parameters.mask != 0;
    }
    bool operator()(const FilterColorParameters& parameters) const noexcept
    {
        point.kind = PointKind::FilterColor;
        point.colour = static_cast<std::uint8_t>(parameters.colour);
        point.brighten = parameters.brighten;
        point.first = ByteMagnitude(parameters.intensity);
        return parameters.colour >= 0 && parameters.colour <= 2;
    }
    bool operator()(const AddParameters& parameters) const noexcept
    {
        const AddPatterns patterns = AddPatternsOf(parameters);
        point.kind = PointKind::Add;
        point.first = patterns.add;
        point.second = patterns.subtract;
        return true;
    }
    bool operator()(const PictureConvolution&) const noexcept { return false; }
};

} // namespace

bool PlanPoint(const StepParameters& parameters, PointStep& point) noexcept
{
    return std::visit(PlanOf{point}, parameters);
}

ConvolutionPlan PlanConvolution(Frame frame, std::int32_t width, std::int32_t height,
                                const ConvolutionParameters& parameters, Frame scratch) noexcept
{
    ConvolutionPlan plan;
    const std::int64_t rows = std::abs(std::int64_t{height});
    if (!parameters.hasKernel || width < 1 || rows < 1)
        return plan;
    // At most 2^31 x 2^31 pixels, so the comparison is made in pixels: four times the product would not fit.
    if (static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(rows) > frame.size() / 4)
        return plan;
    if (scratch.size() < ConvolutionScratchBytes(width))
        return plan;

    plan.width = static_cast<std::size_t>(width);
    plan.height = static_cast<std::size_t>(rows);
    plan.leaveAlone = false;
    if (const ConvolutionKernel* kernel = KernelOf(parameters.kind)) {
        const auto sum = std::accumulate(parameters.coefficients.begin(), parameters.coefficients.end(), 0);
        plan.divisor = kernel->divides && sum != 0 ? sum : 1;
        plan.offset = kernel->offsets ? 128 : 0;
    }
    return plan;
}

std::size_t ConvolutionScratchBytes(std::int32_t width) noexcept
{
    // The scalar form keeps two rows. The vector forms keep two sums of 16 bits for each byte of a row, by whole
    // vectors, and begin with one row's copy.
    const std::uint64_t row = 4 * static_cast<std::uint64_t>(width);
    const std::uint64_t bytes = width < 1 ? 0 : 5 * row + 6 * widestVector;
    return static_cast<std::size_t>(std::min<std::uint64_t>(bytes, std::numeric_limits<std::size_t>::max()));
}

} // namespace vixa::kernels
