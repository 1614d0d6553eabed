// The effects' icons as the system's lists draw them.
#pragma once

#include "host/base/Handles.h"
#include "host/effects/EffectCatalogue.h"

#include <commctrl.h>

#include <cstdint>
#include <span>

namespace vixahost::browse {

using UniqueImageList = UniqueHandle<HIMAGELIST, ImageList_Destroy>;

// A packed DIB, drawn into a bitmap of the given size; null when it is no DIB.
UniqueBitmap BitmapOf(std::span<const std::uint8_t> packedDib, int width, int height);

// One image per entry, in the catalogue's order.
UniqueImageList MakeIcons(const std::vector<effects::CatalogueEntry>& catalogue, int width, int height);

} // namespace vixahost::browse
