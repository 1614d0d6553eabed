#include "host/media/YuvPixels.h"

#include "host/media/DibSize.h"

#include <algorithm>

namespace vixahost::media {

namespace {

constexpr int fraction = 20;

// A quotient in 1/2^20, rounded to nearest.
constexpr std::int32_t Scaled(std::int64_t dividend, std::int64_t divisor)
{
    const std::int64_t twice = (dividend << (fraction + 1)) / divisor;
    return static_cast<std::int32_t>((twice + (twice < 0 ? -1 : 1)) / 2);
}

constexpr std::uint8_t Byte(std::int32_t scaled, int shift = fraction)
{
    return static_cast<std::uint8_t>(std::clamp((scaled + (1 << (shift - 1))) >> shift, 0, 255));
}

// Where the samples of a frame are: a pixel's brightness at row * yRow + column * yStep, its chroma at
// (row >> rows) * chromaRow + (column >> columns) * chromaStep.
struct Places
{
    std::size_t y = 0, u = 0, v = 0; // the first ones
    std::size_t yRow, yStep = 1, chromaRow = 0, chromaStep = 1;
    int columns = 0, rows = 0;
    std::size_t bytes;
};

Places PlacesOf(YuvLayout layout, std::size_t width, std::size_t height)
{
    const std::size_t pairs = (width + 1) / 2, pairsDown = (height + 1) / 2, plane = width * height;
    const std::size_t quarter = pairs * pairsDown;
    switch (layout) {
    case YuvLayout::Yuy2:
        return {0, 1, 3, pairs * 4, 2, pairs * 4, 4, 1, 0, pairs * 4 * height};
    case YuvLayout::Uyvy:
        return {1, 0, 2, pairs * 4, 2, pairs * 4, 4, 1, 0, pairs * 4 * height};
    case YuvLayout::I420:
        return {0, plane, plane + quarter, width, 1, pairs, 1, 1, 1, plane + 2 * quarter};
    case YuvLayout::Yv12:
        return {0, plane + quarter, plane, width, 1, pairs, 1, 1, 1, plane + 2 * quarter};
    case YuvLayout::Nv12:
        return {0, plane, plane + 1, width, 1, pairs * 2, 2, 1, 1, plane + 2 * quarter};
    case YuvLayout::I422:
        return {0, plane, plane + pairs * height, width, 1, pairs, 1, 1, 0, plane + 2 * pairs * height};
    case YuvLayout::I444:
        return {0, plane, 2 * plane, width, 1, width, 1, 0, 0, 3 * plane};
    case YuvLayout::Grey:
        break;
    }
    return {0, 0, 0, width, 1, 0, 0, 0, 0, plane};
}

} // namespace

YuvColours ColoursFor(const YuvChoice& choice, int width, int height) noexcept
{
    const YuvMatrix usual = width > 1279 || height > 576 ? YuvMatrix::Bt709 : YuvMatrix::Bt601;
    return {choice.matrix.value_or(usual), choice.range.value_or(YuvRange::Limited)};
}

std::string ColoursText(const YuvColours& colours)
{
    return std::string(colours.matrix == YuvMatrix::Bt709 ? "BT.709" : "BT.601") +
           (colours.range == YuvRange::Full ? ", full range" : ", limited range");
}

std::optional<std::size_t> YuvBytes(YuvLayout layout, std::int64_t width, std::int64_t height) noexcept
{
    if (!DibBytes(width, height, 32))
        return std::nullopt;
    return PlacesOf(layout, static_cast<std::size_t>(width), static_cast<std::size_t>(height < 0 ? -height : height))
        .bytes;
}

YuvPixels::YuvPixels(YuvLayout frames, const YuvColours& colours, int frameWidth, int frameHeight)
    : layout(frames), width(frameWidth), height(frameHeight)
{
    // In ten-thousandths.
    constexpr std::int64_t one = 10'000, white = 255;
    const std::int64_t kr = colours.matrix == YuvMatrix::Bt709 ? 2126 : 2990;
    const std::int64_t kb = colours.matrix == YuvMatrix::Bt709 ? 722 : 1140;
    const std::int64_t kg = one - kr - kb;
    const bool full = colours.range == YuvRange::Full;
    const std::int64_t levels = full ? 255 : 219, chromaLevels = full ? 255 : 224;
    const int blackLevel = full ? 0 : 16;
    for (int i = 0; i < 256; ++i) {
        const auto at = static_cast<std::size_t>(i);
        const std::int64_t chroma = white * (i - 128);
        brightness[at] = Scaled(white * (i - blackLevel), levels);
        redOfV[at] = Scaled(2 * (one - kr) * chroma, one * chromaLevels);
        blueOfU[at] = Scaled(2 * (one - kb) * chroma, one * chromaLevels);
        greenOfU[at] = -Scaled(2 * kb * (one - kb) * chroma, one * kg * chromaLevels);
        greenOfV[at] = -Scaled(2 * kr * (one - kr) * chroma, one * kg * chromaLevels);
    }
    black = blackLevel << fraction;
    const auto chromaOf = [&](std::int64_t weight, std::int64_t own) {
        return Scaled(weight * chromaLevels, 2 * (one - own) * 255);
    };
    toY = {Scaled(kr * levels, one * 255), Scaled(kg * levels, one * 255), Scaled(kb * levels, one * 255)};
    toU = {chromaOf(-kr, kb), chromaOf(-kg, kb), chromaOf(one - kb, kb)};
    toV = {chromaOf(one - kr, kr), chromaOf(-kg, kr), chromaOf(-kb, kr)};
}

void YuvPixels::ToRgb(std::span<const std::uint8_t> stored, std::span<std::uint8_t> frame) const noexcept
{
    const auto columns = static_cast<std::size_t>(width), rows = static_cast<std::size_t>(height);
    const Places places = PlacesOf(layout, columns, rows);
    const std::uint8_t none = 128;
    const bool grey = layout == YuvLayout::Grey;
    for (std::size_t row = 0; row < rows; ++row) {
        const std::uint8_t* y = stored.data() + places.y + row * places.yRow;
        const std::size_t chroma = (row >> places.rows) * places.chromaRow;
        const std::uint8_t* u = grey ? &none : stored.data() + places.u + chroma;
        const std::uint8_t* v = grey ? &none : stored.data() + places.v + chroma;
        std::uint8_t* out = frame.data() + (rows - 1 - row) * columns * 4;
        for (std::size_t group = 0; group < columns; u += places.chromaStep, v += places.chromaStep) {
            const std::int32_t red = redOfV[*v], green = greenOfU[*u] + greenOfV[*v], blue = blueOfU[*u];
            const std::size_t end = std::min(group + (std::size_t{1} << places.columns), columns);
            for (; group < end; ++group, y += places.yStep, out += 4) {
                const std::int32_t light = brightness[*y];
                out[0] = Byte(light + blue);
                out[1] = Byte(light + green);
                out[2] = Byte(light + red);
                out[3] = 0;
            }
        }
    }
}

void YuvPixels::FromRgb(std::span<const std::uint8_t> frame, std::span<std::uint8_t> stored) const noexcept
{
    const auto columns = static_cast<std::size_t>(width), rows = static_cast<std::size_t>(height);
    const Places places = PlacesOf(layout, columns, rows);
    const auto sum = [](const std::array<std::int32_t, 3>& weights, const std::array<std::int32_t, 3>& colour) {
        return weights[0] * colour[0] + weights[1] * colour[1] + weights[2] * colour[2];
    };
    for (std::size_t firstRow = 0; firstRow < rows; firstRow += std::size_t{1} << places.rows)
        for (std::size_t first = 0; first < columns; first += std::size_t{1} << places.columns) {
            const std::size_t endRow = std::min(firstRow + (std::size_t{1} << places.rows), rows);
            const std::size_t end = std::min(first + (std::size_t{1} << places.columns), columns);
            std::array<std::int32_t, 3> whole = {};
            for (std::size_t row = firstRow; row < endRow; ++row)
                for (std::size_t column = first; column < end; ++column) {
                    const std::uint8_t* const pixel = frame.data() + ((rows - 1 - row) * columns + column) * 4;
                    const std::array<std::int32_t, 3> colour = {pixel[2], pixel[1], pixel[0]};
                    stored[places.y + row * places.yRow + column * places.yStep] = Byte(sum(toY, colour) + black);
                    for (std::size_t channel = 0; channel < 3; ++channel)
                        whole[channel] += colour[channel];
                }
            if (layout == YuvLayout::Grey)
                continue;
            // One, two or four pixels: a division by shifting.
            const std::size_t pixels = (endRow - firstRow) * (end - first);
            const int shift = fraction + (pixels == 4 ? 2 : pixels == 2 ? 1 : 0);
            const std::size_t chroma =
                (firstRow >> places.rows) * places.chromaRow + (first >> places.columns) * places.chromaStep;
            const std::int32_t middle = 128 << shift; // and the sum of four is as large at most
            stored[places.u + chroma] = Byte(sum(toU, whole) + middle, shift);
            stored[places.v + chroma] = Byte(sum(toV, whole) + middle, shift);
        }
}

} // namespace vixahost::media
