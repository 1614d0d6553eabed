#include "effects/CGammaCorrection.h"

#include "effects/Creation.h"
#include "filter/SampleBytes.h"

#include <vixavideofx/ClassIds.h>

CGammaCorrection::CGammaCorrection(IUnknown* outer, HRESULT* result)
    : KernelEffect(outer, vixavideofx::CLSID_GammaCorrection, result)
{
}

CUnknown* CALLBACK CGammaCorrection::CreateInstance(IUnknown* outer, HRESULT* result) noexcept
{
    return vixa::OrOutOfMemory(new (std::nothrow) CGammaCorrection(outer, result), result);
}

HRESULT CGammaCorrection::Transform(IMediaSample* sample)
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
    Kernels().gamma(vixa::ValidBytesOf(sample), table);
    return S_OK;
}

STDMETHODIMP CGammaCorrection::SetPropertySet(IUnknown* propertySet) noexcept
{
    return TakeBlock(propertySet, parameters);
}
