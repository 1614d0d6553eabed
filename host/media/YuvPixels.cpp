#include "host/media/YuvPixels.h"

#include "host/media/DibSize.h"

#include <algorithm>
#include <bit>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace vixahost::media {

namespace {

constexpr int fraction = 20;

// A quotient in 1/2^20, rounded to nearest.
constexpr std::int32_t Scaled(std::int64_t dividend, std::int64_t divisor)
{
    const std::int64_t twice = (dividend << (fraction + 1)) / divisor;
    return static_cast<std::int32_t>((twice + (twice < 0 ? -1 : 1)) / 2);
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

namespace {

// Rows are worked on in pieces of this many pixels, whose loops have one length, so that compilers make vectors of
// them.
constexpr std::size_t piece = 64;

using Lane = std::array<std::int32_t, piece>;
using Samples = std::array<std::uint8_t, piece>;
using Pixels = std::array<std::uint32_t, piece>; // as they lie in memory, blue in the lowest byte
static_assert(std::endian::native == std::endian::little);

struct Colours
{
    Lane red = {}, green = {}, blue = {};
};

#if defined(__SSE2__)
// Sixteen bits for each of eight sums; what comes out fits. The packing of vectors clamps.
__m128i Rounded(const std::int32_t* sums, int shift)
{
    const __m128i half = _mm_set1_epi32(1 << (shift - 1)), by = _mm_cvtsi32_si128(shift);
    const auto* const in = reinterpret_cast<const __m128i*>(sums);
    return _mm_packs_epi32(_mm_sra_epi32(_mm_add_epi32(_mm_loadu_si128(in), half), by),
                           _mm_sra_epi32(_mm_add_epi32(_mm_loadu_si128(in + 1), half), by));
}

void Narrow(const Lane& scaled, Samples& bytes, int shift = fraction)
{
    for (std::size_t i = 0; i < piece; i += 16)
        _mm_storeu_si128(reinterpret_cast<__m128i*>(&bytes[i]),
                         _mm_packus_epi16(Rounded(&scaled[i], shift), Rounded(&scaled[i + 8], shift)));
}
#else
void Narrow(const Lane& scaled, Samples& bytes, int shift = fraction)
{
    for (std::size_t i = 0; i < piece; ++i)
        bytes[i] = static_cast<std::uint8_t>(std::clamp((scaled[i] + (1 << (shift - 1))) >> shift, 0, 255));
}
#endif

void Join(const Colours& scaled, Pixels& pixels)
{
    Samples red, green, blue;
    Narrow(scaled.red, red);
    Narrow(scaled.green, green);
    Narrow(scaled.blue, blue);
    for (std::size_t i = 0; i < piece; ++i)
        pixels[i] = std::uint32_t{blue[i]} | std::uint32_t{green[i]} << 8 | std::uint32_t{red[i]} << 16;
}

// A piece's brightness, and what its chroma adds.
void AddLight(const Lane& light, Colours& sums)
{
    for (std::size_t i = 0; i < piece; ++i) {
        sums.red[i] += light[i];
        sums.green[i] += light[i];
        sums.blue[i] += light[i];
    }
}

void Split(const Pixels& pixels, Colours& colours)
{
    for (std::size_t i = 0; i < piece; ++i) {
        colours.blue[i] = static_cast<std::int32_t>(pixels[i] & 0xFF);
        colours.green[i] = static_cast<std::int32_t>(pixels[i] >> 8 & 0xFF);
        colours.red[i] = static_cast<std::int32_t>(pixels[i] >> 16 & 0xFF);
    }
}

void Add(Colours& sums, const Colours& colours)
{
    for (std::size_t i = 0; i < piece; ++i) {
        sums.red[i] += colours.red[i];
        sums.green[i] += colours.green[i];
        sums.blue[i] += colours.blue[i];
    }
}

void Double(Colours& sums)
{
    Add(sums, Colours(sums));
}

// Two that lie beside each other become one, in the first half.
void AddPairs(Lane& sums)
{
    for (std::size_t i = 0; i < piece / 2; ++i)
        sums[i] = sums[2 * i] + sums[2 * i + 1];
}

void Weigh(const Colours& colours, const std::array<std::int32_t, 3>& weights, std::int32_t offset, Lane& sums)
{
    for (std::size_t i = 0; i < piece; ++i)
        sums[i] = weights[0] * colours.red[i] + weights[1] * colours.green[i] + weights[2] * colours.blue[i] + offset;
}

void Store(const Samples& samples, std::size_t count, std::uint8_t* to, std::size_t step)
{
    for (std::size_t i = 0; i < count; ++i)
        to[i * step] = samples[i];
}

} // namespace

void YuvPixels::ToRgb(std::span<const std::uint8_t> stored, std::span<std::uint8_t> frame) const noexcept
{
    const auto columns = static_cast<std::size_t>(width), rows = static_cast<std::size_t>(height);
    const Places places = PlacesOf(layout, columns, rows);
    const std::uint8_t none = 128;
    const bool grey = layout == YuvLayout::Grey;
    Colours sums;
    Lane light = {};
    Pixels pixels;
    for (std::size_t row = 0; row < rows; ++row) {
        const std::uint8_t* y = stored.data() + places.y + row * places.yRow;
        const std::size_t chroma = (row >> places.rows) * places.chromaRow;
        const std::uint8_t* u = grey ? &none : stored.data() + places.u + chroma;
        const std::uint8_t* v = grey ? &none : stored.data() + places.v + chroma;
        std::uint8_t* out = frame.data() + (rows - 1 - row) * columns * 4;
        for (std::size_t first = 0; first < columns; first += piece, out += piece * 4) {
            const std::size_t count = std::min(piece, columns - first);
            for (std::size_t i = 0; i < count; ++i, y += places.yStep)
                light[i] = brightness[*y];
            const std::size_t shared = std::size_t{1} << places.columns;
            for (std::size_t i = 0; i < count; i += shared, u += places.chromaStep, v += places.chromaStep) {
                sums.red[i] = redOfV[*v];
                sums.green[i] = greenOfU[*u] + greenOfV[*v];
                sums.blue[i] = blueOfU[*u];
                if (shared == 2) { // the piece has room for both
                    sums.red[i + 1] = sums.red[i];
                    sums.green[i + 1] = sums.green[i];
                    sums.blue[i + 1] = sums.blue[i];
                }
            }
            AddLight(light, sums);
            Join(sums, pixels);
            std::memcpy(out, pixels.data(), count * 4);
        }
    }
}

void YuvPixels::FromRgb(std::span<const std::uint8_t> frame, std::span<std::uint8_t> stored) const noexcept
{
    const auto columns = static_cast<std::size_t>(width), rows = static_cast<std::size_t>(height);
    const Places places = PlacesOf(layout, columns, rows);
    const int shift = fraction + places.columns + places.rows;
    const std::int32_t middle = 128 << shift; // and the sum of four is as large at most
    Pixels pixels = {};
    Colours colours;
    Lane sums;
    Samples samples;
    for (std::size_t firstRow = 0; firstRow < rows; firstRow += std::size_t{1} << places.rows)
        for (std::size_t first = 0; first < columns; first += piece) {
            const std::size_t count = std::min(piece, columns - first);
            const std::size_t endRow = std::min(firstRow + (std::size_t{1} << places.rows), rows);
            Colours whole;
            for (std::size_t row = firstRow; row < endRow; ++row) {
                std::memcpy(pixels.data(), frame.data() + ((rows - 1 - row) * columns + first) * 4, count * 4);
                // What stands alone counts twice, so that all chroma has one divisor.
                if (count % 2 != 0)
                    pixels[count] = pixels[count - 1];
                Split(pixels, colours);
                Weigh(colours, toY, black, sums);
                Narrow(sums, samples);
                Store(samples, count, stored.data() + places.y + row * places.yRow + first * places.yStep,
                      places.yStep);
                Add(whole, colours);
            }
            if (layout == YuvLayout::Grey)
                continue;
            if (endRow - firstRow < std::size_t{1} << places.rows)
                Double(whole);
            if (places.columns > 0) {
                AddPairs(whole.red);
                AddPairs(whole.green);
                AddPairs(whole.blue);
            }
            const std::size_t chroma =
                (firstRow >> places.rows) * places.chromaRow + (first >> places.columns) * places.chromaStep;
            const std::size_t chromaCount = (count + static_cast<std::size_t>(places.columns)) >> places.columns;
            Weigh(whole, toU, middle, sums);
            Narrow(sums, samples, shift);
            Store(samples, chromaCount, stored.data() + places.u + chroma, places.chromaStep);
            Weigh(whole, toV, middle, sums);
            Narrow(sums, samples, shift);
            Store(samples, chromaCount, stored.data() + places.v + chroma, places.chromaStep);
        }
}

} // namespace vixahost::media
