#include "effects/kernels/Scalar.h"

#include "effects/kernels/Plan.h"

#include <algorithm>
#include <cstring>

namespace vixa::kernels::scalar {

namespace {

constexpr std::size_t pixelBytes = 4;
constexpr std::size_t pairBytes = 8;

constexpr std::uint8_t Clamp(int value) noexcept
{
    return static_cast<std::uint8_t>(std::clamp(value, 0, 255));
}

constexpr std::uint8_t ByteOf(std::uint32_t pixel, std::size_t byte) noexcept
{
    return static_cast<std::uint8_t>(pixel >> (8 * byte));
}

// The hue on a scale of 0 ... 255 for a full turn: red near 0, green near 85, blue near 170. Grey counts as 170.
std::uint8_t HueOf(int red, int green, int blue) noexcept
{
    const int highest = std::max({red, green, blue});
    const int lowest = std::min({red, green, blue});
    if (highest == lowest)
        return 170;

    int sector = 2, ahead = red, behind = green;
    if (highest == red)
        sector = 0, ahead = green, behind = blue;
    else if (highest == green)
        sector = 1, ahead = blue, behind = red;
    const int distance = std::abs(ahead - behind) * 42 / (highest - lowest);
    return static_cast<std::uint8_t>(85 * sector + (ahead < behind ? -distance : distance));
}

// Very dark and very light pixels have no colour worth changing.
bool IsColoured(int red, int green, int blue) noexcept
{
    const int sum = std::max({red, green, blue}) + std::min({red, green, blue});
    const int lightness = (sum * 255 + 255) / 510;
    return lightness >= 60 && lightness <= 200;
}

bool HueMatches(std::uint8_t hue, std::int32_t colour) noexcept
{
    switch (colour) {
    case 0:
        return hue >= 140 && hue <= 194;
    case 1:
        return hue >= 68 && hue <= 110;
    case 2:
        return hue < 24 || hue >= 231;
    default:
        return false;
    }
}

} // namespace

void Gamma(Frame frame, const GammaTable& table) noexcept
{
    for (std::size_t at = 0; at + pixelBytes <= frame.size(); at += pixelBytes) {
        for (std::size_t channel = 0; channel < 3; ++channel)
            frame[at + channel] = table.entries[frame[at + channel]];
    }
}

void Multiply(Frame frame, std::int32_t factor) noexcept
{
    const auto multiplier = static_cast<std::uint32_t>(MultiplierOf(factor));
    for (std::size_t at = 0; at + pixelBytes <= frame.size(); at += pixelBytes) {
        for (std::size_t channel = 0; channel < 3; ++channel) {
            // In 32 bits that wrap: a negative factor saturates every byte but 0.
            const std::uint32_t value = (frame[at + channel] * multiplier) >> 8;
            frame[at + channel] = static_cast<std::uint8_t>(std::min(value, std::uint32_t{255}));
        }
        frame[at + 3] = 0;
    }
}

void Invert(Frame frame, std::int32_t mask) noexcept
{
    if (mask == 0)
        return;
    const std::uint32_t pattern = InvertPattern(mask);
    for (std::size_t at = 0; at < frame.size() / pairBytes * pairBytes; ++at)
        frame[at] = Clamp(ByteOf(pattern, at % pixelBytes) - frame[at]);
}

void FilterColor(Frame frame, const FilterColorParameters& parameters) noexcept
{
    const int magnitude = ByteMagnitude(parameters.intensity);
    const int change = parameters.brighten ? magnitude : -magnitude;
    for (std::size_t at = 0; at + pixelBytes <= frame.size(); at += pixelBytes) {
        const int blue = frame[at], green = frame[at + 1], red = frame[at + 2];
        if (!IsColoured(red, green, blue) || !HueMatches(HueOf(red, green, blue), parameters.colour))
            continue;
        std::uint8_t& channel = frame[at + static_cast<std::size_t>(parameters.colour)];
        channel = Clamp(channel + change);
    }
}

void Add(Frame frame, const AddParameters& parameters) noexcept
{
    const AddPatterns patterns = AddPatternsOf(parameters);
    for (std::size_t at = 0; at < frame.size() / pairBytes * pairBytes; ++at) {
        const std::size_t byte = at % pixelBytes;
        frame[at] = Clamp(Clamp(frame[at] + ByteOf(patterns.add, byte)) - ByteOf(patterns.subtract, byte));
    }
}

void Convolve(Frame frame, std::int32_t width, std::int32_t height, const ConvolutionParameters& parameters,
              Frame scratch) noexcept
{
    const ConvolutionPlan plan = PlanConvolution(frame, width, height, parameters, scratch);
    if (plan.leaveAlone)
        return;

    const std::size_t rowBytes = plan.width * pixelBytes;
    // A picture below 3 x 3 is all border: no inner pixel is reached, and its rows are cleared like outermost ones. The
    // result replaces the frame row by row, so the rows above and at the one being written are kept as they were.
    std::uint8_t* above = scratch.data();
    std::uint8_t* middle = scratch.data() + rowBytes;
    std::memcpy(above, frame.data(), rowBytes);
    std::memset(frame.data(), 0, rowBytes);
    for (std::size_t y = 1; y + 1 < plan.height; ++y) {
        std::uint8_t* row = frame.data() + y * rowBytes;
        std::memcpy(middle, row, rowBytes);
        const std::uint8_t* rows[] = {above, middle, row + rowBytes};

        std::memset(row, 0, pixelBytes);
        for (std::size_t at = pixelBytes; at < rowBytes - pixelBytes; ++at) {
            std::int32_t sum = 0;
            for (std::size_t r = 0; r < 3; ++r) {
                for (std::size_t s = 0; s < 3; ++s)
                    sum += parameters.coefficients[3 * r + s] * rows[r][at + s * pixelBytes - pixelBytes];
            }
            row[at] = Clamp(sum / plan.divisor + plan.offset);
        }
        std::memset(row + rowBytes - pixelBytes, 0, pixelBytes);
        std::swap(above, middle);
    }
    std::memset(frame.data() + (plan.height - 1) * rowBytes, 0, rowBytes);
}

} // namespace vixa::kernels::scalar
