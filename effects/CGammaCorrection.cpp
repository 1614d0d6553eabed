#include "effects/CGammaCorrection.h"

#include "filter/SampleBytes.h"

#include <vixavideofx/ClassIds.h>

#include <new>

CGammaCorrection::CGammaCorrection(IUnknown* outer, HRESULT* result)
    : KernelEffect(outer, vixavideofx::CLSID_GammaCorrection, result)
{
}

CUnknown* CALLBACK CGammaCorrection::CreateInstance(IUnknown* outer, HRESULT* result) noexcept
{
    return new (std::nothrow) CGammaCorrection(outer, result);
}

HRESULT CGammaCorrection::StepFor(IMediaSample* sample, Step& step)
{
    const auto gamma = parameters.Get().gamma;
    if (gamma == identity)
        return S_OK;
    BYTE* bytes = nullptr;
    if (!sample || !m_pInput || FAILED(sample->GetPointer(&bytes)) || !bytes)
        return E_FAIL;
    if (gamma != tableGamma) {
        table = vixa::kernels::MakeGammaTable(gamma);
        tableGamma = gamma;
    }
    step.frame = vixa::ValidBytesOf(sample);
    step.parameters = table;
    return S_OK;
}

STDMETHODIMP CGammaCorrection::SetPropertySet(IUnknown* propertySet) noexcept
{
    return TakeBlock(propertySet, parameters);
}
