#include "bitmap/BitmapBase.h"

#include "bitmap/DibLayout.h"
#include "bitmap/GDIBitmap.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <mutex>

using namespace vixa::bitmap;

namespace {

template <typename Byte>
BasicPixels<Byte> View(const IBitmap& bitmap, Byte* bits) noexcept
{
    BasicPixels<Byte> view = {{}, bitmap.GetWidth(), bitmap.GetHeight(), bitmap.GetStride(), bitmap.GetBitCount()};
    if (bits && view.stride > 0 && view.height > 0)
        view.bytes = {bits, static_cast<std::size_t>(view.stride) * static_cast<std::size_t>(view.height)};
    return view;
}

// The tables of the last tint. A tint that is repeated over many bitmaps computes them once.
TintTables CachedTintTables(COLORREF color, BYTE amount) noexcept
{
    static std::mutex guard;
    static TintTables tables;
    static COLORREF lastColor;
    static BYTE lastAmount = 0; // no tint has amount 0
    const std::lock_guard lock(guard);
    if (lastAmount != amount || lastColor != color) {
        tables = MakeTintTables(color, amount);
        lastColor = color;
        lastAmount = amount;
    }
    return tables;
}

} // namespace

Pixels PixelsOf(const IBitmap& bitmap) noexcept
{
    return View(bitmap, static_cast<const std::uint8_t*>(bitmap.GetBitsForRead()));
}

WritablePixels WritablePixelsOf(IBitmap& bitmap) noexcept
{
    return View(bitmap, static_cast<std::uint8_t*>(bitmap.GetBitsForWrite()));
}

bool BitmapBase::DibSrc::Blt(HDC dc, const RECT& from, const RECT& to) const noexcept
{
    const LONG height = info->bmiHeader.biHeight;
    SetStretchBltMode(dc, COLORONCOLOR);
    return StretchDIBits(dc, to.left, to.top, to.right - to.left, to.bottom - to.top, from.left,
                         height > 0 ? height - from.bottom : from.top, from.right - from.left, from.bottom - from.top,
                         bits, info, DIB_RGB_COLORS, rasterOp) != static_cast<int>(GDI_ERROR);
}

int STDMETHODCALLTYPE BitmapBase::GetWidth() const noexcept
{
    SIZE size;
    return GetSize(&size)->cx;
}

int STDMETHODCALLTYPE BitmapBase::GetHeight() const noexcept
{
    SIZE size;
    return GetSize(&size)->cy;
}

int STDMETHODCALLTYPE BitmapBase::GetBitCount() const noexcept
{
    const BITMAPINFO* const info = GetInfo();
    return info ? info->bmiHeader.biBitCount : 0;
}

int STDMETHODCALLTYPE BitmapBase::GetStride() const noexcept
{
    return StrideOf(GetWidth(), GetBitCount());
}

Size BitmapBase::PictureSize() const noexcept
{
    SIZE size;
    GetSize(&size);
    return {size.cx, size.cy};
}

bool STDMETHODCALLTYPE BitmapBase::LoadDib(const void* data, int size) noexcept
{
    if (!data || size < 1)
        return false;
    const auto* const bytes = static_cast<const std::byte*>(data);
    const auto layout = ParsePackedDib({bytes, static_cast<std::size_t>(size)});
    Reset();
    if (!layout || !Create({layout->width, layout->height}, layout->bitCount))
        return false;
    void* const bits = GetBitsForWrite();
    if (!bits || GetStride() != layout->stride || GetHeight() != layout->height) {
        Reset();
        return false;
    }
    std::memcpy(bits, bytes + layout->PixelOffset(), static_cast<std::size_t>(layout->pixelBytes));
    ReleaseBits();
    if (layout->bitCount < 16) {
        RGBQUAD* const palette = GetPaletteForWrite();
        if (!palette) {
            Reset();
            return false;
        }
        const auto room = static_cast<std::size_t>(GetPaletteSize()) * sizeof(RGBQUAD);
        std::memcpy(palette, bytes + layout->headerBytes, std::min(room, static_cast<std::size_t>(layout->tableBytes)));
        ReleasePalette();
    }
    return true;
}

bool STDMETHODCALLTYPE BitmapBase::LoadGlobal(HGLOBAL block) noexcept
{
    const void* const data = block ? GlobalLock(block) : nullptr;
    if (!data)
        return false;
    const SIZE_T size = GlobalSize(block);
    const bool loaded = LoadDib(data, static_cast<int>(std::min<SIZE_T>(size, INT_MAX)));
    GlobalUnlock(block);
    return loaded;
}

bool STDMETHODCALLTYPE BitmapBase::ReplaceKeyColor(const IBitmap* other, COLORREF keyColor) noexcept
{
    const int bitCount = GetBitCount();
    if ((bitCount != 24 && bitCount != 32) || !other || other->IsEmpty() || !GetBitsForRead())
        return false;
    Microsoft::WRL::ComPtr<GDIBitmap> fitting;
    Pixels replacement = PixelsOf(*other);
    if (replacement.bytes.empty() || replacement.width != GetWidth() || replacement.height != GetHeight() ||
        replacement.bitCount != bitCount) {
        *fitting.GetAddressOf() = GDIBitmap::New();
        if (!fitting || !fitting->CreateDrawn(*other, {GetWidth(), GetHeight()}, bitCount, 0, {}))
            return false;
        replacement = PixelsOf(*fitting.Get());
    }
    const WritablePixels pixels = WritablePixelsOf(*this);
    if (pixels.bytes.empty() || replacement.bytes.empty())
        return false;
    vixa::bitmap::ReplaceKeyColor(pixels, replacement, keyColor);
    ReleaseBits();
    return true;
}

bool STDMETHODCALLTYPE BitmapBase::Tint(const RECT& rect, COLORREF color, BYTE amount, const IBitmap* mask) noexcept
{
    if (GetBitCount() != 32 || !GetBitsForRead())
        return false;
    Pixels maskPixels;
    if (mask) {
        maskPixels = PixelsOf(*mask);
        if (maskPixels.bytes.empty() || maskPixels.bitCount != 1 || maskPixels.width != GetWidth() ||
            maskPixels.height != GetHeight())
            return false;
    }
    if (amount == 0)
        return true;
    const WritablePixels pixels = WritablePixelsOf(*this);
    if (pixels.bytes.empty())
        return false;
    vixa::bitmap::Tint(pixels, FromRECT(rect), CachedTintTables(color, amount), mask ? &maskPixels : nullptr);
    ReleaseBits();
    return true;
}

COLORREF STDMETHODCALLTYPE BitmapBase::GetPixel(int x, int y) const noexcept
{
    const Pixels pixels = PixelsOf(*this);
    const COLORREF color = pixels.bytes.empty() ? CLR_INVALID : PixelColor(pixels, x, y);
    ReleaseBits();
    return color;
}

bool STDMETHODCALLTYPE BitmapBase::ContainsColor(COLORREF color) const noexcept
{
    const Pixels pixels = PixelsOf(*this);
    const bool found = !pixels.bytes.empty() && vixa::bitmap::ContainsColor(pixels, color);
    ReleaseBits();
    return found;
}

bool STDMETHODCALLTYPE BitmapBase::HasMinColorVariation(double limit, double) const noexcept
{
    const Pixels pixels = PixelsOf(*this);
    if (pixels.bytes.empty() || pixels.bitCount != 32)
        return false;
    const ColorVariation found = ColorVariationOf(pixels, limit);
    ReleaseBits();
    char text[512];
    if (found.reached)
        std::snprintf(text, sizeof text, "BitmapBase::HasMinColorVariation succeeded (line=%d, var=%d)",
                      static_cast<int>(found.row), static_cast<int>(found.variation));
    else
        std::snprintf(text, sizeof text,
                      "BitmapBase::HasMinColorVariation returned false (var=%.02f, limit was %.02lf)",
                      static_cast<double>(found.variation), limit);
    OutputDebugStringA(text);
    return found.reached;
}

bool BitmapBase::DrawLayout(HDC dc, const RECT& destRect, int layoutNumber, double scaleX, double scaleY,
                            const IBltSrc& source) const noexcept
{
    const Layout layout = LayoutFrom(layoutNumber);
    const Rect destination = FromRECT(destRect);
    const Size picture = PictureSize();
    const Scale scale = {scaleX, scaleY};
    if (layout != Layout::Tile) {
        const auto copy = LayoutCopy(picture, destination, layout, scale);
        return !copy || source.Blt(dc, ToRECT(copy->source), ToRECT(copy->destination));
    }
    RECT clip = {};
    GetClipBox(dc, &clip);
    const TileGrid tiles(picture, destination, FromRECT(clip), scale);
    for (std::int64_t row = 0; row < tiles.Rows(); ++row) {
        for (std::int64_t column = 0; column < tiles.Columns(); ++column) {
            const Copy tile = tiles.Tile(column, row);
            if (!source.Blt(dc, ToRECT(tile.source), ToRECT(tile.destination)))
                return false;
        }
    }
    return true;
}
