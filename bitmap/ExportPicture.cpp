#include "bitmap/ExportPicture.h"

#include "bitmap/GDIBitmap.h"

#include <algorithm>

HRESULT ExportPicture(IBitmapResources& resources, UINT id, BYTE* buffer, ULONG* size) noexcept
{
    if (!size)
        return E_INVALIDARG;
    GDIBitmap picture;
    picture.LoadFromResource(resources, id);
    if (picture.IsEmpty())
        return E_FAIL;
    int bytes = static_cast<int>(std::min<ULONG>(*size, INT_MAX));
    if (buffer)
        picture.ExportDib(buffer, &bytes);
    else if (picture.ExportDib(nullptr, &bytes))
        *size = static_cast<ULONG>(bytes);
    return S_OK;
}
