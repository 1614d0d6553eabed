#include "effects/CMultiplyPixel.h"

#include "filter/SampleBytes.h"

#include <vixavideofx/ClassIds.h>

#include <new>

CMultiplyPixel::CMultiplyPixel(IUnknown* outer, HRESULT* result)
    : KernelEffect(outer, vixavideofx::CLSID_MultiplyPixel, result)
{
}

CUnknown* CALLBACK CMultiplyPixel::CreateInstance(IUnknown* outer, HRESULT* result) noexcept
{
    return new (std::nothrow) CMultiplyPixel(outer, result);
}

HRESULT CMultiplyPixel::StepFor(IMediaSample* sample, Step& step)
{
    step.frame = vixa::ValidBytesOf(sample);
    step.parameters = vixa::kernels::MultiplyParameters{parameters.Get().factor};
    return S_OK;
}

STDMETHODIMP CMultiplyPixel::SetPropertySet(IUnknown* propertySet) noexcept
{
    return TakeBlock(propertySet, parameters);
}
