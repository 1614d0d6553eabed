// Little-endian numbers at any alignment; the caller has checked that they lie inside the bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace vixa {

inline std::uint16_t ReadU16(std::span<const std::byte> bytes, std::size_t offset) noexcept
{
    return static_cast<std::uint16_t>(std::to_integer<unsigned>(bytes[offset]) |
                                      std::to_integer<unsigned>(bytes[offset + 1]) << 8);
}

inline std::uint32_t ReadU32(std::span<const std::byte> bytes, std::size_t offset) noexcept
{
    return ReadU16(bytes, offset) | std::uint32_t{ReadU16(bytes, offset + 2)} << 16;
}

} // namespace vixa
