// "Invert color": inverts the chosen channels and clears the others.
#pragma once

#include "effects/KernelEffect.h"
#include "filter/Guarded.h"

#include <vixavideofx/DataBlocks.h>

class CPixelControl final : public KernelEffect
{
public:
    // The create routine of the factory table: null when memory is short.
    static CUnknown* CALLBACK CreateInstance(IUnknown* outer, HRESULT* result) noexcept;

    STDMETHODIMP SetPropertySet(IUnknown* propertySet) noexcept override;

private:
    // Always S_OK.
    HRESULT StepFor(IMediaSample* sample, Step& step) override;

    CPixelControl(IUnknown* outer, HRESULT* result);

    vixa::Guarded<vixavideofx::InvertBlock> parameters{{0}};
};
