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
