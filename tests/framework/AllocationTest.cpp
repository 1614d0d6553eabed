#include "host/fixtures/HandSample.h"
#include "tests/framework/TestFilters.h"

#include <gtest/gtest.h>

#include <array>

using namespace test;
using vixahost::fixtures::Record;

namespace {

// Pushes a sample through a running chain and says whether the very sample arrived.
bool ArrivesInPlace(Chain& chain)
{
    EXPECT_HRESULT_SUCCEEDED(chain.graph->Run());
    const ComPtr<IMediaSample> sample = chain.Sample(40);
    EXPECT_EQ(S_OK, chain.source->pin.Deliver(sample.Get()));
    const Record& seen = chain.sink->record;
    EXPECT_EQ(41, seen.content.at(0)) << "what arrives has been transformed";
    BYTE* bytes = nullptr;
    sample->GetPointer(&bytes);
    const bool inPlace = seen.last == sample.Get();
    EXPECT_EQ(inPlace ? 41 : 40, bytes[0]) << "a read-only sample must stay as it was";
    EXPECT_HRESULT_SUCCEEDED(chain.graph->Stop());
    return inPlace;
}

// How the output and the input of a chain come to be connected.
enum class Order
{
    SourceFirst,
    SinkFirst,
    SinkAgain
};

void Connect(Chain& chain, Order order)
{
    ASSERT_EQ(S_OK, chain.Connect());
    if (order == Order::SinkFirst) {
        chain.source->pin.Disconnect();
        chain.probe->In().Disconnect();
        ASSERT_EQ(S_OK, chain.graph->Connect(chain.source->pin, chain.probe->In()));
    } else if (order == Order::SinkAgain) {
        chain.probe->Out().Disconnect();
        chain.sink->pin.Disconnect();
        ASSERT_EQ(S_OK, chain.graph->Connect(chain.probe->Out(), chain.sink->pin));
    }
}

// Has the sink offer its own allocator for good, whatever is agreed on.
ComPtr<IMemAllocator> OfferOwn(SinkPin& sink)
{
    EXPECT_EQ(S_OK, sink.GetAllocator(&sink.offers));
    return sink.offers;
}

// Upstream is offered downstream's allocator and told of its needs; what upstream decides on is used on both sides.
TEST(Allocation, UpstreamChoosesKnowingDownstream)
{
    for (const Allocator mode : {Allocator::Shared, Allocator::Own}) {
        for (const Order order : {Order::SourceFirst, Order::SinkFirst, Order::SinkAgain}) {
            Chain chain;
            chain.source->pin.offer.allocator = mode;
            const ComPtr<IMemAllocator> sinks = OfferOwn(chain.sink->pin);
            if (mode == Allocator::Own)
                chain.sink->pin.needs = {2, 0, 4096, 8};
            Connect(chain, order);
            EXPECT_EQ(std::max(chain.sink->pin.needs.cbAlign, 1L), chain.source->pin.seen.cbAlign);
            EXPECT_EQ(chain.sink->pin.needs.cbPrefix, chain.source->pin.seen.cbPrefix);
            EXPECT_EQ(mode == Allocator::Shared, sinks.Get() == chain.source->pin.PeekAllocator());
            EXPECT_EQ(chain.source->pin.PeekAllocator(), chain.sink->pin.PeekAllocator());
            EXPECT_TRUE(ArrivesInPlace(chain));
        }
    }
}

TEST(Allocation, AnotherSinkBringsItsOwnAllocator)
{
    Held<Sink> second;
    {
        Chain chain;
        ASSERT_HRESULT_SUCCEEDED(chain.graph->Add(second.Get()));
        ASSERT_EQ(S_OK, chain.Connect());
        const ComPtr<IMemAllocator> first(chain.sink->pin.PeekAllocator());
        EXPECT_EQ(first.Get(), chain.source->pin.PeekAllocator());
        chain.probe->Out().Disconnect();
        chain.sink->pin.Disconnect();
        second->record.insistsOn = OfferOwn(second->pin).Get();
        ASSERT_EQ(S_OK, chain.graph->Connect(chain.probe->Out(), second->pin));
        EXPECT_EQ(second->pin.PeekAllocator(), chain.source->pin.PeekAllocator());
        EXPECT_FALSE(chain.probe->UsingDifferentAllocators());
        EXPECT_EQ(0, second->record.refusals) << "it was handed what may die with the first";
        chain.graph.reset();
        EXPECT_EQ(0u, second.Release());
    }
}

// A graph of another maker: it reconnects when it finds the time, or never, or without being told a type.
struct ForeignGraph : IFilterGraph2
{
    ComPtr<IPin> pin;
    CMediaType type;
    HRESULT answer = S_OK;
    IGraphBuilder* reconnects = nullptr; // at once

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** ppv) override
    {
        *ppv = IsEqualIID(riid, IID_IFilterGraph2) && !reconnects ? this : nullptr;
        return *ppv ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE ReconnectEx(IPin* again, const AM_MEDIA_TYPE* as) override
    {
        pin = again;
        type.Set(*as);
        if (answer == E_UNEXPECTED)
            throw 1;
        return answer;
    }
    HRESULT STDMETHODCALLTYPE Reconnect(IPin* again) override { return reconnects->Reconnect(again); }
    HRESULT STDMETHODCALLTYPE AddFilter(IBaseFilter*, LPCWSTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE RemoveFilter(IBaseFilter*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE EnumFilters(IEnumFilters**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE FindFilterByName(LPCWSTR, IBaseFilter**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE ConnectDirect(IPin*, IPin*, const AM_MEDIA_TYPE*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Disconnect(IPin*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetDefaultSyncSource() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Connect(IPin*, IPin*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Render(IPin*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE RenderFile(LPCWSTR, LPCWSTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE AddSourceFilter(LPCWSTR, LPCWSTR, IBaseFilter**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetLogFile(DWORD_PTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Abort() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE ShouldOperationContinue() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE AddSourceFilterForMoniker(IMoniker*, IBindCtx*, LPCWSTR, IBaseFilter**) override
    {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE RenderEx(IPin*, DWORD, DWORD*) override { return E_NOTIMPL; }
};

TEST(Allocation, StreamsBeforeALateGraphReconnects)
{
    for (const HRESULT answer : {S_OK, E_FAIL, E_UNEXPECTED}) {
        Chain chain;
        ForeignGraph late;
        late.answer = answer;
        chain.probe->JoinFilterGraph(&late, nullptr);
        ASSERT_EQ(S_OK, chain.Connect());
        EXPECT_EQ(static_cast<IPin*>(&chain.probe->In()), late.pin.Get());
        EXPECT_FALSE(ArrivesInPlace(chain)) << "not agreed with downstream yet";
        ComPtr<IFilterGraph2> graph;
        ASSERT_EQ(S_OK, (*chain.graph)->QueryInterface(IID_IFilterGraph2, &graph));
        ASSERT_EQ(S_OK, graph->ReconnectEx(late.pin.Get(), &late.type));
        EXPECT_TRUE(ArrivesInPlace(chain));
        late.pin.Reset();
        chain.probe->JoinFilterGraph(nullptr, nullptr);
    }
}

TEST(Allocation, ReconnectionWithoutATypeKeepsTheType)
{
    Chain chain;
    ForeignGraph early;
    ComPtr<IGraphBuilder> graph(chain.graph->operator->());
    early.reconnects = graph.Get();
    chain.probe->JoinFilterGraph(&early, nullptr);
    chain.source->pin.types = {VideoType(8, 4), VideoType(16, 4)};
    ASSERT_EQ(S_OK, chain.graph->Connect(chain.source->pin, chain.probe->In()));
    ASSERT_EQ(S_OK, chain.graph->Connect(chain.probe->Out(), chain.sink->pin, &chain.source->pin.types[1]));
    EXPECT_TRUE(chain.source->pin.CurrentMediaType() == chain.source->pin.types[1]);
    EXPECT_TRUE(chain.sink->pin.CurrentMediaType() == chain.source->pin.types[1]);
    EXPECT_FALSE(chain.probe->UsingDifferentAllocators());
    chain.probe->JoinFilterGraph(nullptr, nullptr);
}

TEST(Allocation, BuffersAreAskedForAsUpstreamHasThem)
{
    struct Stingy : CMemAllocator
    {
        Stingy() : CMemAllocator(nullptr, nullptr, nullptr) {}
        HRESULT STDMETHODCALLTYPE SetProperties(ALLOCATOR_PROPERTIES* request,
                                                ALLOCATOR_PROPERTIES* granted) noexcept override
        {
            asked = *request;
            *granted = *request;
            granted->cBuffers -= fewer.cBuffers;
            granted->cbBuffer -= fewer.cbBuffer;
            granted->cbAlign -= fewer.cbAlign;
            return S_OK;
        }
        ALLOCATOR_PROPERTIES asked = {}, fewer = {};
    };
    Chain chain;
    Held<Stingy> stingy;
    ALLOCATOR_PROPERTIES request = {7, 7, 16, 0};
    EXPECT_EQ(S_OK, chain.probe->DecideBufferSize(stingy.Get(), &request));
    EXPECT_EQ(1, stingy->asked.cBuffers) << "without an input";
    EXPECT_EQ(1, stingy->asked.cbBuffer);
    ASSERT_EQ(S_OK, chain.Connect());
    EXPECT_EQ(S_OK, chain.probe->DecideBufferSize(stingy.Get(), &request));
    EXPECT_EQ(3, stingy->asked.cBuffers);
    EXPECT_EQ(8 * 4 * 4, stingy->asked.cbBuffer);
    EXPECT_EQ(16, stingy->asked.cbAlign);
    for (const ALLOCATOR_PROPERTIES fewer :
         {ALLOCATOR_PROPERTIES{1, 0, 0, 0}, ALLOCATOR_PROPERTIES{0, 1, 0, 0}, ALLOCATOR_PROPERTIES{0, 0, 1, 0}}) {
        stingy->fewer = fewer;
        EXPECT_EQ(E_FAIL, chain.probe->DecideBufferSize(stingy.Get(), &request));
    }
    EXPECT_EQ(0u, stingy.Release());
}

// Samples of another maker, with the older interface only and perhaps with a length that lies.
TEST(Allocation, CopiesOfForeignSamples)
{
    Chain chain;
    chain.source->pin.offer.allocator = Allocator::ReadOnly;
    ASSERT_EQ(S_OK, chain.Connect());
    ASSERT_HRESULT_SUCCEEDED(chain.graph->Run());
    std::vector<std::uint8_t> bytes(8 * 4 * 4, 3);
    vixahost::fixtures::HandSample sample(bytes);
    sample.start = 100;
    sample.timeResult = VFW_S_NO_STOP_TIME;
    sample.type = &chain.source->pin.types.front();
    EXPECT_EQ(S_OK, chain.probe->In().Receive(&sample));
    const Record& seen = chain.sink->record;
    EXPECT_EQ(4, seen.content[0]);
    EXPECT_EQ(100, seen.properties.tStart);
    EXPECT_EQ(static_cast<DWORD>(AM_SAMPLE_SPLICEPOINT | AM_SAMPLE_TIMEVALID | AM_SAMPLE_TYPECHANGED),
              seen.properties.dwSampleFlags);

    for (const LONG lie : std::initializer_list<LONG>{8L * 4 * 4 + 1, -1L, -MAXLONG - 1, LONG{MAXLONG}}) {
        sample.length = lie;
        EXPECT_EQ(E_UNEXPECTED, chain.probe->In().Receive(&sample)) << lie;
    }
    sample.length = 100; // fits the copy, not the sample
    sample.size = 99;
    EXPECT_EQ(E_UNEXPECTED, chain.probe->In().Receive(&sample));
    EXPECT_EQ(1, chain.sink->record.samples);
    sample.size = 0; // not told
    EXPECT_EQ(S_OK, chain.probe->In().Receive(&sample));
    EXPECT_EQ(100u, seen.content.size());
    chain.graph->Stop();
}

// Samples that may not be changed where they lie, and allocators that the other side does not take.
TEST(Allocation, CopiesAreMadeOnceWhereTheyMustBe)
{
    for (const Allocator mode : {Allocator::ReadOnly, Allocator::SharedReadOnly, Allocator::Own}) {
        for (const Order order : {Order::SourceFirst, Order::SinkFirst, Order::SinkAgain}) {
            Chain chain;
            chain.source->pin.offer.allocator = mode;
            const ComPtr<IMemAllocator> sinks = OfferOwn(chain.sink->pin);
            if (mode != Allocator::SharedReadOnly)
                chain.sink->record.insistsOn = sinks.Get();
            Connect(chain, order);
            EXPECT_TRUE(chain.probe->UsingDifferentAllocators());
            EXPECT_NE(chain.source->pin.PeekAllocator(), chain.sink->pin.PeekAllocator());
            ALLOCATOR_PROPERTIES properties = {};
            chain.sink->pin.PeekAllocator()->GetProperties(&properties);
            EXPECT_EQ(3, properties.cBuffers) << "as upstream's";
            EXPECT_EQ(8 * 4 * 4, properties.cbBuffer);
            EXPECT_FALSE(ArrivesInPlace(chain));
            EXPECT_EQ(1, chain.probe->transforms);
        }
    }
}

TEST(Allocation, CopiesCarryEverything)
{
    Chain chain;
    chain.source->pin.offer.allocator = Allocator::ReadOnly;
    ASSERT_EQ(S_OK, chain.Connect());
    ASSERT_HRESULT_SUCCEEDED(chain.graph->Run());
    const ComPtr<IMediaSample> sample = chain.Sample(7);
    REFERENCE_TIME start = 100, stop = 250;
    LONGLONG mediaStart = 5, mediaStop = 6;
    sample->SetTime(&start, &stop);
    sample->SetMediaTime(&mediaStart, &mediaStop);
    sample->SetSyncPoint(TRUE);
    sample->SetDiscontinuity(TRUE);
    sample->SetPreroll(TRUE);
    sample->SetActualDataLength(100);
    ASSERT_EQ(S_OK, chain.source->pin.Deliver(sample.Get()));
    const Record& seen = chain.sink->record;
    EXPECT_NE(sample.Get(), seen.last);
    EXPECT_EQ(100u, seen.content.size());
    EXPECT_EQ(8, seen.content[0]);
    EXPECT_EQ(7, seen.content[99]);
    EXPECT_EQ(100, seen.properties.tStart);
    EXPECT_EQ(250, seen.properties.tStop);
    EXPECT_EQ(static_cast<DWORD>(AM_SAMPLE_SPLICEPOINT | AM_SAMPLE_DATADISCONTINUITY | AM_SAMPLE_PREROLL |
                                 AM_SAMPLE_TIMEVALID | AM_SAMPLE_STOPVALID),
              seen.properties.dwSampleFlags);
    EXPECT_EQ(5, seen.mediaStart);
    EXPECT_EQ(6, seen.mediaEnd);

    // No buffer to be had: the sample is lost, and streaming goes on.
    ComPtr<IMemAllocator> output(chain.sink->pin.PeekAllocator());
    output->Decommit();
    EXPECT_EQ(E_UNEXPECTED, chain.source->pin.Deliver(sample.Get()));
    output->Commit();
    EXPECT_EQ(S_OK, chain.source->pin.Deliver(sample.Get()));
    ASSERT_HRESULT_SUCCEEDED(chain.graph->Stop());
}

// Two filters in a row: reconnections run all the way up.
TEST(Allocation, AChainOfFiltersSharesOneAllocator)
{
    Held<Probe> second;
    {
        Chain chain;
        ASSERT_HRESULT_SUCCEEDED(chain.graph->Add(second.Get()));
        chain.sink->pin.needs = {1, 0, 512, 0};
        ASSERT_EQ(S_OK, chain.graph->Connect(chain.source->pin, chain.probe->In()));
        ASSERT_EQ(S_OK, chain.graph->Connect(chain.probe->Out(), second->In()));
        ASSERT_EQ(S_OK, chain.graph->Connect(second->Out(), chain.sink->pin));
        EXPECT_FALSE(chain.probe->UsingDifferentAllocators());
        EXPECT_FALSE(second->UsingDifferentAllocators());
        EXPECT_EQ(chain.source->pin.PeekAllocator(), chain.sink->pin.PeekAllocator());
        ASSERT_HRESULT_SUCCEEDED(chain.graph->Run());
        const ComPtr<IMediaSample> sample = chain.Sample(1);
        EXPECT_EQ(S_OK, chain.source->pin.Deliver(sample.Get()));
        EXPECT_EQ(sample.Get(), chain.sink->record.last);
        EXPECT_EQ(3, chain.sink->record.content.at(0));
        chain.graph->Stop();
        chain.graph.reset();
        EXPECT_EQ(0u, second.Release());
    }
}

TEST(Allocation, NullPointersAndWrongStatesAreAnswered)
{
    Chain chain;
    CTransInPlaceInputPin& in = chain.probe->In();
    for (int connected = 0; connected < 2; ++connected) {
        EXPECT_EQ(E_POINTER, in.GetAllocator(nullptr));
        EXPECT_EQ(E_POINTER, in.NotifyAllocator(nullptr, FALSE));
        EXPECT_EQ(E_POINTER, in.GetAllocatorRequirements(nullptr));
        ALLOCATOR_PROPERTIES properties = {};
        EXPECT_EQ(connected ? S_OK : E_NOTIMPL, in.GetAllocatorRequirements(&properties));
        if (!connected) {
            ASSERT_EQ(S_OK, chain.Connect());
        }
    }
    // A frame may wait for a buffer of the present one.
    ComPtr<IMemAllocator> another;
    ASSERT_EQ(S_OK, CreateMemoryAllocator(&another));
    ASSERT_HRESULT_SUCCEEDED(chain.graph->Run());
    EXPECT_EQ(VFW_E_NOT_STOPPED, in.NotifyAllocator(another.Get(), FALSE));
    EXPECT_EQ(chain.source->pin.PeekAllocator(), in.PeekAllocator());
    EXPECT_EQ(chain.source->pin.PeekAllocator(), chain.sink->pin.PeekAllocator());
}

} // namespace
