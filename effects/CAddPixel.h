// "Add pixel": adds a signed offset to each of red, green and blue.
#pragma once

#include "effects/KernelEffect.h"
#include "filter/Guarded.h"

#include <vixavideofx/DataBlocks.h>

class CAddPixel final : public KernelEffect
{
public:
    // The create routine of the factory table: null when memory is short.
    static CUnknown* CALLBACK CreateInstance(IUnknown* outer, HRESULT* result) noexcept;

    STDMETHODIMP SetPropertySet(IUnknown* propertySet) noexcept override;

private:
    // Always S_OK.
    HRESULT StepFor(IMediaSample* sample, Step& step) override;

    CAddPixel(IUnknown* outer, HRESULT* result);

    vixa::Guarded<vixavideofx::AddBlock> parameters{{0, 0, 0, 0}};
};
