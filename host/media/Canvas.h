// A picture that the platform can write text on.
#pragma once

#include "host/base/Handles.h"
#include "host/media/Picture.h"

#include <string_view>

namespace vixahost::media {

struct Colour
{
    std::uint8_t red = 0, green = 0, blue = 0;
};

struct TextStyle
{
    int height = 16; // pixels
    bool bold = false;
    Colour colour = {};
};

// Opaque, black at first. One thread.
class Canvas
{
public:
    // Throws std::bad_alloc when there is no room for a bitmap of that size.
    Canvas(int columns, int rows);

    int Width() const noexcept { return width; }
    int Height() const noexcept { return height; }

    void SetPixel(int x, int y, Colour colour) noexcept; // inside the canvas only
    void FillRectangle(int left, int top, int columns, int rows, Colour colour) noexcept;
    // One line of text whose box begins at (left, top), cut off with "..." where it is wider than `columns`.
    void DrawLine(int left, int top, int columns, std::string_view utf8, const TextStyle& style);
    // Copies a picture, made smaller by averaging whole squares of `shrink` by `shrink` pixels.
    void DrawPicture(int left, int top, const Picture& picture, int shrink) noexcept;

    Picture ToPicture() const;

private:
    std::uint8_t* Pixel(int x, int y) const noexcept
    {
        return bits + (static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)) * 4;
    }

    int width, height;
    UniqueMemoryDC dc;
    UniqueBitmap bitmap;
    std::uint8_t* bits = nullptr; // owned by the bitmap; rows top-down
};

} // namespace vixahost::media
