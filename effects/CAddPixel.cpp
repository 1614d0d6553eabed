#include "effects/CAddPixel.h"

#include "filter/SampleBytes.h"

#include <vixavideofx/ClassIds.h>

#include <new>

CAddPixel::CAddPixel(IUnknown* outer, HRESULT* result) : KernelEffect(outer, vixavideofx::CLSID_AddPixel, result) {}

CUnknown* CALLBACK CAddPixel::CreateInstance(IUnknown* outer, HRESULT* result) noexcept
{
    return new (std::nothrow) CAddPixel(outer, result);
}

HRESULT CAddPixel::StepFor(IMediaSample* sample, Step& step)
{
    const auto delta = parameters.Get();
    step.frame = vixa::ValidBytesOf(sample);
    step.parameters = vixa::kernels::AddParameters{delta.redDelta, delta.greenDelta, delta.blueDelta};
    return S_OK;
}

STDMETHODIMP CAddPixel::SetPropertySet(IUnknown* propertySet) noexcept
{
    return TakeBlock(propertySet, parameters);
}
