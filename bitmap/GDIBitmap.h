// The library's bitmap: GDI storage that copies share until one of them changes it.
#pragma once

#include "bitmap/BitmapBase.h"
#include "bitmap/BitmapResources.h"
#include "bitmap/DibLayout.h"
#include "bitmap/SharedBitmapData.h"
#include "framework/GCUnknown.h"

class GDIBitmap : public BitmapBase, public virtual GCUnknown
{
public:
    // Copies from a bitmap handle.
    class HBitmapSrc final : public IBltSrc
    {
    public:
        HBitmapSrc(HBITMAP source, DWORD operation) noexcept : bitmap(source), rasterOp(operation) {}
        bool Blt(HDC dc, const RECT& from, const RECT& to) const noexcept override;

    private:
        HBITMAP bitmap;
        DWORD rasterOp;
    };

    // Copies what doesn't have the key colour.
    class TransparentSrc final : public IBltSrc
    {
    public:
        TransparentSrc(HBITMAP source, COLORREF key) noexcept : bitmap(source), keyColor(key) {}
        bool Blt(HDC dc, const RECT& from, const RECT& to) const noexcept override;

    private:
        HBITMAP bitmap;
        COLORREF keyColor;
    };

    // Blends; per-pixel alpha wants 32 bits with colours multiplied by their alpha.
    class AlphaSrc final : public IBltSrc
    {
    public:
        AlphaSrc(HBITMAP source, bool perPixel, BYTE constant) noexcept
            : bitmap(source), perPixelAlpha(perPixel), constantAlpha(constant)
        {
        }
        bool Blt(HDC dc, const RECT& from, const RECT& to) const noexcept override;

    private:
        HBITMAP bitmap;
        bool perPixelAlpha;
        BYTE constantAlpha;
    };

    // Empty.
    GDIBitmap() noexcept;
    // A copy of what a bitmap handle shows; empty on failure. The handle stays the caller's.
    explicit GDIBitmap(HBITMAP source) noexcept;
    // Copies share the storage.
    GDIBitmap(const GDIBitmap& other) noexcept;
    GDIBitmap& operator=(const GDIBitmap& other) noexcept;

    // An empty bitmap on the heap with one reference, the caller's; null when memory is short.
    static GDIBitmap* New() noexcept;

    const BITMAPINFO* STDMETHODCALLTYPE GetInfo() const noexcept override;
    const void* STDMETHODCALLTYPE GetBits() const noexcept override;

    IBitmap* STDMETHODCALLTYPE Clone() const noexcept override;
    bool STDMETHODCALLTYPE Draw(HDC dc, const RECT& destRect, int layout, double scaleX,
                                double scaleY) const noexcept override;
    bool STDMETHODCALLTYPE Blt(HDC dc, const RECT& destRect, const RECT& sourceRect,
                               DWORD rasterOp) const noexcept override;
    void STDMETHODCALLTYPE Reset() noexcept override;
    bool STDMETHODCALLTYPE IsEmpty() const noexcept override;
    bool STDMETHODCALLTYPE ExportDib(void* buffer, int* size) const noexcept override;
    HGLOBAL STDMETHODCALLTYPE ExportGlobal() const noexcept override;
    bool STDMETHODCALLTYPE Create(SIZE size, int bitCount) noexcept override;
    bool STDMETHODCALLTYPE SharesStorageWith(const IBitmap* other) const noexcept override;
    bool STDMETHODCALLTYPE CopyFrom(const IBitmap* other) noexcept override;
    bool STDMETHODCALLTYPE Fill(BYTE value) noexcept override;
    SIZE* STDMETHODCALLTYPE GetSize(SIZE* out) const noexcept override;
    bool STDMETHODCALLTYPE Resize(SIZE size) noexcept override;
    bool STDMETHODCALLTYPE PrepareForDrawing(const RECT& destRect, int layout, double scaleX, double scaleY,
                                             double maxAreaRatio) noexcept override;
    const void* STDMETHODCALLTYPE GetBitsForRead() const noexcept override;
    void* STDMETHODCALLTYPE GetBitsForWrite() noexcept override;
    void STDMETHODCALLTYPE ReleaseBits() const noexcept override {}
    bool STDMETHODCALLTYPE HasPalette() const noexcept override;
    int STDMETHODCALLTYPE GetPaletteSize() const noexcept override;
    const RGBQUAD* STDMETHODCALLTYPE GetPaletteForRead() const noexcept override;
    RGBQUAD* STDMETHODCALLTYPE GetPaletteForWrite() noexcept override;
    void STDMETHODCALLTYPE ReleasePalette() const noexcept override {}
    bool STDMETHODCALLTYPE MakeUnique() noexcept override;

    // Draws what doesn't have the key colour; layouts and result as IBitmap::Draw.
    virtual bool STDMETHODCALLTYPE DrawTransparent(HDC dc, const RECT& destRect, COLORREF keyColor, int layout,
                                                   double scaleX, double scaleY) const noexcept;
    virtual bool STDMETHODCALLTYPE BltTransparent(HDC dc, const RECT& destRect, const RECT& sourceRect,
                                                  COLORREF keyColor) const noexcept;
    // Blends with an opacity of 0.0 to 1.0 (others stop at these).
    virtual bool STDMETHODCALLTYPE DrawAlpha(HDC dc, const RECT& destRect, double opacity, bool perPixelAlpha,
                                             int layout, double scaleX, double scaleY) const noexcept;
    virtual bool STDMETHODCALLTYPE BltAlpha(HDC dc, const RECT& destRect, const RECT& sourceRect, double opacity,
                                            bool perPixelAlpha) const noexcept;

    // Declared behind the operations so that these keep their order.
    ~GDIBitmap() override = default;

    // Loads a bitmap resource; false and empty when there is none or it is no picture.
    bool LoadFromResource(IBitmapResources& resources, UINT id) noexcept;

    // Replaces the picture by `source` drawn with a layout into a new one of that size and depth (0: compatible with
    // the screen); false, and unchanged, when that fails. `source` may be this bitmap.
    bool CreateDrawn(const IBitmap& source, SIZE size, int bitCount, int layout, vixa::bitmap::Scale scale) noexcept;

private:
    // The handle, its section's colour table brought up to date.
    HBITMAP HandleForBlit() const noexcept;
    // The layout that an export has.
    vixa::bitmap::DibLayout ExportLayout() const noexcept;
    bool FetchRows(const vixa::bitmap::DibLayout& layout, BYTE* rows) const noexcept;

    Microsoft::WRL::ComPtr<SharedBitmapData> data;
};
