// What every bitmap does by means of the interface alone, and the drawing of layouts.
#pragma once

#include "bitmap/DrawLayout.h"
#include "bitmap/IBitmap.h"
#include "bitmap/Pixels.h"

class BitmapBase : public IBitmap
{
public:
    // Copies a part of a picture to a device context. Lives for one drawing call and owns nothing.
    class IBltSrc
    {
    public:
        // False when nothing was copied.
        virtual bool Blt(HDC dc, const RECT& from, const RECT& to) const noexcept = 0;

    protected:
        ~IBltSrc() = default;
    };

    // Copies from header and pixels in memory.
    class DibSrc final : public IBltSrc
    {
    public:
        DibSrc(const BITMAPINFO* header, const void* pixels, DWORD operation) noexcept
            : info(header), bits(pixels), rasterOp(operation)
        {
        }
        bool Blt(HDC dc, const RECT& from, const RECT& to) const noexcept override;

    private:
        const BITMAPINFO* info;
        const void* bits;
        DWORD rasterOp;
    };

    int STDMETHODCALLTYPE GetWidth() const noexcept override;
    int STDMETHODCALLTYPE GetHeight() const noexcept override;
    int STDMETHODCALLTYPE GetBitCount() const noexcept override;
    int STDMETHODCALLTYPE GetStride() const noexcept override;

    bool STDMETHODCALLTYPE LoadDib(const void* data, int size) noexcept override;
    bool STDMETHODCALLTYPE LoadGlobal(HGLOBAL block) noexcept override;
    bool STDMETHODCALLTYPE ReplaceKeyColor(const IBitmap* other, COLORREF keyColor) noexcept override;
    bool STDMETHODCALLTYPE Tint(const RECT& rect, COLORREF color, BYTE amount, const IBitmap* mask) noexcept override;
    COLORREF STDMETHODCALLTYPE GetPixel(int x, int y) const noexcept override;
    bool STDMETHODCALLTYPE ContainsColor(COLORREF color) const noexcept override;
    bool STDMETHODCALLTYPE HasMinColorVariation(double limit, double secondLimit) const noexcept override;

    // Before pixels change: makes the storage this bitmap's own. False when that fails. Always true here.
    virtual bool STDMETHODCALLTYPE MakeUnique() noexcept { return true; }

protected:
    ~BitmapBase() = default;

    // Draws a picture of this one's size through `source` as IBitmap::Draw says.
    bool DrawLayout(HDC dc, const RECT& destRect, int layout, double scaleX, double scaleY,
                    const IBltSrc& source) const noexcept;

    vixa::bitmap::Size PictureSize() const noexcept;
};

// The pixels of a bitmap for reading; bytes.empty() when it has none in memory.
vixa::bitmap::Pixels PixelsOf(const IBitmap& bitmap) noexcept;
// The same after MakeUnique.
vixa::bitmap::WritablePixels WritablePixelsOf(IBitmap& bitmap) noexcept;

// Both rectangle types hold the same four numbers.
inline RECT ToRECT(const vixa::bitmap::Rect& rect) noexcept
{
    return {rect.left, rect.top, rect.right, rect.bottom};
}
inline vixa::bitmap::Rect FromRECT(const RECT& rect) noexcept
{
    return {rect.left, rect.top, rect.right, rect.bottom};
}
