#include "framework/CEnumMediaTypes.h"

#include "framework/CBasePin.h"

CEnumMediaTypes::CEnumMediaTypes(CBasePin* pin) noexcept : CEnumerator(pin)
{
    Reset();
}

LONG CEnumMediaTypes::Version() const
{
    return owner->GetMediaTypeVersion();
}

HRESULT CEnumMediaTypes::At(int index, AM_MEDIA_TYPE** type) const
{
    CMediaType found;
    if (owner->GetMediaType(index, &found) != S_OK)
        return S_FALSE;
    *type = CreateMediaType(&found);
    return *type ? S_OK : E_OUTOFMEMORY;
}

void CEnumMediaTypes::GiveBack(AM_MEDIA_TYPE* type) const noexcept
{
    DeleteMediaType(type);
}

IEnumMediaTypes* CEnumMediaTypes::Copied() const noexcept
{
    return new (std::nothrow) CEnumMediaTypes(*this);
}
