#include "effects/CFilterColor.h"

#include "filter/SampleBytes.h"

#include <vixavideofx/ClassIds.h>

#include <limits>
#include <new>

CFilterColor::CFilterColor(IUnknown* outer, HRESULT* result)
    : KernelEffect(outer, vixavideofx::CLSID_FilterColor, result)
{
}

CUnknown* CALLBACK CFilterColor::CreateInstance(IUnknown* outer, HRESULT* result) noexcept
{
    return new (std::nothrow) CFilterColor(outer, result);
}

HRESULT CFilterColor::Transform(IMediaSample* sample)
{
    const auto fields = parameters.Get();
    Kernels().filterColor(vixa::ValidBytesOf(sample),
                          {fields.block.intensity, fields.block.colour, fields.brighten != 0});
    return S_OK;
}

STDMETHODIMP CFilterColor::SetPropertySet(IUnknown* propertySet) noexcept
{
    if (!propertySet)
        return S_OK;
    Fields fields = parameters.Get();
    const auto read = vixa::ReadBlock(*static_cast<IDataPropertySet*>(propertySet), fields.block);
    if (SUCCEEDED(read.result) && read.size > 0) {
        auto& intensity = fields.block.intensity;
        fields.brighten = intensity >= 0 ? 1 : 0;
        if (intensity < 0)
            // The least integer has no positive counterpart; the largest saturates a byte just as well.
            intensity = intensity == std::numeric_limits<std::int32_t>::min() ? std::numeric_limits<std::int32_t>::max()
                                                                              : -intensity;
    }
    parameters.Set(fields);
    return S_OK;
}
