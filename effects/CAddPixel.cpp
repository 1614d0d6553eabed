#include "effects/CAddPixel.h"

#include "filter/SampleBytes.h"

#include <vixavideofx/ClassIds.h>

#include <new>

CAddPixel::CAddPixel(IUnknown* outer, HRESULT* result) : KernelEffect(outer, vixavideofx::CLSID_AddPixel, result) {}

CUnknown* CALLBACK CAddPixel::CreateInstance(IUnknown* outer, HRESULT* result) noexcept
{
    return new (std::nothrow) CAddPixel(outer, result);
}

HRESULT CAddPixel::Transform(IMediaSample* sample)
{
    const auto delta = parameters.Get();
    Kernels().add(vixa::ValidBytesOf(sample), {delta.redDelta, delta.greenDelta, delta.blueDelta});
    return S_OK;
}

STDMETHODIMP CAddPixel::SetPropertySet(IUnknown* propertySet) noexcept
{
    return TakeBlock(propertySet, parameters);
}
