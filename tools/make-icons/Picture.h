// A 32-bit picture as the effects take it: blue, green, red and a spare byte per pixel, bottom row first, no padding.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vixa::icons {

struct Picture
{
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> bytes;

    Picture(int columns, int rows)
        : width(columns), height(rows), bytes(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4)
    {
    }
    // The four bytes of a pixel; y counts from the top.
    std::uint8_t* At(int x, int y) { return &bytes[Offset(x, y)]; }
    const std::uint8_t* At(int x, int y) const { return &bytes[Offset(x, y)]; }

private:
    std::size_t Offset(int x, int y) const
    {
        return (static_cast<std::size_t>(height - 1 - y) * static_cast<std::size_t>(width) +
                static_cast<std::size_t>(x)) *
               4;
    }
};

} // namespace vixa::icons
