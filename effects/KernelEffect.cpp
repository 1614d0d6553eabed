#include "effects/KernelEffect.h"

#include <algorithm>

namespace kernels = vixa::kernels;

static_assert(static_cast<ULONG>(kernels::Level::Scalar) == IInstructionCeiling::Plain &&
              static_cast<ULONG>(kernels::Level::Sse2) == IInstructionCeiling::Sse2 &&
              static_cast<ULONG>(kernels::Level::Avx2) == IInstructionCeiling::Avx2 &&
              static_cast<ULONG>(kernels::Level::Avx512) == IInstructionCeiling::Avx512);

STDMETHODIMP KernelEffect::NonDelegatingQueryInterface(REFIID riid, void** object) noexcept
{
    if (riid == IID_IInstructionCeiling)
        return GetInterface(static_cast<IInstructionCeiling*>(this), object);
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
