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
