// Reading and changing the pixels of bottom-up pictures in memory. Portable, no allocation.
#pragma once

#include "bitmap/DrawLayout.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace vixa::bitmap {

// A picture's pixels: `height` rows of `stride` bytes, the bottom row first, pixels of `bitCount` bits. Whoever makes
// one vouches that `bytes` holds stride × height bytes and a row width × bitCount bits.
template <typename Byte>
struct BasicPixels
{
    std::span<Byte> bytes;
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::int32_t stride = 0;
    std::int32_t bitCount = 0;

    // The row that is number `row` in memory.
    std::span<Byte> StoredRow(std::int32_t row) const noexcept
    {
        return bytes.subspan(static_cast<std::size_t>(row) * static_cast<std::size_t>(stride),
                             static_cast<std::size_t>(stride));
    }
    // The row that is number `row` counted from the picture's top.
    std::span<Byte> RowFromTop(std::int32_t row) const noexcept { return StoredRow(height - 1 - row); }

    operator BasicPixels<const Byte>() const noexcept { return {bytes, width, height, stride, bitCount}; }
};
using Pixels = BasicPixels<const std::uint8_t>;
using WritablePixels = BasicPixels<std::uint8_t>;

// A colour value: red in the low byte, then green, then blue; the highest byte is 0.
using Color = std::uint32_t;
inline constexpr Color noColor = 0xFFFFFFFF;

// The colour at a column and a row counted from the top: of 24 and 32 bits its three bytes as a colour value, of 1 bit
// that bit (the highest bit of a byte comes first). noColor outside of the picture and at other depths.
Color PixelColor(const Pixels& pixels, std::int32_t x, std::int32_t y) noexcept;

// Whether a pixel of a 24- or 32-bit picture has the colour (the low 24 bits of `color`); false at other depths.
bool ContainsColor(const Pixels& pixels, Color color) noexcept;

// Gives every pixel of the key colour other's pixel at the same place, at 32 bits with its fourth byte. Both must have
// the same size and 24 or 32 bits.
void ReplaceKeyColor(const WritablePixels& pixels, const Pixels& other, Color key) noexcept;

// For each channel of a colour and each value v of a pixel: the value moved toward the colour by amount ÷ 255,
// (c × ⌊amount × 256 ÷ 255⌋ + v × (256 − amount)) >> 8.
struct TintTables
{
    std::array<std::uint8_t, 256> blue, green, red;
};
TintTables MakeTintTables(Color color, std::uint8_t amount) noexcept;

// Sends the colour bytes of a 32-bit picture's pixels within `rect` (rows from the top; what lies outside of the
// picture is left out) through the tables. With a mask, a 1-bit picture of the same size, only where its bit is set.
void Tint(const WritablePixels& pixels, const Rect& rect, const TintTables& tables, const Pixels* mask) noexcept;

// What the colour variation test found out.
struct ColorVariation
{
    bool reached = false;
    std::int32_t row = 0;   // number in memory of the row that reached the limit, from 0
    float variation = 0.0f; // mean deviation of the channels from their row's mean, 0 to 255
};
// Adds up, row after row in memory, how far the channel values of a 32-bit picture (in steps of 4) lie from their row's
// mean, until the sum divided by pixels and channels reaches `limit` (its integer part, modulo 256).
ColorVariation ColorVariationOf(const Pixels& pixels, double limit) noexcept;

} // namespace vixa::bitmap
