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
class FrameSink final : public CBaseFilter, public IAMFilterMiscFlags
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

private:
    friend class FrameSinkPin;
    explicit FrameSink(SampleTaker& to);
    void ReportEnd();

    CCritSec lock;
    SampleTaker& taker;
    bool ended = false;    // guarded by the lock: no more samples will come
    bool reported = false; // guarded by the lock: the graph knows
    std::unique_ptr<FrameSinkPin> pin;
};

} // namespace vixahost::graph
