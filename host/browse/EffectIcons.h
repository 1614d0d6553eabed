// The effects' icons as the system's lists draw them.
#pragma once

#include "framework/Handles.h"
#include "host/EffectCatalogue.h"

#include <commctrl.h>

#include <cstdint>
#include <span>

namespace vixa::host {

using UniqueImageList = UniqueHandle<HIMAGELIST, ImageList_Destroy>;

// A packed DIB, drawn into a bitmap of the given size; null when it is no DIB.
UniqueBitmap BitmapOf(std::span<const std::uint8_t> packedDib, int width, int height);

// One image per entry, in the catalogue's order.
UniqueImageList MakeIcons(const std::vector<CatalogueEntry>& catalogue, int width, int height);

} // namespace vixa::host
