#include "effects/KernelEffect.h"

#include <algorithm>
#include <exception>

namespace kernels = vixa::kernels;

static_assert(static_cast<ULONG>(kernels::Level::Scalar) == IInstructionCeiling::Plain &&
              static_cast<ULONG>(kernels::Level::Sse2) == IInstructionCeiling::Sse2 &&
              static_cast<ULONG>(kernels::Level::Avx2) == IInstructionCeiling::Avx2 &&
              static_cast<ULONG>(kernels::Level::Avx512) == IInstructionCeiling::Avx512);

KernelEffect::KernelEffect(IUnknown* outer, REFCLSID clsid, HRESULT* result) : InPlaceVideoEffect(outer, clsid, result)
{
    batchWorker = this;
}

STDMETHODIMP KernelEffect::NonDelegatingQueryInterface(REFIID riid, void** object) noexcept
{
    if (riid == IID_IInstructionCeiling)
        return GetInterface(static_cast<IInstructionCeiling*>(this), object);
    if (riid == IID_IEffectChaining)
        return GetInterface(static_cast<IEffectChaining*>(this), object);
    return InPlaceVideoEffect::NonDelegatingQueryInterface(riid, object);
}

STDMETHODIMP KernelEffect::SetCeiling(ULONG level) noexcept
{
    if (level > IInstructionCeiling::Avx512)
        return E_INVALIDARG;
    ceiling = static_cast<kernels::Level>(level);
    return S_OK;
}

STDMETHODIMP KernelEffect::GetLevel(ULONG* level) noexcept
{
    if (!level)
        return E_POINTER;
    *level = static_cast<ULONG>(std::min(ceiling.load(), kernels::HighestLevel()));
    return S_OK;
}

STDMETHODIMP KernelEffect::SetChaining(BOOL newTogether) noexcept
{
    together = newTogether != FALSE;
    return S_OK;
}

STDMETHODIMP KernelEffect::GetChaining(BOOL* isTogether) noexcept
{
    if (!isTogether)
        return E_POINTER;
    *isTogether = together;
    return S_OK;
}

HRESULT KernelEffect::StepFor(IMediaSample*, Step&)
{
    return E_NOTIMPL;
}

HRESULT KernelEffect::Transform(IMediaSample* sample)
{
    Step step = StartOfStep();
    const HRESULT result = StepFor(sample, step);
    if (SUCCEEDED(result))
        kernels::RunStep(step);
    return result;
}

bool KernelEffect::PutOff(IMediaSample* sample, vixa::Batch& pending) noexcept
{
    try {
        Step step = StartOfStep();
        if (FAILED(StepFor(sample, step)))
            return false;
        static_cast<FrameBatch&>(pending).chain.Add(step);
        return true;
    } catch (const std::exception&) {
        return false; // no memory for a longer chain
    }
}
