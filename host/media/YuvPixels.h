// Frames of YUV, 8 bits a sample, to and from the 32-bit RGB of the graph. Portable.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace vixahost::media {

// How the samples lie. Rows go from the picture's top to its bottom, planes follow each other without padding, and
// where a pair or block of pixels shares its chroma, an odd last column or row has a sample of its own.
enum class YuvLayout : std::uint8_t
{
    Yuy2, // Y U Y V, chroma for pairs
    Uyvy, // U Y V Y, the same
    I420, // planes Y, U, V, chroma for blocks of 2 x 2
    Yv12, // planes Y, V, U, the same
    Nv12, // planes Y and UVUV..., the same
    I422, // planes Y, U, V, chroma for pairs
    I444, // planes Y, U, V of one size
    Grey, // Y alone
};

enum class YuvMatrix : std::uint8_t
{
    Bt601,
    Bt709,
};

enum class YuvRange : std::uint8_t
{
    Limited, // Y from 16 to 235, U and V from 16 to 240
    Full,    // 0 to 255
};

struct YuvColours
{
    YuvMatrix matrix;
    YuvRange range;

    bool operator==(const YuvColours&) const = default;
};

// What somebody asked for; what is empty follows the frames.
struct YuvChoice
{
    std::optional<YuvMatrix> matrix = {};
    std::optional<YuvRange> range = {};
};

// The chosen ones; else BT.709 for frames wider than 1279 or higher than 576 pixels and BT.601 for smaller ones, and
// the limited range.
YuvColours ColoursFor(const YuvChoice& choice, int width, int height) noexcept;

// "BT.709, limited range".
std::string ColoursText(const YuvColours& colours);

// What is known of frames that were YUV.
struct YuvFrames
{
    YuvLayout layout;
    YuvColours colours;
    std::string tags = {}; // of y4m, see RawFormat
};

// The bytes of a frame; none for a size that DibBytes refuses at 32 bits. Never more than the frame's as 32-bit RGB.
std::optional<std::size_t> YuvBytes(YuvLayout layout, std::int64_t width, std::int64_t height) noexcept;

// Both directions are sums of three products with the matrix's coefficients, kept to 1/2^20 (table entries, or
// coefficients, rounded to nearest), rounded to nearest (half upwards) and clamped to a byte. With Kr, Kb = 0.299,
// 0.114 (BT.601) or 0.2126, 0.0722 (BT.709), Kg = 1 - Kr - Kb, Y and C = U - 128 or V - 128 brought to 255 levels
// (limited: (Y - 16) * 255 / 219 and C * 255 / 224):
//   R = Y + 2 (1 - Kr) Cv     B = Y + 2 (1 - Kb) Cu     G = Y - (2 Kr (1 - Kr) Cv + 2 Kb (1 - Kb) Cu) / Kg
// A colour is within 0.500002 of its exact value, a sample within 0.5004.
class YuvPixels
{
public:
    // Of a size that YuvBytes takes.
    YuvPixels(YuvLayout frames, const YuvColours& colours, int frameWidth, int frameHeight);

    // `stored` has YuvBytes, `frame` width * height * 4: 32-bit RGB, bottom-up, the fourth byte 0. Pixels that share
    // chroma get the same.
    void ToRgb(std::span<const std::uint8_t> stored, std::span<std::uint8_t> frame) const noexcept;
    // Shared chroma is that of the pixels' mean colour. The brightness of a pair that has one pixel is left as it was.
    void FromRgb(std::span<const std::uint8_t> frame, std::span<std::uint8_t> stored) const noexcept;

private:
    using Table = std::array<std::int32_t, 256>;

    YuvLayout layout;
    int width, height;
    Table brightness, redOfV, greenOfU, greenOfV, blueOfU; // what a sample adds to a colour, in 1/2^20
    // What red, green and blue add to a sample, in 1/2^20; brightness has an offset.
    std::array<std::int32_t, 3> toY, toU, toV;
    std::int32_t black;
};

} // namespace vixahost::media
