#include "host/browse/EffectIcons.h"

#include <cstring>

namespace vixahost::browse {

UniqueBitmap BitmapOf(std::span<const std::uint8_t> packedDib, int width, int height)
{
    BITMAPINFOHEADER header = {};
    if (packedDib.size() < sizeof header)
        return nullptr;
    std::memcpy(&header, packedDib.data(), sizeof header);
    const std::size_t colours = header.biBitCount > 8 ? 0
                                : header.biClrUsed    ? header.biClrUsed
                                                      : std::size_t{1} << header.biBitCount;
    const std::size_t bits = header.biSize + colours * sizeof(RGBQUAD);
    const std::size_t row = (static_cast<std::size_t>(header.biWidth) * header.biBitCount + 31) / 32 * 4;
    if (header.biSize < sizeof header || header.biWidth <= 0 || header.biHeight <= 0 ||
        packedDib.size() < bits + row * static_cast<std::size_t>(header.biHeight))
        return nullptr;
    const UniqueScreenDC screen(GetDC(nullptr));
    const UniqueMemoryDC dc(CreateCompatibleDC(screen.get()));
    UniqueBitmap bitmap(CreateCompatibleBitmap(screen.get(), width, height));
    const HGDIOBJ old = SelectObject(dc.get(), bitmap.get());
    SetStretchBltMode(dc.get(), HALFTONE);
    SetBrushOrgEx(dc.get(), 0, 0, nullptr);
    StretchDIBits(dc.get(), 0, 0, width, height, 0, 0, header.biWidth, header.biHeight, packedDib.data() + bits,
                  reinterpret_cast<const BITMAPINFO*>(packedDib.data()), DIB_RGB_COLORS, SRCCOPY);
    SelectObject(dc.get(), old);
    return bitmap;
}

UniqueImageList MakeIcons(const std::vector<effects::CatalogueEntry>& catalogue, int width, int height)
{
    UniqueImageList list(ImageList_Create(width, height, ILC_COLOR32, static_cast<int>(catalogue.size()), 1));
    for (const effects::CatalogueEntry& entry : catalogue)
        if (ImageList_Add(list.get(), BitmapOf(entry.icon, width, height).get(), nullptr) < 0)
            ImageList_Add(list.get(), UniqueBitmap(CreateBitmap(width, height, 1, 32, nullptr)).get(), nullptr);
    return list;
}

} // namespace vixahost::browse
