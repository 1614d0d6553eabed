#include "host/media/Canvas.h"

#include "host/base/Text.h"

#include <algorithm>
#include <new>

namespace vixahost::media {

Canvas::Canvas(int columns, int rows) : width(columns), height(rows), dc(CreateCompatibleDC(nullptr))
{
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* memory = nullptr;
    bitmap.reset(CreateDIBSection(dc.get(), &info, DIB_RGB_COLORS, &memory, nullptr, 0));
    if (!bitmap)
        throw std::bad_alloc();
    bits = static_cast<std::uint8_t*>(memory);
}

void Canvas::SetPixel(int x, int y, Colour colour) noexcept
{
    std::uint8_t* pixel = Pixel(x, y);
    pixel[0] = colour.blue;
    pixel[1] = colour.green;
    pixel[2] = colour.red;
}

void Canvas::FillRectangle(int left, int top, int columns, int rows, Colour colour) noexcept
{
    for (int y = std::max(top, 0); y < std::min(top + rows, height); ++y)
        for (int x = std::max(left, 0); x < std::min(left + columns, width); ++x)
            SetPixel(x, y, colour);
}

void Canvas::DrawLine(int left, int top, int columns, std::string_view utf8, const TextStyle& style)
{
    const UniqueFont font(CreateFontW(-style.height, 0, 0, 0, style.bold ? FW_BOLD : FW_NORMAL, FALSE, FALSE, FALSE,
                                      DEFAULT_CHARSET, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, ANTIALIASED_QUALITY,
                                      DEFAULT_PITCH | FF_SWISS, L"Tahoma"));
    const HGDIOBJ oldBitmap = SelectObject(dc.get(), bitmap.get());
    const HGDIOBJ oldFont = SelectObject(dc.get(), font.get());
    SetTextColor(dc.get(), RGB(style.colour.red, style.colour.green, style.colour.blue));
    SetBkMode(dc.get(), TRANSPARENT);
    std::wstring text = Wide(utf8);
    RECT box = {left, top, left + columns, top + style.height * 3 / 2};
    DrawTextW(dc.get(), text.data(), static_cast<int>(text.size()), &box,
              DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
    GdiFlush();
    SelectObject(dc.get(), oldFont);
    SelectObject(dc.get(), oldBitmap);
}

void Canvas::DrawPicture(int left, int top, const Picture& picture, int shrink) noexcept
{
    const int columns = std::min(picture.width / shrink, width - left);
    const int rows = std::min(picture.height / shrink, height - top);
    for (int y = 0; y < rows; ++y) {
        for (int x = 0; x < columns; ++x) {
            int sums[3] = {};
            for (int dy = 0; dy < shrink; ++dy)
                for (int dx = 0; dx < shrink; ++dx)
                    for (int channel = 0; channel < 3; ++channel)
                        sums[channel] += picture.Row(y * shrink + dy)[(x * shrink + dx) * 4 + channel];
            for (int channel = 0; channel < 3; ++channel)
                Pixel(left + x, top + y)[channel] =
                    static_cast<std::uint8_t>((sums[channel] + shrink * shrink / 2) / (shrink * shrink));
        }
    }
}

Picture Canvas::ToPicture() const
{
    Picture picture(width, height);
    std::copy_n(bits, picture.pixels.size(), picture.pixels.begin());
    for (std::size_t i = 3; i < picture.pixels.size(); i += 4)
        picture.pixels[i] = 255;
    return picture;
}

} // namespace vixahost::media
