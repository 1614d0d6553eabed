#include "tests/framework/TestFilters.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

namespace test {

const CLSID probeClass = {0x2B0C7A11, 0x93D4, 0x4E0B, {0x8B, 0x11, 0x5D, 0x60, 0x11, 0x7E, 0x20, 0x01}};

namespace {

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

HRESULT SourcePin::CheckMediaType(const CMediaType* type)
{
    if (whenAsked)
        whenAsked(*type);
    return std::ranges::find(types, *type) != types.end() ? S_OK : VFW_E_TYPE_NOT_ACCEPTED;
}

HRESULT SourcePin::GetMediaType(int index, CMediaType* type)
{
    return TypeAt(types, index, type);
}

HRESULT SourcePin::DecideBufferSize(IMemAllocator* allocator, ALLOCATOR_PROPERTIES* request)
{
    seen = *request;
    request->cBuffers = 3;
    return FrameSourcePin::DecideBufferSize(allocator, request);
}

HRESULT SourcePin::Active()
{
    if (FAILED(activeResult))
        return activeResult;
    const HRESULT result = FrameSourcePin::Active();
    if (SUCCEEDED(result) && ownThread)
        thread = std::jthread([this](const std::stop_token& stop) {
            while (!stop.stop_requested()) {
                ComPtr<IMediaSample> sample;
                // A failure: stopped, or stopping downstream.
                if (SUCCEEDED(GetDeliveryBuffer(&sample, nullptr, nullptr, 0)))
                    Deliver(sample.Get());
            }
        });
    return result;
}

HRESULT SourcePin::Inactive()
{
    thread.request_stop();
    const HRESULT result = FrameSourcePin::Inactive(); // wakes the thread from GetBuffer
    thread = {};
    return result;
}

HRESULT SourcePin::Notify(IBaseFilter*, Quality) noexcept
{
    ++qualityMessages;
    return S_OK;
}

HRESULT SinkPin::GetMediaType(int index, CMediaType* type)
{
    return TypeAt(types, index, type);
}

HRESULT SinkPin::Inactive()
{
    const HRESULT result = FrameSinkPin::Inactive();
    CAutoLock wait(&receiving);
    return result;
}

HRESULT SinkPin::GetAllocator(IMemAllocator** allocator) noexcept
{
    return offers ? offers.CopyTo(allocator) : FrameSinkPin::GetAllocator(allocator);
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
    return FrameSinkPin::Receive(sample);
}

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
    EXPECT_HRESULT_SUCCEEDED(graph->Add(source.Get(), L"source"));
    EXPECT_HRESULT_SUCCEEDED(graph->Add(probe.Get(), L"probe"));
    EXPECT_HRESULT_SUCCEEDED(graph->Add(sink.Get(), L"sink"));
}

Chain::~Chain()
{
    graph.reset();
    EXPECT_EQ(0u, probe.Release());
    EXPECT_EQ(0u, source.Release());
    EXPECT_EQ(0u, sink.Release());
    EXPECT_EQ(0, CBaseObject::ObjectsActive());
}

HRESULT Chain::Connect() const
{
    const HRESULT result = graph->Connect(source->pin, probe->In());
    return FAILED(result) ? result : graph->Connect(probe->Out(), sink->pin);
}

HRESULT Chain::Disconnect() const
{
    for (CBasePin* pin : std::initializer_list<CBasePin*>{&sink->pin, &probe->Out(), &probe->In(), &source->pin}) {
        const HRESULT result = pin->Disconnect();
        if (FAILED(result))
            return result;
    }
    return S_OK;
}

ComPtr<IMediaSample> Chain::Sample(BYTE first) const
{
    ComPtr<IMediaSample> sample;
    EXPECT_HRESULT_SUCCEEDED(source->pin.GetDeliveryBuffer(&sample, nullptr, nullptr, AM_GBF_NOWAIT));
    BYTE* bytes = nullptr;
    if (sample && SUCCEEDED(sample->GetPointer(&bytes)))
        std::memset(bytes, first, static_cast<std::size_t>(sample->GetSize()));
    return sample;
}

} // namespace test
