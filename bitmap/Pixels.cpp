#include "bitmap/Pixels.h"

#include <cmath>
#include <cstdlib>
#include <cstring>

namespace vixa::bitmap {

namespace {

constexpr std::size_t Index(std::int32_t value) noexcept
{
    return static_cast<std::size_t>(value);
}

// Colour values and pixels in memory hold their channels in opposite order.
constexpr std::uint32_t Swapped(Color color) noexcept
{
    return (color & 0xFF) << 16 | (color & 0xFF00) | (color >> 16 & 0xFF);
}

// The three colour bytes of a 24- or 32-bit pixel as they stand in memory: blue lowest.
std::uint32_t StoredColor(const std::uint8_t* pixel) noexcept
{
    return std::uint32_t{pixel[0]} | std::uint32_t{pixel[1]} << 8 | std::uint32_t{pixel[2]} << 16;
}

bool BitAt(std::span<const std::uint8_t> row, std::int32_t x) noexcept
{
    return (row[Index(x / 8)] >> (7 - x % 8) & 1) != 0;
}

// 3 or 4 for the depths whose pixels are whole colours, else 0.
std::size_t BytesOfColorPixel(std::int32_t bitCount) noexcept
{
    return bitCount == 24 || bitCount == 32 ? static_cast<std::size_t>(bitCount / 8) : 0;
}

std::uint8_t LowByteOfIntegerPart(double value) noexcept
{
    if (!(std::abs(value) < 2147483648.0))
        return 0;
    return static_cast<std::uint8_t>(static_cast<std::int32_t>(value));
}

// Σ count × |level − mean| × 4 of one row, over its three colour channels.
std::uint64_t RowDeviation(std::span<const std::uint8_t> row, std::int32_t width) noexcept
{
    constexpr std::size_t levels = 64;
    std::array<std::array<std::uint32_t, levels>, 3> counts = {};
    std::array<std::uint64_t, 3> sums = {};
    for (std::size_t x = 0; x < Index(width); ++x) {
        for (std::size_t channel = 0; channel < 3; ++channel) {
            const std::uint32_t level = row[x * 4 + channel] >> 2;
            ++counts[channel][level];
            sums[channel] += level;
        }
    }
    std::uint64_t deviation = 0;
    for (std::size_t channel = 0; channel < 3; ++channel) {
        const auto mean = static_cast<int>(sums[channel] / static_cast<std::uint64_t>(width));
        for (std::size_t level = 0; level < levels; ++level)
            deviation += std::uint64_t{counts[channel][level]} *
                         static_cast<std::uint64_t>(std::abs(static_cast<int>(level) - mean));
    }
    return deviation * 4;
}

} // namespace

Color PixelColor(const Pixels& pixels, std::int32_t x, std::int32_t y) noexcept
{
    if (x < 0 || y < 0 || x >= pixels.width || y >= pixels.height)
        return noColor;
    const auto row = pixels.RowFromTop(y);
    if (pixels.bitCount == 1)
        return BitAt(row, x) ? 1 : 0;
    const std::size_t step = BytesOfColorPixel(pixels.bitCount);
    return step == 0 ? noColor : Swapped(StoredColor(&row[Index(x) * step]));
}

bool ContainsColor(const Pixels& pixels, Color color) noexcept
{
    const std::size_t step = BytesOfColorPixel(pixels.bitCount);
    if (step == 0)
        return false;
    const std::uint32_t wanted = Swapped(color);
    for (std::int32_t y = 0; y < pixels.height; ++y) {
        const auto row = pixels.StoredRow(y);
        for (std::size_t x = 0; x < Index(pixels.width); ++x)
            if (StoredColor(&row[x * step]) == wanted)
                return true;
    }
    return false;
}

void ReplaceKeyColor(const WritablePixels& pixels, const Pixels& other, Color key) noexcept
{
    const std::size_t step = BytesOfColorPixel(pixels.bitCount);
    if (step == 0 || other.bitCount != pixels.bitCount || other.width != pixels.width || other.height != pixels.height)
        return;
    const std::uint32_t wanted = Swapped(key);
    for (std::int32_t y = 0; y < pixels.height; ++y) {
        const auto row = pixels.StoredRow(y);
        const auto from = other.StoredRow(y);
        for (std::size_t at = 0; at < Index(pixels.width) * step; at += step)
            if (StoredColor(&row[at]) == wanted)
                std::memmove(&row[at], &from[at], step);
    }
}

TintTables MakeTintTables(Color color, std::uint8_t amount) noexcept
{
    const std::uint32_t towards = amount * 256u / 255u;
    const std::uint32_t stays = 256u - amount;
    const auto fill = [&](std::array<std::uint8_t, 256>& table, std::uint32_t component) {
        for (std::uint32_t value = 0; value < 256; ++value)
            table[value] = static_cast<std::uint8_t>((component * towards + value * stays) >> 8);
    };
    TintTables tables;
    fill(tables.red, color & 0xFF);
    fill(tables.green, color >> 8 & 0xFF);
    fill(tables.blue, color >> 16 & 0xFF);
    return tables;
}

void Tint(const WritablePixels& pixels, const Rect& rect, const TintTables& tables, const Pixels* mask) noexcept
{
    const Rect part = Intersect(rect, {0, 0, pixels.width, pixels.height});
    for (std::int32_t y = part.top; y < part.bottom; ++y) {
        const auto row = pixels.RowFromTop(y);
        const auto maskRow = mask ? mask->RowFromTop(y) : std::span<const std::uint8_t>();
        for (std::int32_t x = part.left; x < part.right; ++x) {
            if (mask && !BitAt(maskRow, x))
                continue;
            std::uint8_t* const pixel = &row[Index(x) * 4];
            pixel[0] = tables.blue[pixel[0]];
            pixel[1] = tables.green[pixel[1]];
            pixel[2] = tables.red[pixel[2]];
        }
    }
}

ColorVariation ColorVariationOf(const Pixels& pixels, double limit) noexcept
{
    const int threshold = LowByteOfIntegerPart(limit);
    const auto total = static_cast<float>(std::int64_t{pixels.width} * pixels.height);
    ColorVariation result;
    for (std::int32_t y = 0; y < pixels.height; ++y) {
        const auto deviation = static_cast<float>(RowDeviation(pixels.StoredRow(y), pixels.width));
        result.variation = static_cast<float>(result.variation + deviation / total / 3.0);
        result.row = y;
        if (static_cast<int>(result.variation) >= threshold) {
            result.reached = true;
            return result;
        }
    }
    return result;
}

} // namespace vixa::bitmap
