// The list of the media types that a pin prefers.
#pragma once

#include "framework/CEnumerator.h"

class CBasePin;

// Next answers E_OUTOFMEMORY when a type cannot be copied. The types are the caller's, to be freed with
// DeleteMediaType.
class CEnumMediaTypes final : public CEnumerator<IEnumMediaTypes, AM_MEDIA_TYPE, CBasePin>
{
public:
    // Stands at the first type.
    explicit CEnumMediaTypes(CBasePin* pin) noexcept;

private:
    LONG Version() const override;
    HRESULT At(int index, AM_MEDIA_TYPE** type) const override;
    void GiveBack(AM_MEDIA_TYPE* type) const noexcept override;
    IEnumMediaTypes* Copied() const noexcept override;
};
