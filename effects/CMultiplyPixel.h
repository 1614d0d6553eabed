// "Multiply pixel": scales red, green and blue by a percentage.
#pragma once

#include "effects/KernelEffect.h"
#include "filter/Guarded.h"

#include <vixavideofx/DataBlocks.h>

class CMultiplyPixel final : public KernelEffect
{
public:
    // The create routine of the factory table: null when memory is short.
    static CUnknown* CALLBACK CreateInstance(IUnknown* outer, HRESULT* result) noexcept;

    STDMETHODIMP SetPropertySet(IUnknown* propertySet) noexcept override;

private:
    // Always S_OK.
    HRESULT StepFor(IMediaSample* sample, Step& step) override;

    CMultiplyPixel(IUnknown* outer, HRESULT* result);

    // The catalogue's default, so that a filter without parameters keeps the colours.
    vixa::Guarded<vixavideofx::MultiplyBlock> parameters{{100}};
};
