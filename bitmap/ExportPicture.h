// The pictures that a host asks for: the two-call export of a bitmap resource.
#pragma once

#include "bitmap/BitmapResources.h"

// Hands bitmap resource `id` out as a packed DIB. Without a buffer `*size` receives its bytes. With one, `*size` is the
// buffer's bytes and only read; the picture is copied when it fits, else nothing is written. S_OK in all of these.
// E_FAIL when there is no such picture, E_INVALIDARG without `size`. Which of the two pointers may be null in which
// combination beyond that is the caller's to say.
HRESULT ExportPicture(IBitmapResources& resources, UINT id, BYTE* buffer, ULONG* size) noexcept;
