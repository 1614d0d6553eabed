// The library's bitmap resources, as the bitmap model asks for them.
#pragma once

#include "bitmap/BitmapResources.h"

namespace vixa {

// Pictures come from the library itself, whatever the language; empty spans outside Attach and Detach.
class ModulePictures final : public IBitmapResources
{
public:
    std::span<const std::byte> FindBitmapResource(UINT id) noexcept override;
};

} // namespace vixa
