// The host's source and sink as these tests need them, and an in-place filter that counts what happens to it.
#pragma once

#include "framework/DirectShow.h"
#include "host/fixtures/PushGraph.h"

#include <atomic>
#include <functional>
#include <initializer_list>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

namespace test {

using vixahost::fixtures::VideoType;
using Allocator = vixahost::graph::FrameSource::Allocator;

// Owns a framework object by one reference of its own; Release tells how many are left.
template <typename Object>
class Held
{
public:
    template <typename... Arguments>
    explicit Held(Arguments&&... arguments) : object(new Object(std::forward<Arguments>(arguments)...))
    {
        object->NonDelegatingAddRef();
    }
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;
    ~Held() { Release(); }

    Object* operator->() const { return object; }
    Object& operator*() const { return *object; }
    Object* Get() const { return object; }
    ULONG Release()
    {
        Object* const released = std::exchange(object, nullptr);
        return released ? released->NonDelegatingRelease() : 0;
    }

private:
    Object* object;
};

// The host's source with several types, which tells what it is asked and may push by itself whatever comes of it.
class SourcePin : public vixahost::graph::FrameSourcePin
{
public:
    explicit SourcePin(vixahost::graph::FrameSource& owner) : FrameSourcePin(owner, {{}, 8 * 4 * 4, Allocator::Shared})
    {
    }

    HRESULT CheckMediaType(const CMediaType* type) override;
    HRESULT GetMediaType(int index, CMediaType* type) override;
    // Asks for three.
    HRESULT DecideBufferSize(IMemAllocator* allocator, ALLOCATOR_PROPERTIES* request) override;
    HRESULT Active() override;
    HRESULT Inactive() override;
    HRESULT STDMETHODCALLTYPE Notify(IBaseFilter* sender, Quality quality) noexcept override;

    using FrameSourcePin::offer; // without its type
    IMemAllocator* PeekAllocator() const { return m_pAllocator.Get(); }
    // An own thread that pushes samples from Active to Inactive.
    void StreamByItself() { ownThread = true; }

    std::vector<CMediaType> types = {VideoType(8, 4)};
    ALLOCATOR_PROPERTIES seen = {}; // the requirements when the allocator was decided
    std::function<void(const CMediaType&)> whenAsked;
    std::atomic<int> qualityMessages = 0;
    HRESULT activeResult = S_OK;

private:
    bool ownThread = false;
    std::jthread thread;
};

class Source : public vixahost::graph::FrameSource
{
public:
    Source() : pin(*new SourcePin(*this)) { output.reset(&pin); }

    SourcePin& pin;
};

// The host's sink with types of its own, whose answers can be chosen.
class SinkPin : public vixahost::graph::FrameSinkPin
{
public:
    using FrameSinkPin::FrameSinkPin;

    HRESULT GetMediaType(int index, CMediaType* type) override;
    HRESULT CompleteConnect(IPin* /*pin*/) override { return completeResult; }
    HRESULT Inactive() override;
    HRESULT STDMETHODCALLTYPE GetAllocator(IMemAllocator** allocator) noexcept override;
    HRESULT STDMETHODCALLTYPE GetAllocatorRequirements(ALLOCATOR_PROPERTIES* properties) noexcept override;
    HRESULT STDMETHODCALLTYPE Receive(IMediaSample* sample) noexcept override;
    HRESULT STDMETHODCALLTYPE ReceiveCanBlock() noexcept override { return canBlock; }

    IMemAllocator* PeekAllocator() const { return m_pAllocator.Get(); }

    std::vector<CMediaType> types;
    ComPtr<IMemAllocator> offers; // whatever was agreed on; else as the base
    ALLOCATOR_PROPERTIES needs = {};
    HRESULT completeResult = S_OK;
    HRESULT canBlock = S_FALSE;

private:
    CCritSec receiving;
};

class Sink : public vixahost::graph::FrameSink
{
public:
    Sink() : FrameSink(record), pin(*new SinkPin(*this)) { input.reset(&pin); }

    vixahost::fixtures::Record record;
    SinkPin& pin;
};

extern const CLSID probeClass;

// Adds 1 to the first byte of every sample.
class Probe : public CTransInPlaceFilter
{
public:
    explicit Probe(IUnknown* outer = nullptr) : CTransInPlaceFilter(nullptr, outer, probeClass, nullptr) {}

    HRESULT CheckInputType(const CMediaType* type) override;
    HRESULT SetMediaType(PIN_DIRECTION direction, const CMediaType* type) override;
    HRESULT CompleteConnect(PIN_DIRECTION direction, IPin* pin) override;
    HRESULT AlterQuality(Quality quality) override;
    HRESULT StartStreaming() override;
    HRESULT StopStreaming() override;
    using CTransInPlaceFilter::Transform;
    HRESULT Transform(IMediaSample* sample) override;

    CTransInPlaceInputPin& In() { return static_cast<CTransInPlaceInputPin&>(*GetPin(0)); }
    CTransInPlaceOutputPin& Out() { return static_cast<CTransInPlaceOutputPin&>(*GetPin(1)); }

    std::function<HRESULT(IMediaSample*)> transform; // instead of the addition
    HRESULT qualityResult = S_FALSE;
    HRESULT startResult = S_OK;
    std::atomic<int> transforms = 0;
    std::atomic<bool> streaming = false;
    std::vector<std::pair<PIN_DIRECTION, LONG>> typesSet; // direction and width
    std::vector<std::pair<PIN_DIRECTION, HRESULT>> completed;
};

// The platform's graph manager around source, probe and sink. Connects nothing by itself.
class Graph
{
public:
    Graph();
    ~Graph();

    HRESULT Add(IBaseFilter* filter, LPCWSTR name = nullptr);
    HRESULT Connect(IPin& from, IPin& to, const AM_MEDIA_TYPE* type = nullptr);
    HRESULT Run();
    HRESULT Pause();
    HRESULT Stop();
    // How many events of that code lie in the queue, which is emptied; the last one's first parameter.
    int CountEvents(long code, LONG_PTR* parameter = nullptr);
    IGraphBuilder* operator->() const { return builder.Get(); }

private:
    ComPtr<IGraphBuilder> builder;
};

// Source, probe and sink in a graph; at the end of a test nothing of them may be left.
struct Chain
{
    Held<Source> source;
    Held<Probe> probe;
    Held<Sink> sink;
    std::unique_ptr<Graph> graph = std::make_unique<Graph>();

    Chain();
    ~Chain();
    // Source to probe, then probe to sink.
    HRESULT Connect() const;
    HRESULT Disconnect() const;
    // A sample of the source's allocator, filled with that byte.
    ComPtr<IMediaSample> Sample(BYTE first = 0) const;
};

} // namespace test
