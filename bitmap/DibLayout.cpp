#include "bitmap/DibLayout.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

namespace vixa::bitmap {

namespace {

constexpr std::int64_t largest = std::numeric_limits<std::int32_t>::max();

// The fixed part, and its two versions with more fields behind it, without and with colour masks.
constexpr std::array<std::uint32_t, 5> knownHeaderSizes = {40, 52, 56, 108, 124};

std::optional<DibLayout> CheckedLayout(std::int32_t width, std::int32_t height, std::int32_t bitCount,
                                       std::int64_t headerBytes, std::int64_t tableBytes) noexcept
{
    if (width <= 0 || height <= 0 || !IsPixelDepth(bitCount))
        return std::nullopt;
    const std::int32_t stride = StrideOf(width, bitCount);
    const std::int64_t pixelBytes = std::int64_t{stride} * height;
    if (stride == 0 || headerBytes + tableBytes + pixelBytes > largest)
        return std::nullopt;
    return DibLayout{width,
                     height,
                     bitCount,
                     stride,
                     static_cast<std::int32_t>(headerBytes),
                     static_cast<std::int32_t>(tableBytes),
                     static_cast<std::int32_t>(pixelBytes)};
}

} // namespace

std::int32_t StrideOf(std::int32_t width, std::int32_t bitCount) noexcept
{
    const std::int64_t bits = std::int64_t{width} * bitCount;
    if (bits <= 0)
        return 0;
    const std::int64_t bytes = (bits + 31) / 32 * 4;
    return bytes > largest ? 0 : static_cast<std::int32_t>(bytes);
}

std::int64_t ColorTableBytes(std::uint32_t colorsUsed, std::int32_t bitCount) noexcept
{
    if (colorsUsed != 0)
        return std::int64_t{colorsUsed} * 4;
    return bitCount >= 0 && bitCount <= 8 ? std::int64_t{4} << bitCount : 0;
}

bool IsPixelDepth(std::int32_t bitCount) noexcept
{
    constexpr std::array depths = {1, 4, 8, 16, 24, 32};
    return std::find(depths.begin(), depths.end(), bitCount) != depths.end();
}

std::optional<DibLayout> LayoutOf(std::int32_t width, std::int32_t height, std::int32_t bitCount) noexcept
{
    return CheckedLayout(width, height, bitCount, dibHeaderBytes, ColorTableBytes(0, bitCount));
}

std::optional<DibLayout> ParsePackedDib(std::span<const std::byte> block) noexcept
{
    DibHeader header;
    if (block.size() < sizeof header)
        return std::nullopt;
    std::memcpy(&header, block.data(), sizeof header);
    if (std::find(knownHeaderSizes.begin(), knownHeaderSizes.end(), header.size) == knownHeaderSizes.end())
        return std::nullopt;
    if (header.planes != 1 || header.compression != 0)
        return std::nullopt;
    if (header.bitCount <= 8 && header.colorsUsed > std::uint32_t{1} << header.bitCount)
        return std::nullopt;
    const auto layout = CheckedLayout(header.width, header.height, header.bitCount, header.size,
                                      ColorTableBytes(header.colorsUsed, header.bitCount));
    if (!layout || static_cast<std::size_t>(layout->TotalBytes()) > block.size())
        return std::nullopt;
    return layout;
}

} // namespace vixa::bitmap
