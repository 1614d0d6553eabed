// Filters in a row that put their work off: in which order it is done, and that none is forgotten.
#include "tests/framework/TestFilters.h"

#include <gtest/gtest.h>

#include <array>

using namespace test;

namespace {

// Writes its letter into a log: a capital where it works on its own.
class Worker : public Probe, private vixa::BatchWorker
{
public:
    Worker(char small, std::string& work) : letter(small), log(work), own(work)
    {
        batchWorker = this;
        transform = [this](IMediaSample*) {
            log += static_cast<char>(letter - 'a' + 'A');
            return result;
        };
    }

    bool putsOff = true;
    HRESULT result = S_OK; // of the work on its own

private:
    struct Work final : vixa::Batch
    {
        explicit Work(std::string& where) : log(where) {}
        void Finish() noexcept override { log += std::exchange(pending, {}); }

        std::string& log;
        std::string pending;
    };

    bool TakesBatches() const noexcept override { return true; }
    vixa::Batch* OwnBatch() noexcept override { return &own; }
    bool PutOff(IMediaSample*, vixa::Batch& batch) noexcept override
    {
        if (putsOff)
            static_cast<Work&>(batch).pending += letter;
        return putsOff;
    }

    const char letter;
    std::string& log;
    Work own;
};

// A host's own pin before another one: it sees the samples, everything else is the other's.
class PinBefore final : public IPin, public IMemInputPin
{
public:
    explicit PinBefore(CTransInPlaceInputPin& behind) : pin(behind), memory(behind) {}

    int samples = 0;
    int references = 0;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) noexcept override
    {
        if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IPin))
            *object = static_cast<IPin*>(this);
        else if (IsEqualIID(riid, IID_IMemInputPin))
            *object = static_cast<IMemInputPin*>(this);
        else
            return pin.QueryInterface(riid, object);
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return static_cast<ULONG>(++references); }
    ULONG STDMETHODCALLTYPE Release() noexcept override { return static_cast<ULONG>(--references); }

    HRESULT STDMETHODCALLTYPE Connect(IPin* to, const AM_MEDIA_TYPE* type) noexcept override
    {
        return pin.Connect(to, type);
    }
    HRESULT STDMETHODCALLTYPE ReceiveConnection(IPin* from, const AM_MEDIA_TYPE* type) noexcept override
    {
        return pin.ReceiveConnection(from, type);
    }
    HRESULT STDMETHODCALLTYPE Disconnect() noexcept override { return pin.Disconnect(); }
    HRESULT STDMETHODCALLTYPE ConnectedTo(IPin** peer) noexcept override { return pin.ConnectedTo(peer); }
    HRESULT STDMETHODCALLTYPE ConnectionMediaType(AM_MEDIA_TYPE* type) noexcept override
    {
        return pin.ConnectionMediaType(type);
    }
    HRESULT STDMETHODCALLTYPE QueryPinInfo(PIN_INFO* info) noexcept override { return pin.QueryPinInfo(info); }
    HRESULT STDMETHODCALLTYPE QueryDirection(PIN_DIRECTION* direction) noexcept override
    {
        return pin.QueryDirection(direction);
    }
    HRESULT STDMETHODCALLTYPE QueryId(LPWSTR* id) noexcept override { return pin.QueryId(id); }
    HRESULT STDMETHODCALLTYPE QueryAccept(const AM_MEDIA_TYPE* type) noexcept override { return pin.QueryAccept(type); }
    HRESULT STDMETHODCALLTYPE EnumMediaTypes(IEnumMediaTypes** types) noexcept override
    {
        return pin.EnumMediaTypes(types);
    }
    HRESULT STDMETHODCALLTYPE QueryInternalConnections(IPin** pins, ULONG* count) noexcept override
    {
        return pin.QueryInternalConnections(pins, count);
    }
    HRESULT STDMETHODCALLTYPE EndOfStream() noexcept override { return pin.EndOfStream(); }
    HRESULT STDMETHODCALLTYPE BeginFlush() noexcept override { return pin.BeginFlush(); }
    HRESULT STDMETHODCALLTYPE EndFlush() noexcept override { return pin.EndFlush(); }
    HRESULT STDMETHODCALLTYPE NewSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate) noexcept override
    {
        return pin.NewSegment(start, stop, rate);
    }

    HRESULT STDMETHODCALLTYPE GetAllocator(IMemAllocator** allocator) noexcept override
    {
        return memory.GetAllocator(allocator);
    }
    HRESULT STDMETHODCALLTYPE NotifyAllocator(IMemAllocator* allocator, BOOL readOnly) noexcept override
    {
        return memory.NotifyAllocator(allocator, readOnly);
    }
    HRESULT STDMETHODCALLTYPE GetAllocatorRequirements(ALLOCATOR_PROPERTIES* needs) noexcept override
    {
        return memory.GetAllocatorRequirements(needs);
    }
    HRESULT STDMETHODCALLTYPE Receive(IMediaSample* sample) noexcept override
    {
        ++samples;
        return memory.Receive(sample);
    }
    HRESULT STDMETHODCALLTYPE ReceiveMultiple(IMediaSample** several, long count, long* done) noexcept override
    {
        return memory.ReceiveMultiple(several, count, done);
    }
    HRESULT STDMETHODCALLTYPE ReceiveCanBlock() noexcept override { return memory.ReceiveCanBlock(); }

private:
    IPin& pin;
    IMemInputPin& memory;
};

class Batches : public testing::Test
{
protected:
    ~Batches() override { graph.Stop(); }

    void Start()
    {
        graph.Add(&*source);
        graph.Add(&*sink);
        IPin* from = &source->pin;
        for (Worker* worker : row) {
            graph.Add(worker);
            ASSERT_EQ(S_OK, graph.Connect(*from, worker->In()));
            from = &worker->Out();
        }
        ASSERT_EQ(S_OK, graph.Connect(*from, sink->pin));
        ASSERT_HRESULT_SUCCEEDED(graph.Run());
    }
    HRESULT Push()
    {
        ComPtr<IMediaSample> sample;
        EXPECT_EQ(S_OK, source->pin.GetDeliveryBuffer(&sample, nullptr, nullptr, 0));
        log.clear();
        return source->pin.Deliver(sample.Get());
    }

    std::string log;
    Held<Source> source;
    Held<Worker> a{'a', log}, b{'b', log}, c{'c', log};
    Held<Sink> sink;
    const std::array<Worker*, 3> row = {&*a, &*b, &*c};
    Graph graph;
};

TEST_F(Batches, AreDoneInTheOrderOfTheRow)
{
    Start();
    EXPECT_EQ(S_OK, Push());
    EXPECT_EQ("abc", log);
    b->putsOff = false;
    EXPECT_EQ(S_OK, Push());
    EXPECT_EQ("aBc", log);
    a->putsOff = c->putsOff = false;
    EXPECT_EQ(S_OK, Push());
    EXPECT_EQ("ABC", log);
    EXPECT_EQ(3, sink->record.samples);
}

TEST_F(Batches, AreDoneWhenTheSampleGoesNoFurther)
{
    Start();
    b->putsOff = false;
    for (const HRESULT result : {S_FALSE, E_FAIL}) {
        b->result = result;
        EXPECT_EQ(SUCCEEDED(result) ? S_OK : result, Push());
        EXPECT_EQ("aB", log);
    }
    c->In().BeginFlush();
    b->putsOff = true;
    EXPECT_EQ(S_FALSE, Push());
    EXPECT_EQ("ab", log);
    EXPECT_EQ(0, sink->record.samples);
    c->In().EndFlush();
    EXPECT_EQ(S_OK, Push());
    EXPECT_EQ("abc", log);
}

TEST_F(Batches, AreNotHandedPastAPinThatAHostPutBetween)
{
    PinBefore between(b->In());
    Start();
    ASSERT_HRESULT_SUCCEEDED(graph.Stop());
    ASSERT_EQ(S_OK, graph->Disconnect(&a->Out()));
    ASSERT_EQ(S_OK, graph->Disconnect(&b->In()));
    ASSERT_EQ(S_OK, a->Out().Connect(&between, nullptr));
    ASSERT_HRESULT_SUCCEEDED(graph.Run());
    EXPECT_EQ(S_OK, Push());
    EXPECT_EQ("Abc", log);
    EXPECT_EQ(1, between.samples);
    EXPECT_EQ(1, sink->record.samples);
    ASSERT_HRESULT_SUCCEEDED(graph.Stop());
    EXPECT_EQ(S_OK, a->Out().Disconnect());
    EXPECT_EQ(S_OK, b->In().Disconnect());
    EXPECT_EQ(0, between.references);
}

TEST_F(Batches, AreDoneBeforeTheSampleIsCopied)
{
    source->pin.offer.allocator = Allocator::Own;
    ASSERT_EQ(S_OK, CreateMemoryAllocator(&sink->pin.offers));
    sink->record.insistsOn = sink->pin.offers.Get();
    Start();
    EXPECT_EQ(S_OK, Push());
    EXPECT_EQ("abC", log);
}

} // namespace
