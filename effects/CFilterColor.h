// "Filter color": raises or lowers one channel in pixels whose hue lies in that colour's range.
#pragma once

#include "effects/KernelEffect.h"
#include "filter/Guarded.h"

#include <vixavideofx/DataBlocks.h>

class CFilterColor final : public KernelEffect
{
public:
    // The create routine of the factory table: null when memory is short.
    static CUnknown* CALLBACK CreateInstance(IUnknown* outer, HRESULT* result) noexcept;

    // The sign of the intensity is taken into `brighten` only after a read that succeeded with at least one byte.
    STDMETHODIMP SetPropertySet(IUnknown* propertySet) noexcept override;

private:
    struct Fields
    {
        vixavideofx::FilterColorBlock block; // the intensity as a magnitude
        std::int32_t brighten;               // 1: add the intensity, 0: subtract it
    };

    // Always S_OK.
    HRESULT StepFor(IMediaSample* sample, Step& step) override;

    CFilterColor(IUnknown* outer, HRESULT* result);

    vixa::Guarded<Fields> parameters{{{0, vixavideofx::FilterColorBlock::Red}, 1}};
};
