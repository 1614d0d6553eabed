#include "host/graph/FrameSource.h"

#include <atomic>
#include <limits>
#include <utility>

namespace vixahost::graph {

class FrameSourcePin final : public CBaseOutputPin
{
public:
    struct Offer
    {
        CMediaType type;
        long bufferBytes;
        FrameSource::Allocator allocator;
    };

    // Without a reader it sends nothing.
    FrameSourcePin(FrameSource& owner, HRESULT* result, Offer offered, media::FrameReader* from, PassTimer* clock)
        : CBaseOutputPin(L"Frame source", &owner, &owner.lock, result, L"Output"), source(owner),
          offer(std::move(offered)), reader(from), timer(clock)
    {
    }

    // Stop has joined the thread; this is for a graph that went away while running.
    ~FrameSourcePin() override { EndThread(); }

    HRESULT CheckMediaType(const CMediaType* type) override
    {
        return *type == offer.type ? S_OK : VFW_E_TYPE_NOT_ACCEPTED;
    }

    HRESULT GetMediaType(int index, CMediaType* type) override
    {
        if (index < 0)
            return E_INVALIDARG;
        return index > 0 ? VFW_S_NO_MORE_ITEMS : type->Set(offer.type);
    }

    HRESULT DecideBufferSize(IMemAllocator* allocator, ALLOCATOR_PROPERTIES* request) override
    {
        request->cBuffers = std::max(request->cBuffers, 1L); // a frame is back before the next one is read
        request->cbBuffer = std::max(request->cbBuffer, offer.bufferBytes);
        request->cbAlign = std::max(request->cbAlign, 1L);
        ALLOCATOR_PROPERTIES actual = {};
        const HRESULT result = allocator->SetProperties(request, &actual);
        if (FAILED(result))
            return result;
        return actual.cbBuffer < request->cbBuffer || actual.cBuffers < 1 ? E_FAIL : S_OK;
    }

    HRESULT DecideAllocator(IMemInputPin* peer, IMemAllocator** agreed) override
    {
        if (offer.allocator == FrameSource::Allocator::Shared)
            return CBaseOutputPin::DecideAllocator(peer, agreed);
        ALLOCATOR_PROPERTIES request = {};
        peer->GetAllocatorRequirements(&request);
        HRESULT result = offer.allocator == FrameSource::Allocator::SharedReadOnly ? peer->GetAllocator(agreed)
                                                                                   : InitAllocator(agreed);
        if (SUCCEEDED(result))
            result = DecideBufferSize(*agreed, &request);
        const BOOL readOnly = offer.allocator != FrameSource::Allocator::Own;
        return SUCCEEDED(result) ? peer->NotifyAllocator(*agreed, readOnly) : result;
    }

    HRESULT Active() override
    {
        const HRESULT result = CBaseOutputPin::Active();
        if (FAILED(result) || !reader)
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
        const media::FrameFormat format = reader->Format();
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
                if (!reader->Read({data, bytes}))
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
            timer->Begin();
            if (result = Deliver(sample.Get()); result != S_OK)
                return result;
        }
        return S_FALSE;
    }

    FrameSource& source;
    const Offer offer;
    media::FrameReader* const reader;
    PassTimer* const timer;
    std::atomic<bool> stopping = false;
    std::thread thread;
};

FrameSource::FrameSource() : CBaseFilter(L"Frame source", nullptr, &lock, GUID_NULL) {}

ComPtr<FrameSource> FrameSource::Create(media::FrameReader& reader, PassTimer& timer)
{
    FrameSourcePin::Offer offer = {{}, static_cast<long>(reader.Format().FrameBytes()), Allocator::Shared};
    if (FAILED(MediaTypeOf(reader.Format(), offer.type)))
        throw std::bad_alloc();
    HRESULT result = S_OK;
    ComPtr<FrameSource> source(new FrameSource);
    source->pin = std::make_unique<FrameSourcePin>(*source.Get(), &result, offer, &reader, &timer);
    return source;
}

ComPtr<FrameSource> FrameSource::Create(const CMediaType& type, Allocator allocator)
{
    // What is sent lies in its owner's memory; only copies for a read-only source come from the allocator.
    const FrameSourcePin::Offer offer = {type, 1 << 20, allocator};
    HRESULT result = S_OK;
    ComPtr<FrameSource> source(new FrameSource);
    source->pin = std::make_unique<FrameSourcePin>(*source.Get(), &result, offer, nullptr, nullptr);
    return source;
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
