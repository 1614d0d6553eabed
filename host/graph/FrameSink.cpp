#include "host/graph/FrameSink.h"

#include "host/graph/FrameSource.h"

namespace vixahost::graph {

class FrameSinkPin final : public CBaseInputPin
{
public:
    FrameSinkPin(FrameSink& owner, HRESULT* result)
        : CBaseInputPin(L"Frame sink", &owner, &owner.lock, result, L"Input"), sink(owner)
    {
    }

    // Frames of the expected size, rows bottom-up, whatever else the type says.
    HRESULT CheckMediaType(const CMediaType* type) override
    {
        if (*type->Type() != MEDIATYPE_Video || *type->Subtype() != MEDIASUBTYPE_RGB32 ||
            *type->FormatType() != FORMAT_VideoInfo || type->FormatLength() < sizeof(VIDEOINFOHEADER))
            return VFW_E_TYPE_NOT_ACCEPTED;
        const auto& header = reinterpret_cast<const VIDEOINFOHEADER*>(type->Format())->bmiHeader;
        return header.biWidth == sink.format.width && header.biHeight == sink.format.height ? S_OK
                                                                                            : VFW_E_TYPE_NOT_ACCEPTED;
    }

    HRESULT STDMETHODCALLTYPE Receive(IMediaSample* sample) noexcept override
    {
        sink.timer.End();
        const HRESULT result = CBaseInputPin::Receive(sample);
        if (result != S_OK)
            return result;
        BYTE* data = nullptr;
        const std::size_t bytes = sink.format.FrameBytes();
        if (FAILED(sample->GetPointer(&data)) || sample->GetActualDataLength() != static_cast<long>(bytes))
            return E_FAIL;
        try {
            sink.writer.Write({data, bytes});
        } catch (...) {
            sink.failure = std::current_exception();
            return E_FAIL;
        }
        ++sink.written;
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE ReceiveCanBlock() noexcept override { return S_FALSE; }

    HRESULT STDMETHODCALLTYPE EndOfStream() noexcept override
    {
        const HRESULT result = CheckStreaming();
        if (result != S_OK)
            return result;
        CAutoLock hold(&sink.lock);
        sink.ended = true;
        sink.ReportEnd();
        return S_OK;
    }

private:
    FrameSink& sink;
};

ComPtr<FrameSink> FrameSink::Create(media::FrameWriter& writer, const media::FrameFormat& format, PassTimer& timer)
{
    return new FrameSink(writer, format, timer);
}

FrameSink::FrameSink(media::FrameWriter& to, const media::FrameFormat& frames, PassTimer& clock)
    : CBaseFilter(L"Frame sink", nullptr, &lock, GUID_NULL), writer(to), format(frames), timer(clock)
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
