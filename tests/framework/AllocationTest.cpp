#include "tests/framework/TestFilters.h"

#include <gtest/gtest.h>

#include <array>

using namespace test;

namespace {

// Pushes a sample through a running chain and says whether the very sample arrived.
bool ArrivesInPlace(Chain& chain)
{
    EXPECT_HRESULT_SUCCEEDED(chain.graph->Run());
    const ComPtr<IMediaSample> sample = chain.Sample(40);
    EXPECT_EQ(S_OK, chain.source->pin.Deliver(sample.Get()));
    EXPECT_EQ(1u, chain.sink->pin.arrivals.size());
    if (chain.sink->pin.arrivals.size() != 1)
        return false;
    EXPECT_EQ(41, chain.sink->pin.arrivals[0].bytes[0]) << "what arrives has been transformed";
    BYTE* bytes = nullptr;
    sample->GetPointer(&bytes);
    const bool inPlace = chain.sink->pin.arrivals[0].sample == sample.Get();
    EXPECT_EQ(inPlace ? 41 : 40, bytes[0]) << "a read-only sample must stay as it was";
    EXPECT_HRESULT_SUCCEEDED(chain.graph->Stop());
    return inPlace;
}

TEST(Allocation, SourceFirstNeedsNoReconnection)
{
    for (const auto mode : {SourcePin::Allocator::Peers, SourcePin::Allocator::Own}) {
        Chain chain;
        chain.source->pin.mode = mode;
        ASSERT_EQ(S_OK, chain.Connect());
        EXPECT_FALSE(chain.probe->UsingDifferentAllocators());
        EXPECT_EQ(chain.source->pin.PeekAllocator(), chain.sink->pin.PeekAllocator());
        EXPECT_EQ(1, chain.source->pin.decisions);
        EXPECT_TRUE(ArrivesInPlace(chain));
    }
}

// The input comes last, as after a disconnection: downstream's allocator and requirements are passed up.
TEST(Allocation, DownstreamsAllocatorIsPassedUp)
{
    for (const auto mode : {SourcePin::Allocator::Peers, SourcePin::Allocator::Own}) {
        Chain chain;
        chain.source->pin.mode = mode;
        chain.sink->pin.needs = {2, 0, 64, 8};
        ASSERT_EQ(S_OK, chain.Connect());
        chain.source->pin.Disconnect();
        chain.probe->in().Disconnect();
        chain.source->pin.seen = {};
        ComPtr<IMemAllocator> offered, sinks;
        EXPECT_EQ(S_OK, chain.probe->in().GetAllocator(&offered));
        EXPECT_EQ(S_OK, chain.sink->pin.GetAllocator(&sinks));
        EXPECT_EQ(sinks.Get(), offered.Get());
        ASSERT_EQ(S_OK, chain.graph->Connect(chain.source->pin, chain.probe->in()));
        EXPECT_EQ(64, chain.source->pin.seen.cbAlign);
        EXPECT_EQ(8, chain.source->pin.seen.cbPrefix);
        EXPECT_EQ(mode == SourcePin::Allocator::Peers, sinks.Get() == chain.source->pin.PeekAllocator());
        EXPECT_TRUE(ArrivesInPlace(chain));
    }
}

// What the sink needs is more than the allocator has that was agreed on before there was a sink.
TEST(Allocation, UnsuitableAllocatorIsReplacedByReconnection)
{
    Chain chain;
    chain.sink->pin.needs = {1, 0, 4096, 0};
    ASSERT_EQ(S_OK, chain.Connect());
    EXPECT_EQ(2, chain.source->pin.decisions) << "the graph reconnected the input";
    EXPECT_EQ(4096, chain.source->pin.seen.cbAlign);
    EXPECT_FALSE(chain.probe->UsingDifferentAllocators());
    EXPECT_TRUE(ArrivesInPlace(chain));
}

TEST(Allocation, RefusedAllocatorIsReplacedByReconnection)
{
    Chain chain;
    ComPtr<IMemAllocator> only;
    ASSERT_EQ(S_OK, chain.sink->pin.GetAllocator(&only));
    chain.sink->pin.takesAllocator = [&](IMemAllocator* offered) { return offered == only.Get(); };
    ASSERT_EQ(S_OK, chain.Connect());
    EXPECT_EQ(2, chain.source->pin.decisions);
    EXPECT_EQ(only.Get(), chain.source->pin.PeekAllocator());
    EXPECT_TRUE(ArrivesInPlace(chain));
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
    EXPECT_EQ(S_OK, chain.probe->DecideBufferSize(stingy.get(), &request));
    EXPECT_EQ(1, stingy->asked.cBuffers) << "without an input";
    EXPECT_EQ(1, stingy->asked.cbBuffer);
    ASSERT_EQ(S_OK, chain.Connect());
    EXPECT_EQ(S_OK, chain.probe->DecideBufferSize(stingy.get(), &request));
    EXPECT_EQ(3, stingy->asked.cBuffers);
    EXPECT_EQ(8 * 4 * 4, stingy->asked.cbBuffer);
    EXPECT_EQ(16, stingy->asked.cbAlign);
    for (const ALLOCATOR_PROPERTIES fewer :
         {ALLOCATOR_PROPERTIES{1, 0, 0, 0}, ALLOCATOR_PROPERTIES{0, 1, 0, 0}, ALLOCATOR_PROPERTIES{0, 0, 1, 0}}) {
        stingy->fewer = fewer;
        EXPECT_EQ(E_FAIL, chain.probe->DecideBufferSize(stingy.get(), &request));
    }
    EXPECT_EQ(0u, stingy.Release());
}

// A sample of another maker, with the older interface only and perhaps with a length that lies.
struct PlainSample : IMediaSample
{
    explicit PlainSample(IMediaSample* inner)
        : sample(inner), length(inner->GetActualDataLength()), size(inner->GetSize())
    {
    }

    IMediaSample* sample;
    LONG length;
    LONG size;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** ppv) noexcept override
    {
        *ppv = IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IMediaSample) ? this : nullptr;
        return *ppv ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return 2; }
    ULONG STDMETHODCALLTYPE Release() noexcept override { return 1; }
    HRESULT STDMETHODCALLTYPE GetPointer(BYTE** p) noexcept override { return sample->GetPointer(p); }
    LONG STDMETHODCALLTYPE GetSize() noexcept override { return size; }
    HRESULT STDMETHODCALLTYPE GetTime(REFERENCE_TIME* a, REFERENCE_TIME* b) noexcept override
    {
        return sample->GetTime(a, b);
    }
    HRESULT STDMETHODCALLTYPE SetTime(REFERENCE_TIME*, REFERENCE_TIME*) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE IsSyncPoint() noexcept override { return sample->IsSyncPoint(); }
    HRESULT STDMETHODCALLTYPE SetSyncPoint(BOOL) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE IsPreroll() noexcept override { return sample->IsPreroll(); }
    HRESULT STDMETHODCALLTYPE SetPreroll(BOOL) noexcept override { return E_NOTIMPL; }
    LONG STDMETHODCALLTYPE GetActualDataLength() noexcept override { return length; }
    HRESULT STDMETHODCALLTYPE SetActualDataLength(LONG) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetMediaType(AM_MEDIA_TYPE** p) noexcept override { return sample->GetMediaType(p); }
    HRESULT STDMETHODCALLTYPE SetMediaType(AM_MEDIA_TYPE*) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE IsDiscontinuity() noexcept override { return sample->IsDiscontinuity(); }
    HRESULT STDMETHODCALLTYPE SetDiscontinuity(BOOL) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetMediaTime(LONGLONG* a, LONGLONG* b) noexcept override
    {
        return sample->GetMediaTime(a, b);
    }
    HRESULT STDMETHODCALLTYPE SetMediaTime(LONGLONG*, LONGLONG*) noexcept override { return E_NOTIMPL; }
};

TEST(Allocation, CopiesOfForeignSamples)
{
    Chain chain;
    chain.source->pin.mode = SourcePin::Allocator::OwnReadOnly;
    ASSERT_EQ(S_OK, chain.Connect());
    ASSERT_HRESULT_SUCCEEDED(chain.graph->Run());
    const ComPtr<IMediaSample> inner = chain.Sample(3);
    REFERENCE_TIME start = 100;
    CMediaType type = chain.source->pin.types[0];
    inner->SetTime(&start, nullptr);
    inner->SetSyncPoint(TRUE);
    inner->SetMediaType(&type);
    PlainSample sample(inner.Get());
    EXPECT_EQ(S_OK, chain.probe->in().Receive(&sample));
    const Arrival& arrival = chain.sink->pin.arrivals.at(0);
    EXPECT_EQ(4, arrival.bytes[0]);
    EXPECT_EQ(100, arrival.properties.tStart);
    EXPECT_EQ(static_cast<DWORD>(AM_SAMPLE_SPLICEPOINT | AM_SAMPLE_TIMEVALID | AM_SAMPLE_TYPECHANGED),
              arrival.properties.dwSampleFlags);

    for (const LONG lie : std::initializer_list<LONG>{8L * 4 * 4 + 1, -1L, -MAXLONG - 1, LONG{MAXLONG}}) {
        sample.length = lie;
        EXPECT_EQ(E_UNEXPECTED, chain.probe->in().Receive(&sample)) << lie;
    }
    sample.length = 100; // fits the copy, not the sample
    sample.size = 99;
    EXPECT_EQ(E_UNEXPECTED, chain.probe->in().Receive(&sample));
    EXPECT_EQ(1, chain.sink->pin.received);
    chain.graph->Stop();
}

TEST(Allocation, ReadOnlySamplesAreCopiedOnce)
{
    using Mode = SourcePin::Allocator;
    for (const Mode mode : {Mode::OwnReadOnly, Mode::PeersReadOnly}) {
        for (const bool sinkFirst : {false, true}) {
            Chain chain;
            chain.source->pin.mode = mode;
            ASSERT_EQ(S_OK, chain.Connect());
            if (sinkFirst) {
                chain.source->pin.Disconnect();
                chain.probe->in().Disconnect();
                ASSERT_EQ(S_OK, chain.graph->Connect(chain.source->pin, chain.probe->in()));
            }
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
    chain.source->pin.mode = SourcePin::Allocator::OwnReadOnly;
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
    const Arrival& arrival = chain.sink->pin.arrivals.at(0);
    EXPECT_NE(sample.Get(), arrival.sample);
    EXPECT_EQ(100u, arrival.bytes.size());
    EXPECT_EQ(8, arrival.bytes[0]);
    EXPECT_EQ(7, arrival.bytes[99]);
    EXPECT_EQ(100, arrival.properties.tStart);
    EXPECT_EQ(250, arrival.properties.tStop);
    EXPECT_EQ(static_cast<DWORD>(AM_SAMPLE_SPLICEPOINT | AM_SAMPLE_DATADISCONTINUITY | AM_SAMPLE_PREROLL |
                                 AM_SAMPLE_TIMEVALID | AM_SAMPLE_STOPVALID),
              arrival.properties.dwSampleFlags);
    EXPECT_TRUE(arrival.hasMediaTime);
    EXPECT_EQ(5, arrival.mediaStart);
    EXPECT_EQ(6, arrival.mediaEnd);

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
        ASSERT_HRESULT_SUCCEEDED(chain.graph->Add(second.get()));
        chain.sink->pin.needs = {1, 0, 512, 0};
        ASSERT_EQ(S_OK, chain.graph->Connect(chain.source->pin, chain.probe->in()));
        ASSERT_EQ(S_OK, chain.graph->Connect(chain.probe->out(), second->in()));
        ASSERT_EQ(S_OK, chain.graph->Connect(second->out(), chain.sink->pin));
        EXPECT_FALSE(chain.probe->UsingDifferentAllocators());
        EXPECT_FALSE(second->UsingDifferentAllocators());
        EXPECT_EQ(chain.source->pin.PeekAllocator(), chain.sink->pin.PeekAllocator());
        ASSERT_HRESULT_SUCCEEDED(chain.graph->Run());
        const ComPtr<IMediaSample> sample = chain.Sample(1);
        EXPECT_EQ(S_OK, chain.source->pin.Deliver(sample.Get()));
        EXPECT_EQ(sample.Get(), chain.sink->pin.arrivals.at(0).sample);
        EXPECT_EQ(3, chain.sink->pin.arrivals.at(0).bytes[0]);
        chain.graph->Stop();
        chain.graph.reset();
        EXPECT_EQ(0u, second.Release());
    }
}

TEST(Allocation, NullPointersAreAnswered)
{
    Chain chain;
    CTransInPlaceInputPin& in = chain.probe->in();
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
}

} // namespace
