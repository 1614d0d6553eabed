#include "host/graph/FrameSink.h"

namespace vixahost::graph {

class FrameSinkPin final : public CBaseInputPin
{
public:
    FrameSinkPin(FrameSink& owner, HRESULT* result)
        : CBaseInputPin(L"Frame sink", &owner, &owner.lock, result, L"Input"), sink(owner)
    {
    }

    HRESULT CheckMediaType(const CMediaType* type) override
    {
        return sink.taker.Accepts(*type) ? S_OK : VFW_E_TYPE_NOT_ACCEPTED;
    }

    HRESULT STDMETHODCALLTYPE NotifyAllocator(IMemAllocator* allocator, BOOL readOnly) noexcept override
    {
        const bool taken = !allocator || sink.taker.TakesAllocator(*allocator);
        return taken ? CBaseInputPin::NotifyAllocator(allocator, readOnly) : VFW_E_NO_ALLOCATOR;
    }

    HRESULT STDMETHODCALLTYPE Receive(IMediaSample* sample) noexcept override
    {
        const HRESULT result = CBaseInputPin::Receive(sample);
        return result == S_OK ? sink.taker.Take(*sample) : result;
    }

    HRESULT STDMETHODCALLTYPE ReceiveCanBlock() noexcept override { return S_FALSE; }

    HRESULT STDMETHODCALLTYPE EndOfStream() noexcept override
    {
        sink.taker.OnEndOfStream();
        const HRESULT result = CheckStreaming();
        if (result != S_OK)
            return result;
        CAutoLock hold(&sink.lock);
        sink.ended = true;
        sink.ReportEnd();
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE BeginFlush() noexcept override
    {
        sink.taker.OnFlush(true);
        return CBaseInputPin::BeginFlush();
    }

    HRESULT STDMETHODCALLTYPE EndFlush() noexcept override
    {
        sink.taker.OnFlush(false);
        return CBaseInputPin::EndFlush();
    }

    HRESULT STDMETHODCALLTYPE NewSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate) noexcept override
    {
        sink.taker.OnSegment(start, stop);
        return CBaseInputPin::NewSegment(start, stop, rate);
    }

private:
    FrameSink& sink;
};

ComPtr<FrameSink> FrameSink::Create(SampleTaker& taker)
{
    return new FrameSink(taker);
}

FrameSink::FrameSink(SampleTaker& to) : CBaseFilter(L"Frame sink", nullptr, &lock, GUID_NULL), taker(to)
{
    HRESULT result = S_OK;
    pin = std::make_unique<FrameSinkPin>(*this, &result);
}

FrameSink::~FrameSink() = default;

HRESULT FrameSink::NonDelegatingQueryInterface(REFIID riid, void** ppv) noexcept
{
    if (riid == IID_IAMFilterMiscFlags)
        return GetInterface(static_cast<IAMFilterMiscFlags*>(this), ppv);
    return CBaseFilter::NonDelegatingQueryInterface(riid, ppv);
}

CBasePin* FrameSink::GetPin(int index)
{
    return index == 0 ? pin.get() : nullptr;
}

HRESULT FrameSink::Run(REFERENCE_TIME start) noexcept
{
    CAutoLock hold(&lock);
    const HRESULT result = CBaseFilter::Run(start);
    if (SUCCEEDED(result))
        ReportEnd();
    return result;
}

HRESULT FrameSink::Stop() noexcept
{
    const HRESULT result = CBaseFilter::Stop();
    CAutoLock hold(&lock);
    ended = reported = false;
    return result;
}

// A short stream ends while the graph is still pausing; the graph counts ends only once it runs.
void FrameSink::ReportEnd()
{
    if (!ended || reported || State() != State_Running)
        return;
    reported = true;
    NotifyEvent(EC_COMPLETE, S_OK, 0);
}

} // namespace vixahost::graph
