#include "bitmap/SharedBitmapData.h"

#include "bitmap/DibLayout.h"

#include <algorithm>
#include <cstring>
#include <new>

using Microsoft::WRL::ComPtr;

namespace {

// What GetDIBits fills in beyond the sizes and the colour table does not belong to a record's header.
void ClearFilledIn(BITMAPINFOHEADER& header) noexcept
{
    header.biSizeImage = 0;
    header.biClrUsed = 0;
    header.biClrImportant = 0;
}

// The colours of a device-dependent bitmap of few: the system knows them, the bitmap has no table.
bool FetchColorTable(HDC screen, HBITMAP bitmap, BITMAPINFO& info) noexcept
{
    const auto stride = vixa::bitmap::StrideOf(info.bmiHeader.biWidth, info.bmiHeader.biBitCount);
    const std::unique_ptr<BYTE[]> row(new (std::nothrow) BYTE[static_cast<std::size_t>(stride)]);
    const bool fetched = row && GetDIBits(screen, bitmap, 0, 1, row.get(), &info, DIB_RGB_COLORS) != 0;
    ClearFilledIn(info.bmiHeader);
    return fetched;
}

// Takes over the reference that a new record starts with. Not Attach: this library's adds a reference of its own.
ComPtr<SharedBitmapData> Owned(SharedBitmapData* record) noexcept
{
    ComPtr<SharedBitmapData> owner;
    *owner.GetAddressOf() = record;
    return owner;
}

} // namespace

ULONG SharedBitmapData::Release() noexcept
{
    return references.Drop([this] { delete this; });
}

ComPtr<SharedBitmapData> SharedBitmapData::MakeEmpty() noexcept
{
    static SharedBitmapData spare; // its own reference is never given up
    if (auto* const record = new (std::nothrow) SharedBitmapData)
        return Owned(record);
    return &spare;
}

bool SharedBitmapData::AllocateInfo(SIZE size, int bitCount) noexcept
{
    const auto tableBytes = std::max<std::int64_t>(4, vixa::bitmap::ColorTableBytes(0, bitCount));
    const auto bytes = static_cast<std::size_t>(vixa::bitmap::dibHeaderBytes + tableBytes);
    info.reset(new (std::nothrow) BYTE[bytes]());
    if (!info)
        return false;
    BITMAPINFOHEADER& header = Info()->bmiHeader;
    header.biSize = sizeof header;
    header.biWidth = size.cx;
    header.biHeight = size.cy;
    header.biPlanes = 1;
    header.biBitCount = static_cast<WORD>(bitCount);
    return true;
}

ComPtr<SharedBitmapData> SharedBitmapData::Make(SIZE size, int bitCount) noexcept
{
    const bool compatible = bitCount <= 0;
    // A compatible bitmap takes up to 32 bits per pixel: the same bound keeps its figures in range.
    if (!vixa::bitmap::LayoutOf(size.cx, size.cy, compatible ? 32 : bitCount))
        return nullptr;
    auto made = Owned(new (std::nothrow) SharedBitmapData);
    if (!made || !made->AllocateInfo(size, compatible ? 0 : bitCount))
        return nullptr;
    const vixa::UniqueScreenDC screen(GetDC(nullptr));
    made->compatible = compatible;
    if (compatible)
        made->bitmap.reset(CreateCompatibleBitmap(screen.get(), size.cx, size.cy));
    else
        made->bitmap.reset(CreateDIBSection(screen.get(), made->Info(), DIB_RGB_COLORS, &made->bits, nullptr, 0));
    return made->bitmap ? made : nullptr;
}

ComPtr<SharedBitmapData> SharedBitmapData::MakeFrom(HBITMAP source) noexcept
{
    DIBSECTION section = {};
    const int got = GetObjectW(source, sizeof section, &section);
    if (got == 0)
        return nullptr;
    const BITMAP& picture = section.dsBm;
    const SIZE size = {picture.bmWidth, picture.bmHeight};
    const vixa::UniqueScreenDC screen(GetDC(nullptr));
    if (got == sizeof section && picture.bmBits) {
        auto made = Make(size, picture.bmBitsPixel);
        const auto rows = static_cast<UINT>(size.cy);
        if (!made || GetDIBits(screen.get(), source, 0, rows, made->bits, made->Info(), DIB_RGB_COLORS) == 0)
            return nullptr;
        ClearFilledIn(made->Info()->bmiHeader);
        return made;
    }
    auto made = Owned(new (std::nothrow) SharedBitmapData);
    if (!vixa::bitmap::LayoutOf(size.cx, size.cy, picture.bmBitsPixel) || !made ||
        !made->AllocateInfo(size, picture.bmBitsPixel))
        return nullptr;
    made->bitmap.reset(static_cast<HBITMAP>(CopyImage(source, IMAGE_BITMAP, 0, 0, 0)));
    if (!made->bitmap ||
        (picture.bmBitsPixel <= 8 && !FetchColorTable(screen.get(), made->bitmap.get(), *made->Info())))
        return nullptr;
    return made;
}

int SharedBitmapData::PaletteSize() const noexcept
{
    if (!info)
        return 0;
    const BITMAPINFOHEADER& header = Info()->bmiHeader;
    return static_cast<int>(vixa::bitmap::ColorTableBytes(header.biClrUsed, header.biBitCount) / 4);
}

void SharedBitmapData::GiveColorTable(HDC selected) const noexcept
{
    if (bits && Info()->bmiHeader.biBitCount <= 8)
        SetDIBColorTable(selected, 0, static_cast<UINT>(PaletteSize()), Info()->bmiColors);
}
