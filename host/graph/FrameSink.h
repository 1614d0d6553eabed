// The graph's last filter: hands over whatever comes, as fast as it comes.
#pragma once

#include "framework/CBaseFilter.h"
#include "framework/CBaseInputPin.h"
#include "framework/CCritSec.h"

#include <memory>

namespace vixahost::graph {

// Who takes what arrives at a sink. Called on the threads that deliver.
class SampleTaker
{
public:
    virtual ~SampleTaker() = default;
    virtual bool Accepts(const CMediaType& type) const = 0;
    // Whether the samples may come from this allocator; told of each that upstream decides on.
    virtual bool TakesAllocator(IMemAllocator& /*allocator*/) noexcept { return true; }
    // A failure is the sample's result to the filter that delivers it; the stream then ends.
    virtual HRESULT Take(IMediaSample& sample) noexcept = 0;
    virtual void OnEndOfStream() noexcept {}
    virtual void OnFlush(bool /*begins*/) noexcept {}
    virtual void OnSegment(REFERENCE_TIME /*start*/, REFERENCE_TIME /*stop*/) noexcept {}
};

class FrameSinkPin;

// A renderer: it reports EC_COMPLETE when the last sample was taken and the graph runs. It never waits for a sample's
// time. The taker must outlive the filter.
class FrameSink : public CBaseFilter, public IAMFilterMiscFlags
{
public:
    static ComPtr<FrameSink> Create(SampleTaker& taker);
    ~FrameSink() override;

    DECLARE_IUNKNOWN
    HRESULT STDMETHODCALLTYPE NonDelegatingQueryInterface(REFIID riid, void** ppv) noexcept override;
    ULONG STDMETHODCALLTYPE GetMiscFlags() noexcept override { return AM_FILTER_MISC_FLAGS_IS_RENDERER; }

    int GetPinCount() override { return 1; }
    CBasePin* GetPin(int index) override;
    HRESULT STDMETHODCALLTYPE Run(REFERENCE_TIME start) noexcept override;
    HRESULT STDMETHODCALLTYPE Stop() noexcept override;

protected:
    // Without its pin.
    explicit FrameSink(SampleTaker& to);

    std::unique_ptr<FrameSinkPin> input;

private:
    friend class FrameSinkPin;
    void ReportEnd();

    CCritSec lock;
    SampleTaker& taker;
    bool ended = false;    // guarded by the lock: no more samples will come
    bool reported = false; // guarded by the lock: the graph knows
};

// Its only pin, which asks and tells the taker.
class FrameSinkPin : public CBaseInputPin
{
public:
    explicit FrameSinkPin(FrameSink& owner);

    HRESULT CheckMediaType(const CMediaType* type) override;
    HRESULT STDMETHODCALLTYPE NotifyAllocator(IMemAllocator* allocator, BOOL readOnly) noexcept override;
    HRESULT STDMETHODCALLTYPE Receive(IMediaSample* sample) noexcept override;
    HRESULT STDMETHODCALLTYPE ReceiveCanBlock() noexcept override { return S_FALSE; }
    HRESULT STDMETHODCALLTYPE EndOfStream() noexcept override;
    HRESULT STDMETHODCALLTYPE BeginFlush() noexcept override;
    HRESULT STDMETHODCALLTYPE EndFlush() noexcept override;
    HRESULT STDMETHODCALLTYPE NewSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate) noexcept override;

private:
    FrameSink& sink;
};

} // namespace vixahost::graph
