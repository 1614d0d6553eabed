#include "host/validate/PushGraph.h"

#include <control.h>

#include <algorithm>

namespace vixahost::validate {

namespace {

class SourcePin final : public CBaseOutputPin
{
public:
    SourcePin(CBaseFilter* filter, CCritSec* lock, HRESULT* result, const CMediaType& offered,
              PushGraph::Allocator kind)
        : CBaseOutputPin(nullptr, filter, lock, result, L"Out"), type(offered), allocator(kind)
    {
    }
    HRESULT CheckMediaType(const CMediaType* candidate) override { return *candidate == type ? S_OK : S_FALSE; }
    HRESULT GetMediaType(int index, CMediaType* offered) override
    {
        return index == 0 ? offered->Set(type) : VFW_S_NO_MORE_ITEMS;
    }
    HRESULT DecideBufferSize(IMemAllocator* from, ALLOCATOR_PROPERTIES* request) override
    {
        request->cBuffers = 2;
        request->cbBuffer = 1 << 20;
        ALLOCATOR_PROPERTIES actual = {};
        return from->SetProperties(request, &actual);
    }
    HRESULT DecideAllocator(IMemInputPin* peer, IMemAllocator** agreed) override
    {
        if (allocator == PushGraph::Allocator::Shared)
            return CBaseOutputPin::DecideAllocator(peer, agreed);
        ALLOCATOR_PROPERTIES request = {2, 1 << 20, 1, 0};
        HRESULT result = InitAllocator(agreed);
        if (SUCCEEDED(result))
            result = DecideBufferSize(*agreed, &request);
        return SUCCEEDED(result) ? peer->NotifyAllocator(*agreed, TRUE) : result;
    }

private:
    CMediaType type;
    PushGraph::Allocator allocator;
};

class SinkPin final : public CBaseInputPin
{
public:
    SinkPin(CBaseFilter* filter, CCritSec* lock, HRESULT* result) : CBaseInputPin(nullptr, filter, lock, result, L"In")
    {
    }
    HRESULT CheckMediaType(const CMediaType*) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE Receive(IMediaSample* sample) noexcept override
    {
        const HRESULT result = CBaseInputPin::Receive(sample);
        if (result != S_OK)
            return result;
        ++record.samples;
        record.last = sample;
        BYTE* bytes = nullptr;
        sample->GetTime(&record.start, &record.end);
        if (SUCCEEDED(sample->GetPointer(&bytes)) && bytes && sample->GetActualDataLength() >= 0) {
            record.bytes = bytes;
            record.content.assign(bytes, bytes + std::min(sample->GetActualDataLength(), sample->GetSize()));
        }
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE EndOfStream() noexcept override
    {
        ++record.endsOfStream;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE BeginFlush() noexcept override
    {
        ++record.flushBegins;
        return CBaseInputPin::BeginFlush();
    }
    HRESULT STDMETHODCALLTYPE EndFlush() noexcept override
    {
        ++record.flushEnds;
        return CBaseInputPin::EndFlush();
    }
    HRESULT STDMETHODCALLTYPE NewSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate) noexcept override
    {
        ++record.segments;
        record.start = start;
        record.end = stop;
        return CBaseInputPin::NewSegment(start, stop, rate);
    }
    PushGraph::Record record;
};

} // namespace

class HandSource final : public CBaseFilter
{
public:
    HandSource(const CMediaType& type, PushGraph::Allocator allocator) : CBaseFilter(nullptr, nullptr, &lock, GUID_NULL)
    {
        HRESULT result = S_OK;
        pin = std::make_unique<SourcePin>(this, &lock, &result, type, allocator);
    }
    int GetPinCount() override { return 1; }
    CBasePin* GetPin(int index) override { return index == 0 ? pin.get() : nullptr; }

    CCritSec lock;
    std::unique_ptr<SourcePin> pin;
};

class RecordingSink final : public CBaseFilter
{
public:
    RecordingSink() : CBaseFilter(nullptr, nullptr, &lock, GUID_NULL)
    {
        HRESULT result = S_OK;
        pin = std::make_unique<SinkPin>(this, &lock, &result);
    }
    int GetPinCount() override { return 1; }
    CBasePin* GetPin(int index) override { return index == 0 ? pin.get() : nullptr; }

    CCritSec lock;
    std::unique_ptr<SinkPin> pin;
};

CMediaType VideoType(LONG width, LONG height, bool secondHeader)
{
    BITMAPINFOHEADER bitmap = {};
    bitmap.biSize = sizeof bitmap;
    bitmap.biWidth = width;
    bitmap.biHeight = height;
    bitmap.biPlanes = 1;
    bitmap.biBitCount = 32;
    CMediaType type;
    type.SetType(&MEDIATYPE_Video);
    type.SetSubtype(&MEDIASUBTYPE_RGB32);
    if (secondHeader) {
        VIDEOINFOHEADER2 header = {};
        header.bmiHeader = bitmap;
        header.dwPictAspectRatioX = 4;
        header.dwPictAspectRatioY = 3;
        type.SetFormatType(&FORMAT_VideoInfo2);
        type.SetFormat(reinterpret_cast<const BYTE*>(&header), sizeof header);
    } else {
        VIDEOINFOHEADER header = {};
        header.bmiHeader = bitmap;
        header.AvgTimePerFrame = 400'000;
        type.SetFormatType(&FORMAT_VideoInfo);
        type.SetFormat(reinterpret_cast<const BYTE*>(&header), sizeof header);
    }
    return type;
}

PushGraph::PushGraph(IBaseFilter* effect, const CMediaType& type, Allocator allocator)
    : filter(effect), source(new HandSource(type, allocator)), sink(new RecordingSink)
{
    if (FAILED(CoCreateInstance(CLSID_FilterGraph, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&graph))))
        Skip("this system has no filter graph");
    graph->AddFilter(source.Get(), L"source");
    RequireResult(graph->AddFilter(filter.Get(), L"effect"), S_OK, "joining a filter graph");
    graph->AddFilter(sink.Get(), L"sink");
    RequireResult(filter->FindPin(L"In", &input), S_OK, "FindPin(\"In\")");
    ComPtr<IPin> output;
    RequireResult(filter->FindPin(L"Out", &output), S_OK, "FindPin(\"Out\")");
    RequireResult(graph->ConnectDirect(source->pin.get(), input.Get(), nullptr), S_OK, "connecting the input pin");
    RequireResult(graph->ConnectDirect(output.Get(), sink->pin.get(), nullptr), S_OK, "connecting the output pin");
    RequireResult(input.As(&memory), S_OK, "the input pin's QueryInterface(IMemInputPin)");
    graph.As(&control);
    // The samples come from the check; a clock would only wait.
    ComPtr<IMediaFilter> timing;
    graph.As(&timing);
    timing->SetSyncSource(nullptr);
    Require(SUCCEEDED(control->Run()), "the graph does not run");
    OAFilterState state = State_Stopped;
    control->GetState(5000, &state);
    RequireNumber(state, State_Running, "the graph's state");
}

PushGraph::~PushGraph()
{
    if (!graph)
        return;
    if (control)
        control->Stop();
    memory.Reset();
    input.Reset();
    graph->RemoveFilter(source.Get());
    graph->RemoveFilter(filter.Get());
    graph->RemoveFilter(sink.Get());
}

HRESULT PushGraph::Send(std::span<std::uint8_t> frame)
{
    HandSample sample(frame);
    const HRESULT result = Send(&sample);
    RequireNumber(sample.references, 1, "the count of a sample's references after Receive");
    return result;
}

std::vector<std::uint8_t> PushGraph::Through(std::vector<std::uint8_t> frame)
{
    constexpr std::size_t margin = 64;
    constexpr std::uint8_t mark = 0xC3;
    std::vector<std::uint8_t> room(frame.size() + 2 * margin, mark);
    for (std::size_t i = 0; i < frame.size(); ++i)
        room[margin + i] = frame[i];
    const int before = Seen().samples;
    RequireResult(Send(std::span(room).subspan(margin, frame.size())), S_OK, "Receive");
    RequireNumber(Seen().samples, before + 1, "the count of delivered samples");
    for (std::size_t i = 0; i < margin; ++i)
        Require(room[i] == mark && room[room.size() - 1 - i] == mark, "bytes outside the frame were written");
    for (std::size_t i = 0; i < frame.size(); ++i)
        frame[i] = room[margin + i];
    return frame;
}

const PushGraph::Record& PushGraph::Seen() const noexcept
{
    return sink->pin->record;
}

ComPtr<IBaseFilter> MakeSource(const CMediaType& type)
{
    return ComPtr<HandSource>(new HandSource(type, PushGraph::Allocator::Shared));
}

ComPtr<IPin> OnlyPin(IBaseFilter* filter)
{
    ComPtr<IEnumPins> pins;
    ComPtr<IPin> pin;
    if (SUCCEEDED(filter->EnumPins(&pins)))
        pins->Next(1, &pin, nullptr);
    return pin;
}

} // namespace vixahost::validate
