#include "effects/CAddPixel.h"

#include "effects/Creation.h"
#include "filter/SampleBytes.h"

#include <vixavideofx/ClassIds.h>

CAddPixel::CAddPixel(IUnknown* outer, HRESULT* result) : KernelEffect(outer, vixavideofx::CLSID_AddPixel, result) {}

CUnknown* CALLBACK CAddPixel::CreateInstance(IUnknown* outer, HRESULT* result) noexcept
{
    return vixa::OrOutOfMemory(new (std::nothrow) CAddPixel(outer, result), result);
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
