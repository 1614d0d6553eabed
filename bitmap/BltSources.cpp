// The blit sources that copy from a bitmap handle.
#include "bitmap/GDIBitmap.h"

namespace {

// A bitmap selected into a memory device context compatible with the screen, for one copy.
class SelectedBitmap
{
public:
    explicit SelectedBitmap(HBITMAP bitmap) noexcept
        : dc(CreateCompatibleDC(nullptr)), previous(dc ? SelectObject(dc.get(), bitmap) : nullptr)
    {
    }
    ~SelectedBitmap()
    {
        if (previous)
            SelectObject(dc.get(), previous);
    }
    SelectedBitmap(const SelectedBitmap&) = delete;
    SelectedBitmap& operator=(const SelectedBitmap&) = delete;

    // Null when the bitmap could not be selected, as when it is in another device context.
    HDC Get() const noexcept { return previous ? dc.get() : nullptr; }

private:
    vixa::UniqueMemoryDC dc;
    HGDIOBJ previous;
};

int Width(const RECT& rect) noexcept
{
    return rect.right - rect.left;
}

int Height(const RECT& rect) noexcept
{
    return rect.bottom - rect.top;
}

} // namespace

bool GDIBitmap::HBitmapSrc::Blt(HDC dc, const RECT& from, const RECT& to) const noexcept
{
    const SelectedBitmap source(bitmap);
    if (!source.Get())
        return false;
    SetStretchBltMode(dc, COLORONCOLOR);
    return StretchBlt(dc, to.left, to.top, Width(to), Height(to), source.Get(), from.left, from.top, Width(from),
                      Height(from), rasterOp) != FALSE;
}

bool GDIBitmap::TransparentSrc::Blt(HDC dc, const RECT& from, const RECT& to) const noexcept
{
    const SelectedBitmap source(bitmap);
    return source.Get() && TransparentBlt(dc, to.left, to.top, Width(to), Height(to), source.Get(), from.left, from.top,
                                          Width(from), Height(from), keyColor) != FALSE;
}

bool GDIBitmap::AlphaSrc::Blt(HDC dc, const RECT& from, const RECT& to) const noexcept
{
    const SelectedBitmap source(bitmap);
    const BLENDFUNCTION blend = {AC_SRC_OVER, 0, constantAlpha, static_cast<BYTE>(perPixelAlpha ? AC_SRC_ALPHA : 0)};
    return source.Get() && AlphaBlend(dc, to.left, to.top, Width(to), Height(to), source.Get(), from.left, from.top,
                                      Width(from), Height(from), blend) != FALSE;
}
