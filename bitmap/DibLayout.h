// Where things stand in a device-independent bitmap: header, colour table, padded rows. Portable, no allocation.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace vixa::bitmap {

// The 40-byte header of a device-independent bitmap, as it lies in memory and in files (little-endian).
struct DibHeader
{
    std::uint32_t size;
    std::int32_t width;  // pixels
    std::int32_t height; // pixels; negative: rows from the top
    std::uint16_t planes;
    std::uint16_t bitCount;
    std::uint32_t compression;
    std::uint32_t imageBytes;
    std::int32_t xPixelsPerMetre;
    std::int32_t yPixelsPerMetre;
    std::uint32_t colorsUsed;
    std::uint32_t colorsImportant;
};
static_assert(sizeof(DibHeader) == 40);

inline constexpr std::int32_t dibHeaderBytes = 40;

// Bytes per row, padded to a multiple of 4. Defined for every input: sizes that a row cannot have give 0.
std::int32_t StrideOf(std::int32_t width, std::int32_t bitCount) noexcept;

// Bytes of the colour table that belongs to a header: 4 for each colour used, or for each possible colour when the
// header names no number and the depth is 8 or less. 64 bits wide because a hostile header can name 2^32 - 1 colours.
std::int64_t ColorTableBytes(std::uint32_t colorsUsed, std::int32_t bitCount) noexcept;

// Whether uncompressed pixels of this depth exist: 1, 4, 8, 16, 24 or 32 bits.
bool IsPixelDepth(std::int32_t bitCount) noexcept;

// A bottom-up picture without compression whose sizes have been checked: every figure fits in 31 bits.
struct DibLayout
{
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::int32_t bitCount = 0;
    std::int32_t stride = 0;
    std::int32_t headerBytes = 0; // offset of the colour table
    std::int32_t tableBytes = 0;
    std::int32_t pixelBytes = 0;

    std::int32_t PixelOffset() const noexcept { return headerBytes + tableBytes; }
    std::int32_t TotalBytes() const noexcept { return headerBytes + tableBytes + pixelBytes; }
};

// The layout of a new picture: 40-byte header, full colour table at 8 bits and below. Nothing when a size is not above
// 0, the depth is none, or the whole does not fit in 31 bits.
std::optional<DibLayout> LayoutOf(std::int32_t width, std::int32_t height, std::int32_t bitCount) noexcept;

// Reads the header of a packed device-independent bitmap and checks it against the block it came in. Nothing when any
// of it is out of reason: a header size other than 40, 52, 56, 108 or 124 bytes, other than one plane, a compression
// (colour masks count as one), rows from the top, more colours than the depth can name, or header, colour table and
// pixels that do not all lie within `block`. Bytes behind the pixels are allowed. `block` needs no alignment.
std::optional<DibLayout> ParsePackedDib(std::span<const std::byte> block) noexcept;

} // namespace vixa::bitmap
