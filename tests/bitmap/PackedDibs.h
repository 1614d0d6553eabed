// Packed DIBs for the tests: good ones, and what hostile data looks like.
#pragma once

#include "bitmap/DibLayout.h"

#include <cstring>
#include <functional>
#include <string>
#include <vector>

namespace vixa::bitmap::test {

using Bytes = std::vector<std::byte>;

// A packed DIB with a 40-byte header that claims `colorsUsed`, its full colour table or as many colours, and pixels and
// table that count up so that a misplaced byte shows.
inline Bytes PackedDib(std::int32_t width, std::int32_t height, int bitCount, std::uint32_t colorsUsed = 0)
{
    const auto table = static_cast<std::size_t>(ColorTableBytes(colorsUsed, bitCount));
    const std::size_t pixels = static_cast<std::size_t>(StrideOf(width, bitCount)) * static_cast<std::size_t>(height);
    Bytes bytes(40 + table + pixels);
    DibHeader header = {};
    header.size = 40;
    header.width = width;
    header.height = height;
    header.planes = 1;
    header.bitCount = static_cast<std::uint16_t>(bitCount);
    header.colorsUsed = colorsUsed;
    std::memcpy(bytes.data(), &header, sizeof header);
    for (std::size_t i = 40; i < bytes.size(); ++i)
        bytes[i] = static_cast<std::byte>(i * 7 + i / 251);
    return bytes;
}

// A packed DIB with its header changed after it was made.
inline Bytes Forged(Bytes bytes, const std::function<void(DibHeader&)>& change)
{
    DibHeader header;
    std::memcpy(&header, bytes.data(), sizeof header);
    change(header);
    std::memcpy(bytes.data(), &header, sizeof header);
    return bytes;
}

struct HostileDib
{
    std::string what;
    Bytes bytes;
};

// Data that claims to be a packed DIB and must be refused, without a read behind its end.
inline std::vector<HostileDib> HostileDibs()
{
    std::vector<HostileDib> all;
    const Bytes good24 = PackedDib(5, 4, 24);
    const Bytes good8 = PackedDib(5, 4, 8);
    const auto forge = [&all](const std::string& what, const Bytes& from, const std::function<void(DibHeader&)>& how) {
        all.push_back({what, Forged(from, how)});
    };
    for (const std::uint32_t size :
         {0u, 12u, 39u, 41u, 44u, 64u, 123u, 124u, 4096u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFD8u})
        forge("header size " + std::to_string(size), good24, [=](DibHeader& h) { h.size = size; });
    for (const std::int32_t value : {0, -1, -5, INT32_MIN, INT32_MAX, INT32_MAX / 24, 0x08000000, 89478486}) {
        forge("width " + std::to_string(value), good24, [=](DibHeader& h) { h.width = value; });
        forge("height " + std::to_string(value), good24, [=](DibHeader& h) { h.height = value; });
        forge("square " + std::to_string(value), good24, [=](DibHeader& h) { h.width = h.height = value; });
    }
    // 65536 × 65536 at 8 bits and 2^30 at 32 bits come to 0 in 32-bit arithmetic.
    forge("area of 2^32", good8, [](DibHeader& h) { h.width = h.height = 65536; });
    forge("stride of 2^32", PackedDib(5, 4, 32), [](DibHeader& h) { h.width = 0x40000000; });
    for (const std::uint32_t colors : {257u, 0x40000000u, 0x3FFFFFFEu, 0xFFFFFFFFu})
        forge("colours " + std::to_string(colors), good8, [=](DibHeader& h) { h.colorsUsed = colors; });
    for (const std::uint32_t colors : {1u, 0x40000000u, 0xFFFFFFFFu})
        forge("colours at 24 bits " + std::to_string(colors), good24, [=](DibHeader& h) { h.colorsUsed = colors; });
    for (const std::uint32_t compression : {1u, 2u, 3u, 4u, 5u, 6u, 0xFFFFFFFFu})
        forge("compression " + std::to_string(compression), good24, [=](DibHeader& h) { h.compression = compression; });
    for (const int depth : {0, 2, 3, 7, 9, 15, 17, 25, 31, 33, 48, 64, 0xFFFF})
        forge("depth " + std::to_string(depth), good24,
              [=](DibHeader& h) { h.bitCount = static_cast<std::uint16_t>(depth); });
    for (const int planes : {0, 2, 0xFFFF})
        forge("planes " + std::to_string(planes), good24,
              [=](DibHeader& h) { h.planes = static_cast<std::uint16_t>(planes); });
    for (const Bytes& good : {good24, good8, PackedDib(5, 4, 1, 2), PackedDib(36, 34, 24)})
        for (const std::size_t length : {std::size_t{0}, std::size_t{1}, std::size_t{4}, std::size_t{14},
                                         std::size_t{39}, std::size_t{40}, good.size() / 2, good.size() - 1})
            all.push_back({"length " + std::to_string(length) + " of " + std::to_string(good.size()),
                           Bytes(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(length))});
    return all;
}

} // namespace vixa::bitmap::test
