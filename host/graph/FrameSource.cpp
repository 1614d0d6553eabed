#include "host/graph/FrameSource.h"

#include "host/graph/SampleQueue.h"

#include <limits>
#include <utility>

namespace vixahost::graph {

FrameSourcePin::FrameSourcePin(FrameSource& owner, Offer offered, media::FrameReader* from, PassTimer* clock)
    : CBaseOutputPin(L"Frame source", &owner, &owner.lock, nullptr, L"Output"), offer(std::move(offered)),
      source(owner), reader(from), timer(clock)
{
}

// Stop has joined the thread; this is for a graph that went away while running.
FrameSourcePin::~FrameSourcePin()
{
    EndThread();
}

HRESULT FrameSourcePin::CheckMediaType(const CMediaType* type)
{
    return *type == offer.type ? S_OK : VFW_E_TYPE_NOT_ACCEPTED;
}

HRESULT FrameSourcePin::GetMediaType(int index, CMediaType* type)
{
    if (index < 0)
        return E_INVALIDARG;
    return index > 0 ? VFW_S_NO_MORE_ITEMS : type->Set(offer.type);
}

HRESULT FrameSourcePin::DecideBufferSize(IMemAllocator* allocator, ALLOCATOR_PROPERTIES* request)
{
    request->cBuffers = std::max(request->cBuffers, offer.buffers);
    request->cbBuffer = std::max(request->cbBuffer, offer.bufferBytes);
    request->cbAlign = std::max(request->cbAlign, 1L);
    ALLOCATOR_PROPERTIES actual = {};
    const HRESULT result = allocator->SetProperties(request, &actual);
    if (FAILED(result))
        return result;
    return actual.cbBuffer < request->cbBuffer || actual.cBuffers < 1 ? E_FAIL : S_OK;
}

HRESULT FrameSourcePin::DecideAllocator(IMemInputPin* peer, IMemAllocator** agreed)
{
    if (offer.allocator == FrameSource::Allocator::Shared)
        return CBaseOutputPin::DecideAllocator(peer, agreed);
    *agreed = nullptr;
    ALLOCATOR_PROPERTIES request = {};
    peer->GetAllocatorRequirements(&request);
    ComPtr<IMemAllocator> chosen;
    HRESULT result = offer.allocator == FrameSource::Allocator::SharedReadOnly ? peer->GetAllocator(&chosen)
                                                                               : InitAllocator(&chosen);
    if (SUCCEEDED(result))
        result = DecideBufferSize(chosen.Get(), &request);
    if (SUCCEEDED(result))
        result = peer->NotifyAllocator(chosen.Get(), offer.allocator != FrameSource::Allocator::Own);
    if (SUCCEEDED(result))
        *agreed = chosen.Detach();
    return result;
}

HRESULT FrameSourcePin::Active()
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

HRESULT FrameSourcePin::Inactive()
{
    stopping = true;
    // Decommitting the allocator wakes the thread when it waits for a buffer.
    const HRESULT result = CBaseOutputPin::Inactive();
    EndThread();
    return result;
}

void FrameSourcePin::EndThread()
{
    stopping = true;
    if (thread.joinable())
        thread.join();
}

void FrameSourcePin::Stream() noexcept
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
HRESULT FrameSourcePin::DeliverAll() noexcept
{
    HRESULT result = S_OK;
    try {
        if (offer.buffers > 1)
            result = DeliverAhead();
        else
            for (std::int64_t index = 0; result == S_OK; ++index) {
                ComPtr<IMediaSample> sample;
                result = ReadSample(index, sample);
                if (result != S_OK)
                    break;
                timer->Begin();
                result = Deliver(sample.Get());
            }
    } catch (const std::exception&) {
        return E_OUTOFMEMORY;
    }
    return result == VFW_S_NO_MORE_ITEMS ? S_OK : result;
}

HRESULT FrameSourcePin::DeliverAhead()
{
    SampleQueue ahead;
    std::thread reading([&] {
        const HRESULT com = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
        HRESULT result = S_OK;
        for (std::int64_t index = 0; result == S_OK; ++index) {
            ComPtr<IMediaSample> sample;
            result = ReadSample(index, sample);
            try {
                if (result == S_OK && !ahead.Put(sample.Get()))
                    result = S_FALSE;
            } catch (const std::exception&) {
                result = E_OUTOFMEMORY;
            }
        }
        ahead.End(result);
        if (SUCCEEDED(com))
            CoUninitialize();
    });
    HRESULT result = S_OK;
    while (result == S_OK) {
        ComPtr<IMediaSample> sample;
        result = ahead.Take(sample);
        if (result != S_OK)
            break;
        timer->Begin();
        result = Deliver(sample.Get());
    }
    ahead.Close(); // the other thread may be waiting for a buffer
    reading.join();
    return result;
}

// The next frame; VFW_S_NO_MORE_ITEMS at the end of the reader, S_FALSE when a stop ended it.
HRESULT FrameSourcePin::ReadSample(std::int64_t index, ComPtr<IMediaSample>& sample) noexcept
{
    if (stopping)
        return S_FALSE;
    HRESULT result = GetDeliveryBuffer(&sample, nullptr, nullptr, 0);
    if (FAILED(result))
        return stopping ? S_FALSE : result;
    BYTE* data = nullptr;
    if (result = sample->GetPointer(&data); FAILED(result))
        return result;
    const std::size_t bytes = offer.format.FrameBytes();
    if (sample->GetSize() < static_cast<long>(bytes))
        return E_FAIL;
    try {
        if (!reader->Read({data, bytes}))
            return VFW_S_NO_MORE_ITEMS;
    } catch (...) {
        source.failure = std::current_exception();
        return E_FAIL;
    }
    REFERENCE_TIME begin = offer.format.TimeOf(index), end = offer.format.TimeOf(index + 1);
    sample->SetActualDataLength(static_cast<long>(bytes));
    sample->SetTime(&begin, &end);
    sample->SetSyncPoint(TRUE);
    sample->SetDiscontinuity(index == 0);
    sample->SetPreroll(FALSE);
    return S_OK;
}

FrameSource::FrameSource() : CBaseFilter(L"Frame source", nullptr, &lock, GUID_NULL) {}

ComPtr<FrameSource> FrameSource::Create(media::FrameReader& reader, PassTimer& timer, long buffers)
{
    FrameSourcePin::Offer offer = {
        {}, static_cast<long>(reader.Format().FrameBytes()), Allocator::Shared, buffers, reader.Format()};
    if (FAILED(MediaTypeOf(reader.Format(), offer.type)))
        throw std::bad_alloc();
    ComPtr<FrameSource> source(new FrameSource);
    source->output = std::make_unique<FrameSourcePin>(*source.Get(), offer, &reader, &timer);
    return source;
}

ComPtr<FrameSource> FrameSource::Create(const CMediaType& type, Allocator allocator)
{
    // What is sent lies in its owner's memory; only copies for a read-only source come from the allocator.
    const FrameSourcePin::Offer offer = {type, 1 << 20, allocator};
    ComPtr<FrameSource> source(new FrameSource);
    source->output = std::make_unique<FrameSourcePin>(*source.Get(), offer);
    return source;
}

FrameSource::~FrameSource() = default;

CBasePin* FrameSource::GetPin(int index)
{
    return index == 0 ? output.get() : nullptr;
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
