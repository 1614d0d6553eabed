#include "effects/CFilterColor.h"

#include "filter/SampleBytes.h"

#include <vixavideofx/ClassIds.h>

#include <algorithm>
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

HRESULT CFilterColor::StepFor(IMediaSample* sample, Step& step)
{
    const auto fields = parameters.Get();
    step.frame = vixa::ValidBytesOf(sample);
    step.parameters =
        vixa::kernels::FilterColorParameters{fields.block.intensity, fields.block.colour, fields.brighten != 0};
    return S_OK;
}

STDMETHODIMP CFilterColor::SetPropertySet(IUnknown* propertySet) noexcept
{
    const auto before = parameters.Get().block;
    return TakeRead(propertySet, before, [this](const vixa::BlockRead<vixavideofx::FilterColorBlock>& read) {
        parameters.Change([&](Fields& current) {
            read.LayOver(current.block);
            if (!read.HasData())
                return;
            auto& intensity = current.block.intensity;
            current.brighten = intensity >= 0 ? 1 : 0;
            // The least integer has no positive counterpart; the largest saturates a byte just as well.
            if (intensity < 0)
                intensity = -std::max(intensity, -std::numeric_limits<std::int32_t>::max());
        });
    });
}
