// An effect in the platform's own filter graph, between a source that sends what the test hands it and a sink that
// keeps what arrives.
#pragma once

#include "framework/DirectShow.h"
#include "tests/support/TestSample.h"

#include <gtest/gtest.h>

#include <dvdmedia.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

namespace test {

inline CMediaType VideoType(LONG width, LONG height, const GUID& subtype = MEDIASUBTYPE_RGB32)
{
    CMediaType type;
    type.SetType(&MEDIATYPE_Video);
    type.SetSubtype(&subtype);
    type.SetFormatType(&FORMAT_VideoInfo);
    VIDEOINFOHEADER header{};
    header.AvgTimePerFrame = 400'000;
    header.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    header.bmiHeader.biWidth = width;
    header.bmiHeader.biHeight = height;
    header.bmiHeader.biPlanes = 1;
    header.bmiHeader.biBitCount = 32;
    type.SetFormat(reinterpret_cast<BYTE*>(&header), sizeof header);
    return type;
}

inline CMediaType VideoType2(LONG width, LONG height, DWORD aspectX, DWORD aspectY)
{
    CMediaType type = VideoType(width, height);
    type.SetFormatType(&FORMAT_VideoInfo2);
    VIDEOINFOHEADER2 header{};
    header.dwPictAspectRatioX = aspectX;
    header.dwPictAspectRatioY = aspectY;
    header.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    header.bmiHeader.biWidth = width;
    header.bmiHeader.biHeight = height;
    header.bmiHeader.biPlanes = 1;
    header.bmiHeader.biBitCount = 32;
    type.SetFormat(reinterpret_cast<BYTE*>(&header), sizeof header);
    return type;
}

// One output pin that offers one type.
class TestSource final : public CBaseFilter
{
public:
    TestSource(const CMediaType& offered, bool keepsReadOnly) : CBaseFilter(nullptr, nullptr, &lock, GUID_NULL)
    {
        HRESULT result = S_OK;
        pin = std::make_unique<Pin>(*this, &result, offered, keepsReadOnly);
    }
    int GetPinCount() override { return 1; }
    CBasePin* GetPin(int index) override { return index == 0 ? pin.get() : nullptr; }

    class Pin final : public CBaseOutputPin
    {
    public:
        Pin(TestSource& filter, HRESULT* result, const CMediaType& offered, bool keepsReadOnly)
            : CBaseOutputPin(nullptr, &filter, &filter.lock, result, L"Out"), type(offered), readOnly(keepsReadOnly)
        {
        }
        HRESULT CheckMediaType(const CMediaType* candidate) override { return *candidate == type ? S_OK : S_FALSE; }
        HRESULT GetMediaType(int index, CMediaType* offered) override
        {
            if (index != 0)
                return index < 0 ? E_INVALIDARG : VFW_S_NO_MORE_ITEMS;
            *offered = type;
            return S_OK;
        }
        HRESULT DecideBufferSize(IMemAllocator* allocator, ALLOCATOR_PROPERTIES* request) override
        {
            const auto* const header = reinterpret_cast<const VIDEOINFOHEADER*>(type.Format());
            const LONGLONG bytes = static_cast<LONGLONG>(header->bmiHeader.biWidth) * header->bmiHeader.biHeight * 4;
            request->cBuffers = 2;
            request->cbBuffer = bytes > 0 && bytes < (1 << 28) ? static_cast<long>(bytes) : 4096;
            ALLOCATOR_PROPERTIES actual{};
            return allocator->SetProperties(request, &actual);
        }
        HRESULT DecideAllocator(IMemInputPin* peer, IMemAllocator** allocator) override
        {
            if (!readOnly)
                return CBaseOutputPin::DecideAllocator(peer, allocator);
            // A source that keeps its buffers for itself says so, and insists on its own allocator.
            ALLOCATOR_PROPERTIES request{};
            peer->GetAllocatorRequirements(&request);
            request.cbAlign = std::max(request.cbAlign, 1L);
            HRESULT result = InitAllocator(allocator);
            if (SUCCEEDED(result))
                result = DecideBufferSize(*allocator, &request);
            if (SUCCEEDED(result))
                result = peer->NotifyAllocator(*allocator, TRUE);
            return result;
        }
        CMediaType type;
        const bool readOnly;
    };

    CCritSec lock;
    std::unique_ptr<Pin> pin;
};

// One input pin that takes everything and keeps the last sample's bytes and address.
class TestSink final : public CBaseFilter
{
public:
    TestSink() : CBaseFilter(nullptr, nullptr, &lock, GUID_NULL)
    {
        HRESULT result = S_OK;
        pin = std::make_unique<Pin>(*this, &result);
    }
    int GetPinCount() override { return 1; }
    CBasePin* GetPin(int index) override { return index == 0 ? pin.get() : nullptr; }

    class Pin final : public CBaseInputPin
    {
    public:
        Pin(TestSink& filter, HRESULT* result) : CBaseInputPin(nullptr, &filter, &filter.lock, result, L"In") {}
        HRESULT CheckMediaType(const CMediaType*) override { return S_OK; }
        STDMETHODIMP Receive(IMediaSample* sample) noexcept override
        {
            const HRESULT result = CBaseInputPin::Receive(sample);
            if (result != S_OK)
                return result;
            ++received;
            last = sample;
            BYTE* bytes = nullptr;
            if (keep && SUCCEEDED(sample->GetPointer(&bytes)) && bytes)
                content.assign(bytes, bytes + sample->GetActualDataLength());
            return S_OK;
        }
        int received = 0;
        bool keep = true;
        IMediaSample* last = nullptr; // address only
        std::vector<std::uint8_t> content;
    };

    CCritSec lock;
    std::unique_ptr<Pin> pin;
};

class EffectGraph
{
public:
    // Connects source, effect and sink. `connected` holds the first failure.
    explicit EffectGraph(IBaseFilter* effectFilter, const CMediaType& type, bool readOnlySource = false)
        : effect(effectFilter), source(new TestSource(type, readOnlySource)), sink(new TestSink)
    {
        EXPECT_EQ(CoCreateInstance(CLSID_FilterGraph, nullptr, CLSCTX_INPROC_SERVER, IID_IGraphBuilder,
                                   reinterpret_cast<void**>(graph.GetAddressOf())),
                  S_OK);
        graph->AddFilter(source.Get(), L"source");
        graph->AddFilter(effect.Get(), L"effect");
        graph->AddFilter(sink.Get(), L"sink");
        effect->FindPin(L"In", input.GetAddressOf());
        effect->FindPin(L"Out", output.GetAddressOf());
        connected = graph->ConnectDirect(source->pin.get(), input.Get(), nullptr);
        if (SUCCEEDED(connected))
            connected = graph->ConnectDirect(output.Get(), sink->pin.get(), nullptr);
        input.As(&memory);
        graph.As(&control);
        // The frames come from the test; a clock would only wait.
        ComPtr<IMediaFilter> timing;
        graph.As(&timing);
        timing->SetSyncSource(nullptr);
        if (SUCCEEDED(connected)) {
            control->Run();
            OAFilterState state = 0;
            control->GetState(5000, &state);
        }
    }
    ~EffectGraph()
    {
        if (control)
            control->Stop();
        memory.Reset();
        for (auto* filter : {source.Get() ? static_cast<IBaseFilter*>(source.Get()) : nullptr, effect.Get(),
                             static_cast<IBaseFilter*>(sink.Get())})
            graph->RemoveFilter(filter);
    }
    EffectGraph(const EffectGraph&) = delete;
    EffectGraph& operator=(const EffectGraph&) = delete;

    // Sends a sample into the effect, as the upstream filter's thread would.
    HRESULT Send(IMediaSample* sample) { return memory->Receive(sample); }

    // Sends memory as one frame; it is changed in place.
    HRESULT Send(std::span<std::uint8_t> frame)
    {
        TestSample sample(frame);
        const HRESULT result = Send(&sample);
        EXPECT_EQ(sample.references, 1u) << "somebody kept the sample";
        EXPECT_EQ(sample.changes, 0) << "times or flags were altered";
        return result;
    }

    ComPtr<IGraphBuilder> graph;
    ComPtr<IMediaControl> control;
    ComPtr<IBaseFilter> effect;
    ComPtr<TestSource> source;
    ComPtr<TestSink> sink;
    ComPtr<IPin> input, output;
    ComPtr<IMemInputPin> memory;
    HRESULT connected = E_FAIL;
};

} // namespace test
