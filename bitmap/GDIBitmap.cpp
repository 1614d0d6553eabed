#include "bitmap/GDIBitmap.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

using Microsoft::WRL::ComPtr;
using vixa::bitmap::DibLayout;

namespace {

// Opacity as the byte that blending takes.
BYTE AlphaByte(double opacity) noexcept
{
    return opacity > 0.0 ? static_cast<BYTE>(std::min(opacity, 1.0) * 255.0) : BYTE{0};
}

// Fills a record with rows and colours of the same size and depth.
void CopyPicture(SharedBitmapData& to, const void* bits, const RGBQUAD* palette, int paletteSize) noexcept
{
    // The record's own layout decides how much: another bitmap may report any stride.
    const BITMAPINFOHEADER& header = to.Info()->bmiHeader;
    const auto layout = vixa::bitmap::LayoutOf(header.biWidth, header.biHeight, header.biBitCount);
    std::memcpy(to.bits, bits, static_cast<std::size_t>(layout ? layout->pixelBytes : 0));
    const int entries = std::min(paletteSize, to.PaletteSize());
    if (palette && entries > 0)
        std::memcpy(to.Info()->bmiColors, palette, static_cast<std::size_t>(entries) * sizeof(RGBQUAD));
}

} // namespace

GDIBitmap::GDIBitmap() noexcept : data(SharedBitmapData::MakeEmpty()) {}

GDIBitmap::GDIBitmap(HBITMAP source) noexcept : data(SharedBitmapData::MakeFrom(source))
{
    if (!data)
        GDIBitmap::Reset();
}

GDIBitmap::GDIBitmap(const GDIBitmap& other) noexcept : GCUnknown(other), BitmapBase(other), data(other.data) {}

GDIBitmap& GDIBitmap::operator=(const GDIBitmap& other) noexcept
{
    data = other.data;
    return *this;
}

GDIBitmap* GDIBitmap::New() noexcept
{
    return new (std::nothrow) GDIBitmap;
}

const BITMAPINFO* STDMETHODCALLTYPE GDIBitmap::GetInfo() const noexcept
{
    return data->Info();
}

const void* STDMETHODCALLTYPE GDIBitmap::GetBits() const noexcept
{
    GdiFlush();
    return data->bits;
}

IBitmap* STDMETHODCALLTYPE GDIBitmap::Clone() const noexcept
{
    return new (std::nothrow) GDIBitmap(*this);
}

bool STDMETHODCALLTYPE GDIBitmap::Draw(HDC dc, const RECT& destRect, int layout, double scaleX,
                                       double scaleY) const noexcept
{
    if (IsEmpty())
        return true;
    if (data->bits)
        return DrawLayout(dc, destRect, layout, scaleX, scaleY, DibSrc(data->Info(), GetBits(), SRCCOPY));
    return DrawLayout(dc, destRect, layout, scaleX, scaleY, HBitmapSrc(data->bitmap.get(), SRCCOPY));
}

bool STDMETHODCALLTYPE GDIBitmap::Blt(HDC dc, const RECT& destRect, const RECT& sourceRect,
                                      DWORD rasterOp) const noexcept
{
    if (IsEmpty())
        return false;
    if (data->bits)
        return DibSrc(data->Info(), GetBits(), rasterOp).Blt(dc, sourceRect, destRect);
    return HBitmapSrc(data->bitmap.get(), rasterOp).Blt(dc, sourceRect, destRect);
}

HBITMAP GDIBitmap::HandleForBlit() const noexcept
{
    if (data->bits && data->PaletteSize() > 0) {
        const vixa::UniqueMemoryDC dc(CreateCompatibleDC(nullptr));
        if (HGDIOBJ previous = dc ? SelectObject(dc.get(), data->bitmap.get()) : nullptr) {
            data->GiveColorTable(dc.get());
            SelectObject(dc.get(), previous);
        }
    }
    return data->bitmap.get();
}

bool STDMETHODCALLTYPE GDIBitmap::DrawTransparent(HDC dc, const RECT& destRect, COLORREF keyColor, int layout,
                                                  double scaleX, double scaleY) const noexcept
{
    return IsEmpty() || DrawLayout(dc, destRect, layout, scaleX, scaleY, TransparentSrc(HandleForBlit(), keyColor));
}

bool STDMETHODCALLTYPE GDIBitmap::BltTransparent(HDC dc, const RECT& destRect, const RECT& sourceRect,
                                                 COLORREF keyColor) const noexcept
{
    return !IsEmpty() && TransparentSrc(HandleForBlit(), keyColor).Blt(dc, sourceRect, destRect);
}

bool STDMETHODCALLTYPE GDIBitmap::DrawAlpha(HDC dc, const RECT& destRect, double opacity, bool perPixelAlpha,
                                            int layout, double scaleX, double scaleY) const noexcept
{
    return IsEmpty() || DrawLayout(dc, destRect, layout, scaleX, scaleY,
                                   AlphaSrc(HandleForBlit(), perPixelAlpha, AlphaByte(opacity)));
}

bool STDMETHODCALLTYPE GDIBitmap::BltAlpha(HDC dc, const RECT& destRect, const RECT& sourceRect, double opacity,
                                           bool perPixelAlpha) const noexcept
{
    return !IsEmpty() && AlphaSrc(HandleForBlit(), perPixelAlpha, AlphaByte(opacity)).Blt(dc, sourceRect, destRect);
}

void STDMETHODCALLTYPE GDIBitmap::Reset() noexcept
{
    data = SharedBitmapData::MakeEmpty();
}

bool STDMETHODCALLTYPE GDIBitmap::IsEmpty() const noexcept
{
    return !data->bitmap;
}

DibLayout GDIBitmap::ExportLayout() const noexcept
{
    // A device-compatible bitmap has no depth of its own; its picture leaves as 32 bits.
    const int bitCount = data->compatible ? 32 : GetBitCount();
    return vixa::bitmap::LayoutOf(GetWidth(), GetHeight(), bitCount).value_or(DibLayout());
}

bool GDIBitmap::FetchRows(const DibLayout& layout, BYTE* rows) const noexcept
{
    GdiFlush();
    if (data->bits) {
        std::memcpy(rows, data->bits, static_cast<std::size_t>(layout.pixelBytes));
        return true;
    }
    struct
    {
        BITMAPINFOHEADER header;
        RGBQUAD colors[256];
    } info = {};
    info.header.biSize = sizeof info.header;
    info.header.biWidth = layout.width;
    info.header.biHeight = layout.height;
    info.header.biPlanes = 1;
    info.header.biBitCount = static_cast<WORD>(layout.bitCount);
    const vixa::UniqueMemoryDC dc(CreateCompatibleDC(nullptr));
    return dc && GetDIBits(dc.get(), data->bitmap.get(), 0, static_cast<UINT>(layout.height), rows,
                           reinterpret_cast<BITMAPINFO*>(&info), DIB_RGB_COLORS) != 0;
}

bool STDMETHODCALLTYPE GDIBitmap::ExportDib(void* buffer, int* size) const noexcept
{
    if (IsEmpty() || !size)
        return false;
    const DibLayout layout = ExportLayout();
    if (!buffer) {
        *size = layout.TotalBytes();
        return true;
    }
    if (*size < layout.TotalBytes())
        return false;
    auto* const bytes = static_cast<BYTE*>(buffer);
    BITMAPINFOHEADER header = data->Info()->bmiHeader;
    header.biBitCount = static_cast<WORD>(layout.bitCount);
    std::memcpy(bytes, &header, sizeof header);
    std::memcpy(bytes + layout.headerBytes, data->Info()->bmiColors, static_cast<std::size_t>(layout.tableBytes));
    return FetchRows(layout, bytes + layout.PixelOffset());
}

HGLOBAL STDMETHODCALLTYPE GDIBitmap::ExportGlobal() const noexcept
{
    int size = 0;
    if (!ExportDib(nullptr, &size))
        return nullptr;
    vixa::UniqueGlobal block(GlobalAlloc(GMEM_MOVEABLE, static_cast<SIZE_T>(size)));
    void* const bytes = block ? GlobalLock(block.get()) : nullptr;
    if (!bytes)
        return nullptr;
    const bool exported = ExportDib(bytes, &size);
    GlobalUnlock(block.get());
    return exported ? block.release() : nullptr;
}

bool STDMETHODCALLTYPE GDIBitmap::Create(SIZE size, int bitCount) noexcept
{
    Reset();
    auto made = SharedBitmapData::Make(size, bitCount);
    if (!made)
        return false;
    data = std::move(made);
    return true;
}

bool STDMETHODCALLTYPE GDIBitmap::SharesStorageWith(const IBitmap* other) const noexcept
{
    const auto* const bitmap = dynamic_cast<const GDIBitmap*>(other);
    return bitmap && bitmap->data.Get() == data.Get();
}

bool STDMETHODCALLTYPE GDIBitmap::CopyFrom(const IBitmap* other) noexcept
{
    if (!other)
        return false;
    if (const auto* const bitmap = dynamic_cast<const GDIBitmap*>(other)) {
        data = bitmap->data;
        return true;
    }
    SIZE size;
    auto made = SharedBitmapData::Make(*other->GetSize(&size), other->GetBitCount());
    if (!made) {
        Reset();
        return false;
    }
    const void* const bits = other->GetBitsForRead();
    const RGBQUAD* const palette = other->GetPaletteForRead();
    const bool copied = made->bits && bits && palette;
    if (copied)
        CopyPicture(*made.Get(), bits, palette, other->GetPaletteSize());
    other->ReleaseBits();
    other->ReleasePalette();
    data = std::move(made);
    return copied;
}

bool STDMETHODCALLTYPE GDIBitmap::Fill(BYTE value) noexcept
{
    if (!data->bits)
        return false;
    const auto pixels = WritablePixelsOf(*this);
    std::fill(pixels.bytes.begin(), pixels.bytes.end(), value);
    return !pixels.bytes.empty();
}

SIZE* STDMETHODCALLTYPE GDIBitmap::GetSize(SIZE* out) const noexcept
{
    *out = data->info ? SIZE{data->Info()->bmiHeader.biWidth, data->Info()->bmiHeader.biHeight} : SIZE{};
    return out;
}

bool GDIBitmap::CreateDrawn(const IBitmap& source, SIZE size, int bitCount, int layout,
                            vixa::bitmap::Scale scale) noexcept
{
    auto made = SharedBitmapData::Make(size, bitCount);
    if (!made)
        return false;
    const RGBQUAD* const palette = source.GetPaletteForRead();
    if (bitCount > 0 && bitCount < 16 && palette) {
        const int entries = std::min(source.GetPaletteSize(), made->PaletteSize());
        std::memcpy(made->Info()->bmiColors, palette, static_cast<std::size_t>(entries) * sizeof(RGBQUAD));
    }
    const vixa::UniqueMemoryDC dc(CreateCompatibleDC(nullptr));
    const HGDIOBJ previous = dc ? SelectObject(dc.get(), made->bitmap.get()) : nullptr;
    if (!previous)
        return false;
    made->GiveColorTable(dc.get());
    const bool drawn = source.Draw(dc.get(), {0, 0, size.cx, size.cy}, layout, scale.x, scale.y);
    SelectObject(dc.get(), previous);
    if (drawn)
        data = std::move(made);
    return drawn;
}

bool STDMETHODCALLTYPE GDIBitmap::Resize(SIZE size) noexcept
{
    return !IsEmpty() && CreateDrawn(*this, size, data->compatible ? 0 : GetBitCount(), 0, {});
}

bool STDMETHODCALLTYPE GDIBitmap::PrepareForDrawing(const RECT& destRect, int layoutNumber, double scaleX,
                                                    double scaleY, double maxAreaRatio) noexcept
{
    if (IsEmpty())
        return false;
    const auto layout = vixa::bitmap::LayoutFrom(layoutNumber);
    const auto picture = PictureSize();
    const auto drawn = vixa::bitmap::DrawnSize(picture, FromRECT(destRect), layout, {scaleX, scaleY});
    const double ratio = double(drawn.width) * drawn.height / (double(picture.width) * picture.height);
    if (drawn == vixa::bitmap::Size() || !(ratio < maxAreaRatio))
        return true;
    // Fitting has settled the aspect: a second fit could only lose pixels to rounding.
    const int copyLayout = layout == vixa::bitmap::Layout::Fit ? 0 : layoutNumber;
    CreateDrawn(*this, {drawn.width, drawn.height}, data->compatible ? 0 : GetBitCount(), copyLayout, {scaleX, scaleY});
    return !IsEmpty();
}

const void* STDMETHODCALLTYPE GDIBitmap::GetBitsForRead() const noexcept
{
    return GetBits();
}

void* STDMETHODCALLTYPE GDIBitmap::GetBitsForWrite() noexcept
{
    GdiFlush();
    return MakeUnique() ? data->bits : nullptr;
}

bool STDMETHODCALLTYPE GDIBitmap::HasPalette() const noexcept
{
    return GetPaletteSize() > 0;
}

int STDMETHODCALLTYPE GDIBitmap::GetPaletteSize() const noexcept
{
    return IsEmpty() ? 0 : data->PaletteSize();
}

const RGBQUAD* STDMETHODCALLTYPE GDIBitmap::GetPaletteForRead() const noexcept
{
    return data->info ? data->Info()->bmiColors : nullptr;
}

RGBQUAD* STDMETHODCALLTYPE GDIBitmap::GetPaletteForWrite() noexcept
{
    return MakeUnique() && data->info ? data->Info()->bmiColors : nullptr;
}

bool STDMETHODCALLTYPE GDIBitmap::MakeUnique() noexcept
{
    if (data->references.Get() <= 1)
        return true;
    if (data->bitmap && !data->bits) {
        if (data->compatible)
            return CreateDrawn(*this, {GetWidth(), GetHeight()}, 0, 0, {});
        auto copy = SharedBitmapData::MakeFrom(data->bitmap.get());
        if (!copy)
            return false;
        data = std::move(copy);
        return true;
    }
    const auto shared = std::exchange(data, SharedBitmapData::MakeEmpty());
    if (!shared->bitmap)
        return true;
    const BITMAPINFOHEADER& header = shared->Info()->bmiHeader;
    auto copy = SharedBitmapData::Make({header.biWidth, header.biHeight}, header.biBitCount);
    if (!copy)
        return false;
    GdiFlush();
    CopyPicture(*copy.Get(), shared->bits, shared->Info()->bmiColors, shared->PaletteSize());
    data = std::move(copy);
    return true;
}

bool GDIBitmap::LoadFromResource(IBitmapResources& resources, UINT id) noexcept
{
    Reset();
    const auto bytes = resources.FindBitmapResource(id);
    return LoadDib(bytes.data(), static_cast<int>(std::min<std::size_t>(bytes.size(), INT_MAX)));
}
