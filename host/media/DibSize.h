// The size of an uncompressed picture whose numbers come from a file, which may claim anything.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>

namespace vixahost::media {

// The bytes of a DIB's pixels: |height| rows (negative: from the top) of `width` pixels of `bits` bits, each row padded
// to 4 bytes. None for a picture without pixels, for a depth that no DIB has, and for more than `most` bytes: 2 GiB
// are out of reach of a media sample, which counts its bytes in 32 bits with a sign.
constexpr std::optional<std::size_t> DibBytes(std::int64_t width, std::int64_t height, unsigned bits,
                                              std::int64_t most = std::numeric_limits<std::int32_t>::max()) noexcept
{
    constexpr std::int64_t longest = std::numeric_limits<std::int32_t>::max();
    if (height < 0 && height >= -longest)
        height = -height;
    if (width <= 0 || width > longest || height <= 0 || height > longest)
        return std::nullopt;
    if (bits != 1 && bits != 4 && bits != 8 && bits != 16 && bits != 24 && bits != 32)
        return std::nullopt;
    const std::int64_t row = (width * bits + 31) / 32 * 4; // below 2^37
    if (row > most / height)
        return std::nullopt;
    return static_cast<std::size_t>(row * height);
}

// The numbers with which a product of 32 bits comes round to something small.
static_assert(DibBytes(0x08000001, 1, 32) == 0x20000004 && !DibBytes(0x20000001, 1, 32) &&
              !DibBytes(1, 0x20000000, 32));
static_assert(DibBytes(17, -3, 24) == 156 && !DibBytes(0, 1, 32) && !DibBytes(1, std::int64_t{-1} << 31, 1) &&
              !DibBytes(8, 8, 2));

} // namespace vixahost::media
