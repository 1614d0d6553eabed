// The filter with one input and one output that changes samples on their way.
#pragma once

#include "framework/CTransformInputPin.h"
#include "framework/CTransformOutputPin.h"

#include <atomic>
#include <memory>
#include <new>
#include <utility>

// The pins are "Input" (FindPin "In") and "Output" ("Out"), made when either is first asked for. State changes and
// connections hold the filter lock (m_csFilter); Receive and EndOfStream hold the receive lock (m_csReceive). Who takes
// both takes the filter lock first.
class CTransformFilter : public CBaseFilter
{
    friend class CTransformInputPin;
    friend class CTransformOutputPin;

public:
    CTransformFilter(LPCTSTR name, IUnknown* outer, REFCLSID classId) noexcept;
    ~CTransformFilter() override;

    int GetPinCount() override; // 2
    CBasePin* GetPin(int index) override;

    HRESULT STDMETHODCALLTYPE FindPin(LPCWSTR id, IPin** pin) noexcept override;
    HRESULT STDMETHODCALLTYPE Stop() noexcept override;
    HRESULT STDMETHODCALLTYPE Pause() noexcept override;

    // Changes `in` into `out`. S_FALSE: nothing is delivered for this sample. E_UNEXPECTED unless overridden.
    virtual HRESULT Transform(IMediaSample* in, IMediaSample* out);
    virtual HRESULT CheckInputType(const CMediaType* type) = 0;
    virtual HRESULT CheckTransform(const CMediaType* in, const CMediaType* out) = 0;
    // Sets up the output's allocator; `request` holds what the downstream pin needs.
    virtual HRESULT DecideBufferSize(IMemAllocator* allocator, ALLOCATOR_PROPERTIES* request) = 0;
    // The output types, by index.
    virtual HRESULT GetMediaType(int index, CMediaType* type) = 0;
    // Leaving and reaching the stopped state; the receive lock is held.
    virtual HRESULT StartStreaming();
    virtual HRESULT StopStreaming();
    // A quality message from downstream: S_FALSE passes it upstream.
    virtual HRESULT AlterQuality(Quality quality);
    // A pin's type has been set; also on the streaming thread, when a sample brings a new type.
    virtual HRESULT SetMediaType(PIN_DIRECTION direction, const CMediaType* type);
    virtual HRESULT CheckConnect(PIN_DIRECTION direction, IPin* pin);
    virtual HRESULT BreakConnect(PIN_DIRECTION direction);
    virtual HRESULT CompleteConnect(PIN_DIRECTION direction, IPin* receivePin);
    // The streaming path, under the receive lock.
    virtual HRESULT Receive(IMediaSample* sample);
    virtual HRESULT EndOfStream();
    virtual HRESULT BeginFlush();
    virtual HRESULT EndFlush();
    virtual HRESULT NewSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate);

protected:
    // An output buffer with the input sample's times and flags, and a reference, for Transform(in, out).
    HRESULT InitializeOutputSample(IMediaSample* sample, IMediaSample** output);
    // GetPin for a filter with pins of those classes: makes both, or neither, when either is first asked for. Not a
    // virtual operation: derived classes count on the order of those.
    template <typename Input, typename Output, typename Filter>
    CBasePin* PinAt(int index, Filter* filter) noexcept;
    // What a result of Transform means: delivers, skips or fails.
    HRESULT DeliverTransformed(HRESULT transformed, IMediaSample* sample);

    bool m_bEOSDelivered = false;                // for a paused filter without an input connection
    std::atomic<bool> m_bSampleSkipped = false;  // the next buffer is asked for with AM_GBF_PREVFRAMESKIPPED
    std::atomic<bool> m_bQualityChanged = false; // EC_QUALITY_CHANGE was sent since the last pause
    CCritSec m_csFilter;
    CCritSec m_csReceive;
    std::unique_ptr<CTransformInputPin> m_pInput;
    std::unique_ptr<CTransformOutputPin> m_pOutput;

private:
    bool PinsExist() noexcept;
    HRESULT PauseFromStopped();

    // Taken last, while the pins are made: whoever first asks for one may hold any lock.
    CCritSec pinsLock;
};

template <typename Input, typename Output, typename Filter>
CBasePin* CTransformFilter::PinAt(int index, Filter* filter) noexcept
{
    CAutoLock lock(&pinsLock);
    if (!m_pInput) {
        HRESULT result = S_OK;
        std::unique_ptr<Input> input(new (std::nothrow) Input(nullptr, filter, &result, L"Input"));
        std::unique_ptr<Output> output(new (std::nothrow) Output(nullptr, filter, &result, L"Output"));
        if (!input || !output || FAILED(result))
            return nullptr;
        m_pInput = std::move(input);
        m_pOutput = std::move(output);
    }
    return index == 0 ? static_cast<CBasePin*>(m_pInput.get()) : index == 1 ? m_pOutput.get() : nullptr;
}
