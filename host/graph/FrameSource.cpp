#include "host/graph/FrameSource.h"

#include <atomic>
#include <limits>

namespace vixahost::graph {

class FrameSourcePin final : public CBaseOutputPin
{
public:
    FrameSourcePin(FrameSource& owner, HRESULT* result)
        : CBaseOutputPin(L"Frame source", &owner, &owner.lock, result, L"Output"), source(owner)
    {
    }

    // Stop has joined the thread; this is for a graph that went away while running.
    ~FrameSourcePin() override { EndThread(); }

    HRESULT CheckMediaType(const CMediaType* type) override
    {
        CMediaType own;
        if (const HRESULT result = GetMediaType(0, &own); FAILED(result))
            return result;
        return *type == own ? S_OK : VFW_E_TYPE_NOT_ACCEPTED;
    }

    HRESULT GetMediaType(int index, CMediaType* type) override
    {
        if (index < 0)
            return E_INVALIDARG;
        return index > 0 ? VFW_S_NO_MORE_ITEMS : MediaTypeOf(source.reader.Format(), *type);
    }

    HRESULT DecideBufferSize(IMemAllocator* allocator, ALLOCATOR_PROPERTIES* request) override
    {
        request->cBuffers = std::max(request->cBuffers, 2L);
        request->cbBuffer = std::max(request->cbBuffer, static_cast<long>(source.reader.Format().FrameBytes()));
        request->cbAlign = std::max(request->cbAlign, 1L);
        ALLOCATOR_PROPERTIES actual = {};
        const HRESULT result = allocator->SetProperties(request, &actual);
        if (FAILED(result))
            return result;
        return actual.cbBuffer < request->cbBuffer || actual.cBuffers < 1 ? E_FAIL : S_OK;
    }

    HRESULT Active() override
    {
        const HRESULT result = CBaseOutputPin::Active();
        if (FAILED(result))
            return result;
        try {
            stopping = false;
            thread = std::thread([this] { Stream(); });
        } catch (const std::exception&) {
            return E_OUTOFMEMORY;
        }
        return S_OK;
    }

    HRESULT Inactive() override
    {
        stopping = true;
        // Decommitting the allocator wakes the thread when it waits for a buffer.
        const HRESULT result = CBaseOutputPin::Inactive();
        EndThread();
        return result;
    }

private:
    void EndThread()
    {
        stopping = true;
        if (thread.joinable())
            thread.join();
    }

    void Stream() noexcept
    {
        const HRESULT com = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
        const HRESULT result = DeliverAll();
        if (result == S_OK)
            DeliverEndOfStream();
        else if (FAILED(result) && !stopping)
            source.NotifyEvent(EC_ERRORABORT, result, 0);
        if (SUCCEEDED(com))
            CoUninitialize();
    }

    // S_OK at the end of the reader, S_FALSE when downstream or a stop ended it.
    HRESULT DeliverAll() noexcept
    {
        const media::FrameFormat format = source.reader.Format();
        for (std::int64_t index = 0; !stopping; ++index) {
            ComPtr<IMediaSample> sample;
            HRESULT result = GetDeliveryBuffer(&sample, nullptr, nullptr, 0);
            if (FAILED(result))
                return stopping ? S_FALSE : result;
            BYTE* data = nullptr;
            if (result = sample->GetPointer(&data); FAILED(result))
                return result;
            const std::size_t bytes = format.FrameBytes();
            if (sample->GetSize() < static_cast<long>(bytes))
                return E_FAIL;
            try {
                if (!source.reader.Read({data, bytes}))
                    return S_OK;
            } catch (...) {
                source.failure = std::current_exception();
                return E_FAIL;
            }
            REFERENCE_TIME begin = format.TimeOf(index), end = format.TimeOf(index + 1);
            sample->SetActualDataLength(static_cast<long>(bytes));
            sample->SetTime(&begin, &end);
            sample->SetSyncPoint(TRUE);
            sample->SetDiscontinuity(index == 0);
            sample->SetPreroll(FALSE);
            source.timer.Begin();
            if (result = Deliver(sample.Get()); result != S_OK)
                return result;
        }
        return S_FALSE;
    }

    FrameSource& source;
    std::atomic<bool> stopping = false;
    std::thread thread;
};

ComPtr<FrameSource> FrameSource::Create(media::FrameReader& reader, PassTimer& timer)
{
    return new FrameSource(reader, timer);
}

FrameSource::FrameSource(media::FrameReader& from, PassTimer& clock)
    : CBaseFilter(L"Frame source", nullptr, &lock, GUID_NULL), reader(from), timer(clock)
{
    HRESULT result = S_OK;
    pin = std::make_unique<FrameSourcePin>(*this, &result);
}

FrameSource::~FrameSource() = default;

CBasePin* FrameSource::GetPin(int index)
{
    return index == 0 ? pin.get() : nullptr;
}

HRESULT MediaTypeOf(const media::FrameFormat& format, CMediaType& type)
{
    VIDEOINFOHEADER header = {};
    header.rcSource = header.rcTarget = {0, 0, format.width, format.height};
    header.AvgTimePerFrame = format.TimeOf(1);
    const std::uint64_t bitsPerSecond = std::uint64_t{format.FrameBytes()} * 8 * format.rate / format.scale;
    header.dwBitRate = static_cast<DWORD>(std::min<std::uint64_t>(bitsPerSecond, std::numeric_limits<DWORD>::max()));
    header.bmiHeader.biSize = sizeof header.bmiHeader;
    header.bmiHeader.biWidth = format.width;
    header.bmiHeader.biHeight = format.height;
    header.bmiHeader.biPlanes = 1;
    header.bmiHeader.biBitCount = 32;
    header.bmiHeader.biSizeImage = static_cast<DWORD>(format.FrameBytes());

    type.SetType(&MEDIATYPE_Video);
    type.SetSubtype(&MEDIASUBTYPE_RGB32);
    type.SetFormatType(&FORMAT_VideoInfo);
    type.SetSampleSize(static_cast<ULONG>(format.FrameBytes()));
    type.SetTemporalCompression(FALSE);
    return type.SetFormat(reinterpret_cast<BYTE*>(&header), sizeof header) ? S_OK : E_OUTOFMEMORY;
}

} // namespace vixahost::graph
