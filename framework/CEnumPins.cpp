#include "framework/CEnumPins.h"

#include "framework/CBasePin.h"

CEnumPins::CEnumPins(CBaseFilter* filter) noexcept : CEnumerator(filter)
{
    Reset();
}

LONG CEnumPins::Version() const
{
    return owner->GetPinVersion();
}

HRESULT CEnumPins::At(int index, IPin** pin) const
{
    if (index >= owner->GetPinCount())
        return S_FALSE;
    CBasePin* const found = owner->GetPin(index);
    if (!found)
        return E_OUTOFMEMORY;
    found->AddRef();
    *pin = found;
    return S_OK;
}

void CEnumPins::GiveBack(IPin* pin) const noexcept
{
    pin->Release();
}

IEnumPins* CEnumPins::Copied() const noexcept
{
    return new (std::nothrow) CEnumPins(*this);
}
