// An effect whose frames go through the pixel kernels, at the best instruction set or below a ceiling that a host sets,
// alone or together with its neighbours.
#pragma once

#include "effects/kernels/Chain.h"
#include "filter/InPlaceVideoEffect.h"

#include <vixavideofx/IEffectChaining.h>
#include <vixavideofx/IInstructionCeiling.h>

#include <atomic>

class KernelEffect : public InPlaceVideoEffect,
                     public IInstructionCeiling,
                     public IEffectChaining,
                     private vixa::BatchWorker
{
public:
    DECLARE_IUNKNOWN

    // IInstructionCeiling and IEffectChaining besides those of InPlaceVideoEffect.
    STDMETHODIMP NonDelegatingQueryInterface(REFIID riid, void** object) noexcept override;

    STDMETHODIMP SetCeiling(ULONG level) noexcept override;
    STDMETHODIMP GetLevel(ULONG* level) noexcept override;

    STDMETHODIMP SetChaining(BOOL newTogether) noexcept override;
    STDMETHODIMP GetChaining(BOOL* isTogether) noexcept override;

    using InPlaceVideoEffect::Transform;
    // Does the step at once. S_OK, or what StepFor answers.
    HRESULT Transform(IMediaSample* sample) override;

protected:
    KernelEffect(IUnknown* outer, REFCLSID clsid, HRESULT* result);

    using Step = vixa::kernels::Step;

    // What the effect does to this frame, with its parameters as they are now: fills in the bytes (none: the frame
    // stays as it is) and the parameters. Called on the streaming thread; what the step points to stays as it is while
    // the receive lock is held. S_OK, or a failure, which is returned upstream. An effect whose kernel is no step of a
    // chain overrides Transform instead: neighbours then wait for it.
    virtual HRESULT StepFor(IMediaSample* sample, Step& step);

private:
    bool TakesBatches() const noexcept override { return together; }
    vixa::Batch* OwnBatch() noexcept override { return together ? &batch : nullptr; }
    bool PutOff(IMediaSample* sample, vixa::Batch& pending) noexcept override;

    class FrameBatch final : public vixa::Batch
    {
    public:
        void Finish() noexcept override { chain.Run(); }

        vixa::kernels::Chain chain;
    };

    Step StartOfStep() const noexcept { return {&vixa::kernels::KernelsOf(ceiling), {}, {}}; }

    FrameBatch batch; // the streaming thread's own
    std::atomic<bool> together = true;
    std::atomic<vixa::kernels::Level> ceiling = vixa::kernels::Level::Avx512;
};
