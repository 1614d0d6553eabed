// The bitmap interfaces. Their operations keep this order behind those of IUnknown; none throws. A bitmap and those
// that share its storage belong to one thread at a time.
#pragma once

#include <windows.h>

#include <unknwn.h>

// The read-only view of a bitmap.
struct IBitmapData : virtual IUnknown
{
    // Pixels; 0 when empty.
    virtual int STDMETHODCALLTYPE GetWidth() const noexcept = 0;
    virtual int STDMETHODCALLTYPE GetHeight() const noexcept = 0;
    // Bits per pixel; 0 when empty, and of a device-compatible bitmap.
    virtual int STDMETHODCALLTYPE GetBitCount() const noexcept = 0;
    // Bytes per row: ((width × bit count + 31) / 32) × 4.
    virtual int STDMETHODCALLTYPE GetStride() const noexcept = 0;
    // The header with the colour table behind it, owned by the bitmap; null when empty.
    virtual const BITMAPINFO* STDMETHODCALLTYPE GetInfo() const noexcept = 0;
    // The pixels, bottom row first, owned by the bitmap; null when empty and for a device-compatible bitmap.
    virtual const void* STDMETHODCALLTYPE GetBits() const noexcept = 0;

protected:
    ~IBitmapData() = default;
};

struct IBitmap : virtual IBitmapData
{
    // A new bitmap with one reference, the caller's, that shares this one's storage; null when memory is short.
    virtual IBitmap* STDMETHODCALLTYPE Clone() const noexcept = 0;
    // Draws the whole bitmap into `destRect` of `dc`. Layouts: 0 stretch, 1 fit, 2 fill, 3 centre, 4 tile. True also
    // when there is nothing to draw: an empty bitmap or rectangle, a scale that is not above 0.
    virtual bool STDMETHODCALLTYPE Draw(HDC dc, const RECT& destRect, int layout, double scaleX,
                                        double scaleY) const noexcept = 0;
    // One stretched copy of `sourceRect` (rows from the top) to `destRect`. False when empty.
    virtual bool STDMETHODCALLTYPE Blt(HDC dc, const RECT& destRect, const RECT& sourceRect,
                                       DWORD rasterOp) const noexcept = 0;
    // Empties this bitmap; others that share its storage keep it.
    virtual void STDMETHODCALLTYPE Reset() noexcept = 0;
    virtual bool STDMETHODCALLTYPE IsEmpty() const noexcept = 0;
    // The packed DIB: header, colour table, rows. Without a buffer `*size` receives its bytes; with one `*size` is the
    // buffer's bytes and only read. False when empty, without `size`, or when the buffer is too small: nothing is
    // written then.
    virtual bool STDMETHODCALLTYPE ExportDib(void* buffer, int* size) const noexcept = 0;
    // The packed DIB in a new movable block, the caller's to free with GlobalFree; null when that cannot be.
    virtual HGLOBAL STDMETHODCALLTYPE ExportGlobal() const noexcept = 0;
    // Replaces the picture by a copy of a packed DIB of `size` bytes. False and empty when it is none: see
    // vixa::bitmap::ParsePackedDib for what is refused. Without data or with a size below 1 nothing changes.
    virtual bool STDMETHODCALLTYPE LoadDib(const void* data, int size) noexcept = 0;
    // LoadDib of a global memory block, which stays the caller's.
    virtual bool STDMETHODCALLTYPE LoadGlobal(HGLOBAL block) noexcept = 0;
    // Replaces the picture by a black one: a DIB section of 1, 4, 8, 16, 24 or 32 bits per pixel, or with a bit count
    // of 0 or less a bitmap compatible with the screen. False and empty on failure.
    virtual bool STDMETHODCALLTYPE Create(SIZE size, int bitCount) noexcept = 0;
    virtual bool STDMETHODCALLTYPE SharesStorageWith(const IBitmap* other) const noexcept = 0;
    // Takes another bitmap's picture: shares it when other is a GDIBitmap, else copies it. False when that fails: empty
    // when no storage can be made, black when other gives no pixels or colours; without another bitmap nothing changes.
    virtual bool STDMETHODCALLTYPE CopyFrom(const IBitmap* other) noexcept = 0;
    // 24 and 32 bits: gives the pixels of the key colour other's pixels at the same place; other is stretched to this
    // one's size first when its size or depth differs. False when not done.
    virtual bool STDMETHODCALLTYPE ReplaceKeyColor(const IBitmap* other, COLORREF keyColor) noexcept = 0;
    // 32 bits: moves the pixels of `rect` (rows from the top) toward `color` by amount ÷ 255; with a mask, a 1-bit
    // bitmap of the same size with pixel memory, only where its bit is set. False when not done, also for another mask.
    virtual bool STDMETHODCALLTYPE Tint(const RECT& rect, COLORREF color, BYTE amount,
                                        const IBitmap* mask) noexcept = 0;
    // Sets every byte of the pixel memory; false when there is none.
    virtual bool STDMETHODCALLTYPE Fill(BYTE value) noexcept = 0;
    // Width and height in pixels into `*out`; returns `out`.
    virtual SIZE* STDMETHODCALLTYPE GetSize(SIZE* out) const noexcept = 0;
    // The colour at a column and a row from the top, of a 1-bit bitmap the bit; CLR_INVALID outside, at other depths
    // and without pixel memory.
    virtual COLORREF STDMETHODCALLTYPE GetPixel(int x, int y) const noexcept = 0;
    // Whether a pixel has the colour; 24 and 32 bits with pixel memory, else false.
    virtual bool STDMETHODCALLTYPE ContainsColor(COLORREF color) const noexcept = 0;
    // Whether the colours of a 32-bit bitmap vary by `limit` (0 to 255, whole steps) or more around their rows' means.
    // `secondLimit` is ignored.
    virtual bool STDMETHODCALLTYPE HasMinColorVariation(double limit, double secondLimit) const noexcept = 0;
    // Replaces the picture by a stretched copy of that size; false, and unchanged, when that fails.
    virtual bool STDMETHODCALLTYPE Resize(SIZE size) noexcept = 0;
    // Replaces the picture by the copy that drawing it into `destRect` would show, when the drawn area divided by the
    // picture's is below `maxAreaRatio`. Drawing that copy with the same layout and scales of 1.0 shows what drawing
    // the picture with the given scales showed; GetSize tells whether it was replaced. False when empty.
    virtual bool STDMETHODCALLTYPE PrepareForDrawing(const RECT& destRect, int layout, double scaleX, double scaleY,
                                                     double maxAreaRatio) noexcept = 0;
    // The pixels; valid until the next operation that replaces the storage.
    virtual const void* STDMETHODCALLTYPE GetBitsForRead() const noexcept = 0;
    // The pixels after making the storage this bitmap's own; null when that fails.
    virtual void* STDMETHODCALLTYPE GetBitsForWrite() noexcept = 0;
    virtual void STDMETHODCALLTYPE ReleaseBits() const noexcept = 0;
    virtual bool STDMETHODCALLTYPE HasPalette() const noexcept = 0;
    // Colour table entries; 0 when empty.
    virtual int STDMETHODCALLTYPE GetPaletteSize() const noexcept = 0;
    // The colour table; null when empty.
    virtual const RGBQUAD* STDMETHODCALLTYPE GetPaletteForRead() const noexcept = 0;
    virtual RGBQUAD* STDMETHODCALLTYPE GetPaletteForWrite() noexcept = 0;
    virtual void STDMETHODCALLTYPE ReleasePalette() const noexcept = 0;

protected:
    ~IBitmap() = default;
};
