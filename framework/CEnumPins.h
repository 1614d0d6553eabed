// The list of a filter's pins, as a graph reads it.
#pragma once

#include "framework/CEnumerator.h"

class CBaseFilter;

// Next answers E_OUTOFMEMORY when a pin cannot be made. The pins are the caller's to release.
class CEnumPins final : public CEnumerator<IEnumPins, IPin, CBaseFilter>
{
public:
    // Stands at the first pin.
    explicit CEnumPins(CBaseFilter* filter) noexcept;

private:
    LONG Version() const override;
    HRESULT At(int index, IPin** pin) const override;
    void GiveBack(IPin* pin) const noexcept override;
    IEnumPins* Copied() const noexcept override;
};
