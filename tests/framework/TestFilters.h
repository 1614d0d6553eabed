// A source, a sink and an in-place filter that count and remember what happens to them.
#pragma once

#include "framework/DirectShow.h"
#include "host/fixtures/PushGraph.h"

#include <atomic>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace test {

using vixahost::fixtures::VideoType;

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
    Object* get() const { return object; }
    ULONG Release()
    {
        Object* const released = std::exchange(object, nullptr);
        return released ? released->NonDelegatingRelease() : 0;
    }

private:
    Object* object;
};

// Pushes what the test hands it.
class SourcePin : public CBaseOutputPin
{
public:
    enum class Allocator
    {
        Peers,
        Own,
        OwnReadOnly,
        PeersReadOnly
    };

    SourcePin(CBaseFilter* filter, CCritSec* lock);

    HRESULT CheckMediaType(const CMediaType* type) override;
    HRESULT GetMediaType(int index, CMediaType* type) override;
    HRESULT DecideBufferSize(IMemAllocator* allocator, ALLOCATOR_PROPERTIES* request) override;
    HRESULT DecideAllocator(IMemInputPin* pin, IMemAllocator** allocator) override;
    HRESULT Active() override;
    HRESULT Inactive() override;
    HRESULT STDMETHODCALLTYPE Notify(IBaseFilter* sender, Quality quality) noexcept override;

    IMemAllocator* PeekAllocator() const { return m_pAllocator.Get(); }
    IMemInputPin* Peers() const { return m_pInputPin.Get(); }
    // An own thread that pushes samples from Active to Inactive.
    void StreamByItself() { ownThread = true; }

    std::vector<CMediaType> types = {VideoType(8, 4)};
    Allocator mode = Allocator::Peers;
    ALLOCATOR_PROPERTIES wanted = {3, 8 * 4 * 4, 1, 0};
    ALLOCATOR_PROPERTIES seen = {}; // the requirements when the allocator was decided
    std::function<void(const CMediaType&)> whenAsked;
    std::atomic<int> qualityMessages = 0;
    std::atomic<int> pushed = 0;
    HRESULT activeResult = S_OK;

private:
    static DWORD WINAPI Stream(void* pin) noexcept;

    bool ownThread = false;
    CAMEvent stopping{true};
    vixa::UniqueThread thread;
};

class Source : public CBaseFilter
{
public:
    Source();
    int GetPinCount() override { return 1; }
    CBasePin* GetPin(int index) override { return index == 0 ? &pin : nullptr; }

    CCritSec lock;
    SourcePin pin;
};

struct Arrival
{
    IMediaSample* sample; // for its identity only
    std::vector<BYTE> bytes;
    AM_SAMPLE2_PROPERTIES properties; // its pointers are dead
    LONGLONG mediaStart, mediaEnd;
    bool hasMediaTime;
};

class SinkPin : public CBaseInputPin
{
public:
    SinkPin(CBaseFilter* filter, CCritSec* lock);

    HRESULT CheckMediaType(const CMediaType* type) override;
    HRESULT GetMediaType(int index, CMediaType* type) override;
    HRESULT CompleteConnect(IPin* pin) override;
    HRESULT Inactive() override;
    HRESULT STDMETHODCALLTYPE GetAllocator(IMemAllocator** allocator) noexcept override;
    HRESULT STDMETHODCALLTYPE NotifyAllocator(IMemAllocator* allocator, BOOL readOnly) noexcept override;
    HRESULT STDMETHODCALLTYPE GetAllocatorRequirements(ALLOCATOR_PROPERTIES* properties) noexcept override;
    HRESULT STDMETHODCALLTYPE Receive(IMediaSample* sample) noexcept override;
    HRESULT STDMETHODCALLTYPE ReceiveCanBlock() noexcept override { return canBlock; }
    HRESULT STDMETHODCALLTYPE EndOfStream() noexcept override;
    HRESULT STDMETHODCALLTYPE BeginFlush() noexcept override;
    HRESULT STDMETHODCALLTYPE EndFlush() noexcept override;
    HRESULT STDMETHODCALLTYPE NewSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate) noexcept override;

    std::vector<CMediaType> types;
    std::function<bool(const CMediaType&)> accepts = [](const CMediaType&) { return true; };
    std::function<bool(IMemAllocator*)> takesAllocator = [](IMemAllocator*) { return true; };
    int refusals = 0;             // of allocators
    ComPtr<IMemAllocator> offers; // whatever was agreed on; else as the base
    ALLOCATOR_PROPERTIES needs = {};
    HRESULT completeResult = S_OK;
    HRESULT receiveResult = S_OK;
    HRESULT canBlock = S_FALSE;
    bool remembers = true;
    std::vector<Arrival> arrivals;
    std::atomic<int> received = 0;
    std::atomic<int> ends = 0;
    std::atomic<int> flushesBegun = 0;
    std::atomic<int> flushesEnded = 0;
    std::atomic<int> segments = 0;

private:
    CCritSec receiving;
};

class Sink : public CBaseFilter
{
public:
    Sink();
    int GetPinCount() override { return 1; }
    CBasePin* GetPin(int index) override { return index == 0 ? &pin : nullptr; }

    CCritSec lock;
    SinkPin pin;
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
    HRESULT Connect();
    HRESULT Disconnect();
    // A sample of the source's allocator with that first byte.
    ComPtr<IMediaSample> Sample(BYTE first = 0);
};

} // namespace test
