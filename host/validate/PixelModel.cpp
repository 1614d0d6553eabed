#include "host/validate/PixelModel.h"

#include <vixavideofx/ClassIds.h>
#include <vixavideofx/DataBlocks.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

namespace vixahost::validate {

using namespace vixavideofx;

namespace {

using Frame = std::vector<std::uint8_t>;

std::uint8_t Byte(int value)
{
    return static_cast<std::uint8_t>(std::clamp(value, 0, 255));
}

void Add(Frame& frame, std::span<const std::int32_t> block)
{
    const int blueGreenRed[3] = {block[2], block[1], block[0]};
    for (std::size_t i = 0; i < frame.size() / 8 * 8; ++i)
        if (i % 4 != 3)
            frame[i] = Byte(frame[i] + blueGreenRed[i % 4]);
}

void Multiply(Frame& frame, int percent)
{
    const int m = percent * 256 / 100;
    for (std::size_t i = 0; i < frame.size() / 4 * 4; ++i)
        frame[i] = i % 4 == 3 ? std::uint8_t{0} : Byte(frame[i] * m >> 8);
}

void Gamma(Frame& frame, int hundredths)
{
    if (hundredths == 100)
        return;
    const double exponent = hundredths > 0 ? 100.0 / hundredths : 0.01;
    for (std::size_t i = 0; i < frame.size() / 4 * 4; ++i)
        if (i % 4 != 3 && frame[i] != 0 && frame[i] != 255)
            frame[i] = Byte(static_cast<int>(255.0 * std::pow(frame[i] / 255.0, exponent) + 0.5));
}

void Invert(Frame& frame, int mask)
{
    if (mask == 0)
        return;
    for (std::size_t i = 0; i < frame.size() / 8 * 8; ++i)
        frame[i] = i % 4 != 3 && (mask >> (i % 4) & 1) ? static_cast<std::uint8_t>(255 - frame[i]) : std::uint8_t{0};
}

// 256 steps for a full turn: red near 0, green near 85, blue near 170, which also stands for grey.
int HueOf(int blue, int green, int red)
{
    const int largest = std::max({blue, green, red}), spread = largest - std::min({blue, green, red});
    if (spread == 0)
        return 170;
    if (largest == red)
        return (green - blue) * 42 / spread & 255;
    if (largest == green)
        return 85 + (blue - red) * 42 / spread;
    return 170 + (red - green) * 42 / spread;
}

void FilterColour(Frame& frame, int intensity, int colour)
{
    for (std::size_t i = 0; i + 4 <= frame.size(); i += 4) {
        const int blue = frame[i], green = frame[i + 1], red = frame[i + 2];
        const int sum = std::max({blue, green, red}) + std::min({blue, green, red});
        const int lightness = (sum * 255 + 255) / 510, hue = HueOf(blue, green, red);
        const bool matches = colour == FilterColorBlock::Blue    ? hue >= 140 && hue <= 194
                             : colour == FilterColorBlock::Green ? hue >= 68 && hue <= 110
                             : colour == FilterColorBlock::Red   ? hue < 24 || hue >= 231
                                                                 : false;
        if (matches && lightness >= 60 && lightness <= 200)
            frame[i + static_cast<std::size_t>(colour)] = Byte(frame[i + static_cast<std::size_t>(colour)] + intensity);
    }
}

struct Kernel
{
    std::array<int, 9> weights; // lowest address first
    int divisor = 1, offset = 0;
};

constexpr Kernel kernels[] = {
    {{-1, -1, -1, -1, 8, -1, -1, -1, -1}},  {{-1, -1, 0, -1, 0, 1, 0, 1, 1}, 1, 128},
    {{0, -1, 0, -1, 9, -1, 0, -1, 0}, 5},   {{-1, -1, -1, -1, 9, -1, -1, -1, -1}},
    {{-1, 0, -1, 0, 7, 0, -1, 0, -1}, 3},   {{0, 1, 0, 1, -4, 1, 0, 1, 0}},
    {{-1, 0, 0, 0, 1, 0, 0, 0, 0}, 1, 128}, {{11, 11, 11, 11, 11, 11, 11, 11, 11}, 99},
    {{0, -1, 0, 0, 1, 0, 0, 0, 0}, 1, 128}, {{0, 0, 0, -1, 1, 0, 0, 0, 0}, 1, 128},
};

Frame Convolve(const Frame& frame, int kind, int width, int height)
{
    const Kernel& kernel = kernels[kind - 1];
    Frame result(frame.size(), 0); // the border stays so
    for (int y = 1; y + 1 < height; ++y)
        for (int x = 4; x + 4 < width * 4; ++x) {
            int sum = 0;
            for (int k = 0; k < 9; ++k)
                sum += kernel.weights[static_cast<std::size_t>(k)] *
                       frame[static_cast<std::size_t>((y + k / 3 - 1) * width * 4 + x + (k % 3 - 1) * 4)];
            result[static_cast<std::size_t>(y * width * 4 + x)] = Byte(sum / kernel.divisor + kernel.offset);
        }
    return result;
}

} // namespace

std::vector<std::uint8_t> ExpectedFrame(const GUID& effect, std::span<const std::int32_t> block, Frame frame, int width,
                                        int height)
{
    if (effect == CLSID_AddPixel)
        Add(frame, block);
    else if (effect == CLSID_MultiplyPixel)
        Multiply(frame, block[0]);
    else if (effect == CLSID_GammaCorrection)
        Gamma(frame, block[0]);
    else if (effect == CLSID_InvertColor)
        Invert(frame, block[0]);
    else if (effect == CLSID_FilterColor)
        FilterColour(frame, block[0], block[1]);
    else
        return Convolve(frame, block[0], width, std::abs(height));
    return frame;
}

} // namespace vixahost::validate
