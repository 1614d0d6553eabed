// Bitmaps in and out of packed DIBs.
#pragma once

#include "bitmap/BitmapBase.h"
#include "framework/GCUnknown.h"
#include "tests/bitmap/PackedDibs.h"

#include <gtest/gtest.h>

namespace vixa::bitmap::test {

inline bool Load(IBitmap& bitmap, const Bytes& bytes)
{
    return bitmap.LoadDib(bytes.data(), static_cast<int>(bytes.size()));
}

inline Bytes Exported(const IBitmap& bitmap)
{
    int size = 0;
    EXPECT_TRUE(bitmap.ExportDib(nullptr, &size));
    Bytes bytes(static_cast<std::size_t>(size));
    EXPECT_TRUE(bitmap.ExportDib(bytes.data(), &size));
    return bytes;
}

// A bitmap that is no GDIBitmap: a packed DIB in plain memory.
class MemoryBitmap final : public BitmapBase, public virtual GCUnknown
{
public:
    explicit MemoryBitmap(Bytes packed) : bytes(std::move(packed)), layout(*ParsePackedDib(bytes)) {}
    ~MemoryBitmap() override = default;

    Bytes bytes;
    bool hidesBits = false;
    const void* borrowedBits = nullptr; // shown instead of its own
    int stride = 0;                     // reported instead of its own
    mutable int released = 0;

    const BITMAPINFO* STDMETHODCALLTYPE GetInfo() const noexcept override
    {
        return reinterpret_cast<const BITMAPINFO*>(bytes.data());
    }
    const void* STDMETHODCALLTYPE GetBits() const noexcept override
    {
        return hidesBits ? nullptr : borrowedBits ? borrowedBits : bytes.data() + layout.PixelOffset();
    }
    int STDMETHODCALLTYPE GetStride() const noexcept override { return stride ? stride : BitmapBase::GetStride(); }
    IBitmap* STDMETHODCALLTYPE Clone() const noexcept override { return nullptr; }
    bool STDMETHODCALLTYPE Draw(HDC dc, const RECT& destRect, int number, double x, double y) const noexcept override
    {
        return DrawLayout(dc, destRect, number, x, y, DibSrc(GetInfo(), GetBits(), SRCCOPY));
    }
    bool STDMETHODCALLTYPE Blt(HDC, const RECT&, const RECT&, DWORD) const noexcept override { return false; }
    void STDMETHODCALLTYPE Reset() noexcept override {}
    bool STDMETHODCALLTYPE IsEmpty() const noexcept override { return false; }
    bool STDMETHODCALLTYPE ExportDib(void*, int*) const noexcept override { return false; }
    HGLOBAL STDMETHODCALLTYPE ExportGlobal() const noexcept override { return nullptr; }
    bool STDMETHODCALLTYPE Create(SIZE, int) noexcept override { return false; }
    bool STDMETHODCALLTYPE SharesStorageWith(const IBitmap* other) const noexcept override { return other == this; }
    bool STDMETHODCALLTYPE CopyFrom(const IBitmap*) noexcept override { return false; }
    bool STDMETHODCALLTYPE Fill(BYTE) noexcept override { return false; }
    SIZE* STDMETHODCALLTYPE GetSize(SIZE* out) const noexcept override
    {
        *out = {layout.width, layout.height};
        return out;
    }
    bool STDMETHODCALLTYPE Resize(SIZE) noexcept override { return false; }
    bool STDMETHODCALLTYPE PrepareForDrawing(const RECT&, int, double, double, double) noexcept override
    {
        return true;
    }
    const void* STDMETHODCALLTYPE GetBitsForRead() const noexcept override { return GetBits(); }
    void* STDMETHODCALLTYPE GetBitsForWrite() noexcept override { return const_cast<void*>(GetBits()); }
    void STDMETHODCALLTYPE ReleaseBits() const noexcept override { ++released; }
    bool STDMETHODCALLTYPE HasPalette() const noexcept override { return layout.tableBytes > 0; }
    int STDMETHODCALLTYPE GetPaletteSize() const noexcept override { return layout.tableBytes / 4; }
    const RGBQUAD* STDMETHODCALLTYPE GetPaletteForRead() const noexcept override { return GetInfo()->bmiColors; }
    RGBQUAD* STDMETHODCALLTYPE GetPaletteForWrite() noexcept override
    {
        return const_cast<RGBQUAD*>(GetPaletteForRead());
    }
    void STDMETHODCALLTYPE ReleasePalette() const noexcept override { ++released; }

private:
    DibLayout layout;
};

} // namespace vixa::bitmap::test
