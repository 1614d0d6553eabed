// An effect whose frames go through the pixel kernels, at the best instruction set or below a ceiling that a host sets.
#pragma once

#include "effects/kernels/Kernels.h"
#include "filter/InPlaceVideoEffect.h"

#include <vixavideofx/IInstructionCeiling.h>

#include <atomic>

class KernelEffect : public InPlaceVideoEffect, public IInstructionCeiling
{
public:
    DECLARE_IUNKNOWN

    // IInstructionCeiling besides those of InPlaceVideoEffect.
    STDMETHODIMP NonDelegatingQueryInterface(REFIID riid, void** object) noexcept override;

    STDMETHODIMP SetCeiling(ULONG level) noexcept override;
    STDMETHODIMP GetLevel(ULONG* level) noexcept override;

protected:
    using InPlaceVideoEffect::InPlaceVideoEffect;

    // The kernels for the next frame.
    const vixa::kernels::KernelSet& Kernels() const noexcept { return vixa::kernels::KernelsOf(ceiling); }

private:
    std::atomic<vixa::kernels::Level> ceiling = vixa::kernels::Level::Avx512;
};
