// The layout of a string-table resource, read with bounds: language files are other people's data.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace vixa {

// A string table is stored in blocks of sixteen strings, one resource each.
constexpr std::uint32_t StringBlockId(std::uint32_t stringId) noexcept
{
    return (stringId >> 4) + 1;
}

constexpr std::uint32_t IndexInStringBlock(std::uint32_t stringId) noexcept
{
    return stringId & 15;
}

// String `index` (0 to 15) of a block. Each string is a little-endian 16-bit count and that many UTF-16 code units, one
// per element of the result. A string that starts or ends past the block is empty; nothing past the block is read.
std::wstring StringOfBlock(std::span<const std::byte> block, std::uint32_t index);

} // namespace vixa
