#include "host/graph/FrameSink.h"

namespace vixahost::graph {

FrameSinkPin::FrameSinkPin(FrameSink& owner)
    : CBaseInputPin(L"Frame sink", &owner, &owner.lock, nullptr, L"Input"), sink(owner)
{
}

HRESULT FrameSinkPin::CheckMediaType(const CMediaType* type)
{
    return sink.taker.Accepts(*type) ? S_OK : VFW_E_TYPE_NOT_ACCEPTED;
}

HRESULT FrameSinkPin::NotifyAllocator(IMemAllocator* allocator, BOOL readOnly) noexcept
{
    const bool taken = !allocator || sink.taker.TakesAllocator(*allocator);
    return taken ? CBaseInputPin::NotifyAllocator(allocator, readOnly) : VFW_E_NO_ALLOCATOR;
}

HRESULT FrameSinkPin::Receive(IMediaSample* sample) noexcept
{
    const HRESULT result = CBaseInputPin::Receive(sample);
    return result == S_OK ? sink.taker.Take(*sample) : result;
}

HRESULT FrameSinkPin::EndOfStream() noexcept
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

HRESULT FrameSinkPin::BeginFlush() noexcept
{
    sink.taker.OnFlush(true);
    return CBaseInputPin::BeginFlush();
}

HRESULT FrameSinkPin::EndFlush() noexcept
{
    sink.taker.OnFlush(false);
    return CBaseInputPin::EndFlush();
}

HRESULT FrameSinkPin::NewSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate) noexcept
{
    sink.taker.OnSegment(start, stop);
    return CBaseInputPin::NewSegment(start, stop, rate);
}

ComPtr<FrameSink> FrameSink::Create(SampleTaker& taker)
{
    ComPtr<FrameSink> sink(new FrameSink(taker));
    sink->input = std::make_unique<FrameSinkPin>(*sink.Get());
    return sink;
}

FrameSink::FrameSink(SampleTaker& to) : CBaseFilter(L"Frame sink", nullptr, &lock, GUID_NULL), taker(to) {}

FrameSink::~FrameSink() = default;

HRESULT FrameSink::NonDelegatingQueryInterface(REFIID riid, void** ppv) noexcept
{
    if (riid == IID_IAMFilterMiscFlags)
        return GetInterface(static_cast<IAMFilterMiscFlags*>(this), ppv);
    return CBaseFilter::NonDelegatingQueryInterface(riid, ppv);
}

CBasePin* FrameSink::GetPin(int index)
{
    return index == 0 ? input.get() : nullptr;
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
