// The eight convolution effects: a 3x3 integer kernel over every frame.
#pragma once

#include "effects/KernelEffect.h"
#include "filter/Guarded.h"

#include <cstdint>
#include <vector>

// Which of the eight effects an object is, its data block alone decides; all of them report the class identifier of
// "Add pixel". Until the first valid kind arrives frames pass unchanged.
class CConvCorrection final : public KernelEffect
{
public:
    // The create routine of the factory table: null when memory is short.
    static CUnknown* CALLBACK CreateInstance(IUnknown* outer, HRESULT* result) noexcept;

    // The input pin's type gives the size of the frames.
    HRESULT SetMediaType(PIN_DIRECTION direction, const CMediaType* type) override;

    STDMETHODIMP SetPropertySet(IUnknown* propertySet) noexcept override;

private:
    struct Fields
    {
        LONG frameWidth;
        LONG frameHeight; // with its sign: negative for top-down rows
        vixa::kernels::ConvolutionParameters convolution;
    };

    // Always S_OK. A sample whose buffer is smaller than the frame passes unchanged, as does every frame when memory
    // for the few saved rows is short.
    HRESULT StepFor(IMediaSample* sample, Step& step) override;

    CConvCorrection(IUnknown* outer, HRESULT* result);

    vixa::Guarded<Fields> fields{{}};
    std::vector<std::uint8_t> scratch; // the streaming thread's own, kept from frame to frame
};
