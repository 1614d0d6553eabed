// Where pictures come from, seen from this room.
#pragma once

#include <windows.h>

#include <cstddef>
#include <span>

// Whoever can find the library's bitmap resources. The bytes are a packed DIB and stay valid as long as their module.
class IBitmapResources
{
public:
    // The raw bytes of bitmap resource `id`; empty when there is none.
    virtual std::span<const std::byte> FindBitmapResource(UINT id) noexcept = 0;

protected:
    ~IBitmapResources() = default;
};
