// What the create routines of the effects share.
#pragma once

#include "framework/DirectShow.h"

#include <new>

namespace vixa {

// Passes a fresh object on, or stores E_OUTOFMEMORY when there is none.
inline CUnknown* OrOutOfMemory(CUnknown* object, HRESULT* result) noexcept
{
    if (!object && result)
        *result = E_OUTOFMEMORY;
    return object;
}

} // namespace vixa
