// A picture in memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vixahost::media {

struct Picture
{
    int width = 0; // pixels
    int height = 0;
    // Rows from top to bottom without padding; each pixel blue, green, red, alpha (not premultiplied; 255 is opaque).
    std::vector<std::uint8_t> pixels;
    double dpiX = 96, dpiY = 96;

    Picture() = default;
    Picture(int columns, int rows) : width(columns), height(rows), pixels(std::size_t(columns) * std::size_t(rows) * 4)
    {
    }

    std::size_t RowBytes() const noexcept { return static_cast<std::size_t>(width) * 4; }
    std::uint8_t* Row(int y) noexcept { return pixels.data() + static_cast<std::size_t>(y) * RowBytes(); }
    const std::uint8_t* Row(int y) const noexcept { return pixels.data() + static_cast<std::size_t>(y) * RowBytes(); }
};

} // namespace vixahost::media
