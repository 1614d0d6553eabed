#include "effects/CPixelControl.h"

#include "filter/SampleBytes.h"

#include <vixavideofx/ClassIds.h>

#include <new>

CPixelControl::CPixelControl(IUnknown* outer, HRESULT* result)
    : KernelEffect(outer, vixavideofx::CLSID_InvertColor, result)
{
}

CUnknown* CALLBACK CPixelControl::CreateInstance(IUnknown* outer, HRESULT* result) noexcept
{
    return new (std::nothrow) CPixelControl(outer, result);
}

HRESULT CPixelControl::StepFor(IMediaSample* sample, Step& step)
{
    step.frame = vixa::ValidBytesOf(sample);
    step.parameters = vixa::kernels::InvertParameters{parameters.Get().mask};
    return S_OK;
}

STDMETHODIMP CPixelControl::SetPropertySet(IUnknown* propertySet) noexcept
{
    return TakeBlock(propertySet, parameters);
}
