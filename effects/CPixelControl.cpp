#include "effects/CPixelControl.h"

#include "effects/Creation.h"
#include "filter/SampleBytes.h"

#include <vixavideofx/ClassIds.h>

CPixelControl::CPixelControl(IUnknown* outer, HRESULT* result)
    : KernelEffect(outer, vixavideofx::CLSID_InvertColor, result)
{
}

CUnknown* CALLBACK CPixelControl::CreateInstance(IUnknown* outer, HRESULT* result) noexcept
{
    return vixa::OrOutOfMemory(new (std::nothrow) CPixelControl(outer, result), result);
}

HRESULT CPixelControl::Transform(IMediaSample* sample)
{
    const auto mask = parameters.Get().mask;
    if (mask != 0)
        Kernels().invert(vixa::ValidBytesOf(sample), mask);
    return S_OK;
}

STDMETHODIMP CPixelControl::SetPropertySet(IUnknown* propertySet) noexcept
{
    return TakeBlock(propertySet, parameters);
}
