// "Gamma correction": maps red, green and blue through a power curve.
#pragma once

#include "effects/KernelEffect.h"
#include "filter/Guarded.h"

#include <vixavideofx/DataBlocks.h>

class CGammaCorrection final : public KernelEffect
{
public:
    // The create routine of the factory table: null when memory is short.
    static CUnknown* CALLBACK CreateInstance(IUnknown* outer, HRESULT* result) noexcept;

    STDMETHODIMP SetPropertySet(IUnknown* propertySet) noexcept override;

private:
    static constexpr std::int32_t identity = 100;

    // S_OK; E_FAIL when the gamma is not the identity and there is no sample, no input pin or no buffer.
    HRESULT StepFor(IMediaSample* sample, Step& step) override;

    CGammaCorrection(IUnknown* outer, HRESULT* result);

    vixa::Guarded<vixavideofx::GammaBlock> parameters{{identity}};

    // The streaming thread's own, rebuilt by the first frame that meets another gamma.
    vixa::kernels::GammaTable table{};
    std::int32_t tableGamma = identity;
};
