#include "tests/framework/TestFilters.h"

#include <gtest/gtest.h>

#include <cstring>

namespace test {

const CLSID probeClass = {0x2B0C7A11, 0x93D4, 0x4E0B, {0x8B, 0x11, 0x5D, 0x60, 0x11, 0x7E, 0x20, 0x01}};

namespace {

const CLSID sourceClass = {0x2B0C7A11, 0x93D4, 0x4E0B, {0x8B, 0x11, 0x5D, 0x60, 0x11, 0x7E, 0x20, 0x02}};
const CLSID sinkClass = {0x2B0C7A11, 0x93D4, 0x4E0B, {0x8B, 0x11, 0x5D, 0x60, 0x11, 0x7E, 0x20, 0x03}};

template <typename Interface>
ComPtr<Interface> As(IUnknown* object, REFIID riid)
{
    ComPtr<Interface> face;
    EXPECT_HRESULT_SUCCEEDED(object->QueryInterface(riid, reinterpret_cast<void**>(face.GetAddressOf())));
    return face;
}

HRESULT TypeAt(const std::vector<CMediaType>& types, int index, CMediaType* type)
{
    if (index < 0)
        return E_INVALIDARG;
    if (static_cast<std::size_t>(index) >= types.size())
        return VFW_S_NO_MORE_ITEMS;
    return type->Set(types[static_cast<std::size_t>(index)]);
}

} // namespace

SourcePin::SourcePin(CBaseFilter* filter, CCritSec* pinLock)
    : CBaseOutputPin(nullptr, filter, pinLock, nullptr, L"Frames")
{
}

HRESULT SourcePin::CheckMediaType(const CMediaType* type)
{
    if (whenAsked)
        whenAsked(*type);
    for (const CMediaType& known : types)
        if (known == *type)
            return S_OK;
    return VFW_E_TYPE_NOT_ACCEPTED;
}

HRESULT SourcePin::GetMediaType(int index, CMediaType* type)
{
    return TypeAt(types, index, type);
}

HRESULT SourcePin::DecideBufferSize(IMemAllocator* allocator, ALLOCATOR_PROPERTIES* request)
{
    seen = *request;
    ALLOCATOR_PROPERTIES asked = wanted;
    asked.cbAlign = std::max(wanted.cbAlign, request->cbAlign);
    asked.cbPrefix = std::max(wanted.cbPrefix, request->cbPrefix);
    ALLOCATOR_PROPERTIES granted;
    return allocator->SetProperties(&asked, &granted);
}

HRESULT SourcePin::DecideAllocator(IMemInputPin* peer, IMemAllocator** allocator)
{
    if (mode == Allocator::Peers)
        return CBaseOutputPin::DecideAllocator(peer, allocator);
    ALLOCATOR_PROPERTIES needed = {};
    peer->GetAllocatorRequirements(&needed);
    ComPtr<IMemAllocator> chosen;
    HRESULT result = mode == Allocator::PeersReadOnly ? peer->GetAllocator(&chosen) : InitAllocator(&chosen);
    if (SUCCEEDED(result))
        result = DecideBufferSize(chosen.Get(), &needed);
    if (SUCCEEDED(result))
        result = peer->NotifyAllocator(chosen.Get(), mode != Allocator::Own);
    *allocator = SUCCEEDED(result) ? chosen.Detach() : nullptr;
    return result;
}

HRESULT SourcePin::Active()
{
    if (FAILED(activeResult))
        return activeResult;
    const HRESULT result = CBaseOutputPin::Active();
    if (SUCCEEDED(result) && ownThread) {
        stopping.Reset();
        thread.reset(CreateThread(nullptr, 0, Stream, this, 0, nullptr));
    }
    return result;
}

HRESULT SourcePin::Inactive()
{
    stopping.Set();
    const HRESULT result = CBaseOutputPin::Inactive(); // wakes the thread from GetBuffer
    if (thread)
        WaitForSingleObject(thread.get(), INFINITE);
    thread.reset();
    return result;
}

DWORD WINAPI SourcePin::Stream(void* pin) noexcept
{
    auto& self = *static_cast<SourcePin*>(pin);
    while (!self.stopping.Check()) {
        ComPtr<IMediaSample> sample;
        if (FAILED(self.GetDeliveryBuffer(&sample, nullptr, nullptr, 0)))
            continue; // stopped, or stopping downstream
        if (self.Deliver(sample.Get()) == S_OK)
            ++self.pushed;
    }
    return 0;
}

HRESULT SourcePin::Notify(IBaseFilter*, Quality) noexcept
{
    ++qualityMessages;
    return S_OK;
}

Source::Source() : CBaseFilter(nullptr, nullptr, &lock, sourceClass), pin(this, &lock) {}

SinkPin::SinkPin(CBaseFilter* filter, CCritSec* pinLock) : CBaseInputPin(nullptr, filter, pinLock, nullptr, L"Shown") {}

HRESULT SinkPin::CheckMediaType(const CMediaType* type)
{
    return accepts(*type) ? S_OK : VFW_E_TYPE_NOT_ACCEPTED;
}

HRESULT SinkPin::GetMediaType(int index, CMediaType* type)
{
    return TypeAt(types, index, type);
}

HRESULT SinkPin::CompleteConnect(IPin*)
{
    return completeResult;
}

HRESULT SinkPin::Inactive()
{
    const HRESULT result = CBaseInputPin::Inactive();
    CAutoLock wait(&receiving);
    return result;
}

HRESULT SinkPin::GetAllocator(IMemAllocator** allocator) noexcept
{
    return offers ? offers.CopyTo(allocator) : CBaseInputPin::GetAllocator(allocator);
}

HRESULT SinkPin::NotifyAllocator(IMemAllocator* allocator, BOOL readOnly) noexcept
{
    if (takesAllocator(allocator))
        return CBaseInputPin::NotifyAllocator(allocator, readOnly);
    ++refusals;
    return E_FAIL;
}

HRESULT SinkPin::GetAllocatorRequirements(ALLOCATOR_PROPERTIES* properties) noexcept
{
    if (!properties)
        return E_POINTER;
    *properties = needs;
    return S_OK;
}

HRESULT SinkPin::Receive(IMediaSample* sample) noexcept
{
    CAutoLock lock(&receiving);
    const HRESULT result = CBaseInputPin::Receive(sample);
    if (result != S_OK)
        return result;
    ++received;
    if (remembers) {
        Arrival arrival = {};
        arrival.sample = sample;
        arrival.properties = *SampleProps();
        BYTE* bytes = nullptr;
        sample->GetPointer(&bytes);
        arrival.bytes.assign(bytes, bytes + sample->GetActualDataLength());
        arrival.hasMediaTime = sample->GetMediaTime(&arrival.mediaStart, &arrival.mediaEnd) == S_OK;
        arrivals.push_back(std::move(arrival));
    }
    return receiveResult;
}

HRESULT SinkPin::EndOfStream() noexcept
{
    ++ends;
    return CheckStreaming();
}

HRESULT SinkPin::BeginFlush() noexcept
{
    ++flushesBegun;
    return CBaseInputPin::BeginFlush();
}

HRESULT SinkPin::EndFlush() noexcept
{
    ++flushesEnded;
    return CBaseInputPin::EndFlush();
}

HRESULT SinkPin::NewSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate) noexcept
{
    ++segments;
    return CBaseInputPin::NewSegment(start, stop, rate);
}

Sink::Sink() : CBaseFilter(nullptr, nullptr, &lock, sinkClass), pin(this, &lock) {}

HRESULT Probe::CheckInputType(const CMediaType* type)
{
    const bool taken = *type->Type() == MEDIATYPE_Video && *type->Subtype() == MEDIASUBTYPE_RGB32 &&
                       *type->FormatType() == FORMAT_VideoInfo && type->FormatLength() >= sizeof(VIDEOINFOHEADER);
    return taken ? S_OK : VFW_E_TYPE_NOT_ACCEPTED;
}

HRESULT Probe::SetMediaType(PIN_DIRECTION direction, const CMediaType* type)
{
    typesSet.emplace_back(direction, reinterpret_cast<const VIDEOINFOHEADER*>(type->Format())->bmiHeader.biWidth);
    return S_OK;
}

HRESULT Probe::CompleteConnect(PIN_DIRECTION direction, IPin* pin)
{
    const HRESULT result = CTransInPlaceFilter::CompleteConnect(direction, pin);
    completed.emplace_back(direction, result);
    return result;
}

HRESULT Probe::AlterQuality(Quality)
{
    return qualityResult;
}

HRESULT Probe::StartStreaming()
{
    streaming = SUCCEEDED(startResult);
    return startResult;
}

HRESULT Probe::StopStreaming()
{
    streaming = false;
    return S_OK;
}

HRESULT Probe::Transform(IMediaSample* sample)
{
    ++transforms;
    EXPECT_TRUE(streaming) << "a frame came outside StartStreaming and StopStreaming";
    if (transform)
        return transform(sample);
    BYTE* bytes = nullptr;
    sample->GetPointer(&bytes);
    ++bytes[0];
    return S_OK;
}

Graph::Graph()
{
    EXPECT_HRESULT_SUCCEEDED(CoCreateInstance(CLSID_FilterGraph, nullptr, CLSCTX_INPROC_SERVER, IID_IGraphBuilder,
                                              reinterpret_cast<void**>(builder.GetAddressOf())));
    // Without a clock samples are not held for their time.
    As<IMediaFilter>(builder.Get(), IID_IMediaFilter)->SetSyncSource(nullptr);
}

Graph::~Graph()
{
    Stop();
}

HRESULT Graph::Add(IBaseFilter* filter, LPCWSTR name)
{
    return builder->AddFilter(filter, name);
}

HRESULT Graph::Connect(IPin& from, IPin& to, const AM_MEDIA_TYPE* type)
{
    return builder->ConnectDirect(&from, &to, type);
}

HRESULT Graph::Run()
{
    return As<IMediaControl>(builder.Get(), IID_IMediaControl)->Run();
}

HRESULT Graph::Pause()
{
    return As<IMediaControl>(builder.Get(), IID_IMediaControl)->Pause();
}

HRESULT Graph::Stop()
{
    return As<IMediaControl>(builder.Get(), IID_IMediaControl)->Stop();
}

int Graph::CountEvents(long code, LONG_PTR* parameter)
{
    const auto events = As<IMediaEvent>(builder.Get(), IID_IMediaEvent);
    int count = 0;
    long next = 0;
    LONG_PTR first = 0, second = 0;
    while (events->GetEvent(&next, &first, &second, 0) == S_OK) {
        if (next == code) {
            ++count;
            if (parameter)
                *parameter = first;
        }
        events->FreeEventParams(next, first, second);
    }
    return count;
}

Chain::Chain()
{
    EXPECT_HRESULT_SUCCEEDED(graph->Add(source.get(), L"source"));
    EXPECT_HRESULT_SUCCEEDED(graph->Add(probe.get(), L"probe"));
    EXPECT_HRESULT_SUCCEEDED(graph->Add(sink.get(), L"sink"));
}

Chain::~Chain()
{
    graph.reset();
    EXPECT_EQ(0u, probe.Release());
    EXPECT_EQ(0u, source.Release());
    EXPECT_EQ(0u, sink.Release());
    EXPECT_EQ(0, CBaseObject::ObjectsActive());
}

HRESULT Chain::Connect()
{
    const HRESULT result = graph->Connect(source->pin, probe->In());
    return FAILED(result) ? result : graph->Connect(probe->Out(), sink->pin);
}

HRESULT Chain::Disconnect()
{
    for (CBasePin* pin : std::initializer_list<CBasePin*>{&sink->pin, &probe->Out(), &probe->In(), &source->pin}) {
        const HRESULT result = pin->Disconnect();
        if (FAILED(result))
            return result;
    }
    return S_OK;
}

ComPtr<IMediaSample> Chain::Sample(BYTE first)
{
    ComPtr<IMediaSample> sample;
    EXPECT_HRESULT_SUCCEEDED(source->pin.GetDeliveryBuffer(&sample, nullptr, nullptr, AM_GBF_NOWAIT));
    BYTE* bytes = nullptr;
    if (sample && SUCCEEDED(sample->GetPointer(&bytes)))
        std::memset(bytes, first, static_cast<std::size_t>(sample->GetSize()));
    return sample;
}

} // namespace test
