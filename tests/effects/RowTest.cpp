// Effects in a row: together they give what each gives on its own, byte for byte and call for call.
#include "host/fixtures/PushGraph.h"
#include "host/fixtures/RecordedSet.h"
#include "tests/support/LibraryTest.h"

#include <vixavideofx/IEffectChaining.h>

#include <atomic>
#include <random>
#include <set>
#include <thread>

using namespace test;
using namespace vixahost::fixtures;
using namespace vixavideofx;

namespace {

struct Work
{
    GUID effect;
    std::vector<std::int32_t> block;
};

class Row : public LibraryTest
{
protected:
    std::vector<ComPtr<IBaseFilter>> Filters(const std::vector<Work>& row, bool together)
    {
        std::vector<ComPtr<IBaseFilter>> filters;
        for (const Work& work : row) {
            RecordedSet set(work.block);
            filters.push_back(Filter(work.effect, &set));
            Chain(filters.back(), together);
        }
        return filters;
    }

    static void Chain(const ComPtr<IBaseFilter>& filter, bool together)
    {
        ComPtr<IEffectChaining> chaining;
        ASSERT_EQ(filter.As(&chaining), S_OK);
        chaining->SetChaining(together);
    }
};

Work RandomWork(std::mt19937& random)
{
    const auto number = [&](int low, int high) {
        return low + static_cast<int>(random() % static_cast<unsigned>(high - low + 1));
    };
    switch (random() % 9) {
    case 0:
        return {CLSID_AddPixel, {number(-255, 255), number(-255, 255), number(-255, 255), 0}};
    case 1:
        return {CLSID_FilterColor, {number(-255, 255), number(0, 2)}};
    case 2:
        return {CLSID_InvertColor, {number(0, 7)}};
    case 3:
        return {CLSID_MultiplyPixel, {number(0, 200)}};
    case 4:
        return {CLSID_GammaCorrection, {number(45, 220)}};
    default:
        return {CLSID_Emboss, {number(1, 10)}};
    }
}

// What a host can see of one frame's way through a row.
struct Outcome
{
    HRESULT result;
    std::vector<std::uint8_t> upstream, delivered;
    int samples;
    REFERENCE_TIME start;

    bool operator==(const Outcome&) const = default;
};

Outcome Send(PushGraph& graph, std::vector<std::uint8_t> frame, const std::function<void(HandSample&)>& set)
{
    HandSample sample(frame);
    set(sample);
    const HRESULT result = graph.Send(&sample);
    return {result, frame, graph.Seen().content, graph.Seen().samples, graph.Seen().start};
}

TEST_F(Row, GivesWhatEachGivesAlone)
{
    std::mt19937 random(1);
    for (int round = 0; round < 60; ++round) {
        std::vector<Work> row(1 + random() % 5);
        for (Work& work : row)
            work = RandomWork(random);
        const LONG width = 1 + static_cast<LONG>(random() % 90), height = 1 + static_cast<LONG>(random() % 60);
        const auto allocator = round % 3 ? PushGraph::Allocator::Shared : PushGraph::Allocator::ReadOnly;
        PushGraph together(Filters(row, true), VideoType(width, height), allocator);
        PushGraph alone(Filters(row, false), VideoType(width, height), allocator);
        // The third frame brings a new size with it, the fourth is shorter than its buffer.
        const CMediaType smaller = VideoType((width + 1) / 2, -height);
        for (int frame = 0; frame < 5; ++frame) {
            std::vector<std::uint8_t> bytes(static_cast<std::size_t>(width * height * 4));
            for (auto& byte : bytes)
                byte = static_cast<std::uint8_t>(random());
            const auto set = [&](HandSample& sample) {
                sample.start = frame;
                if (frame == 2)
                    sample.type = &smaller;
                if (frame == 3)
                    sample.length -= sample.length / 3;
            };
            ASSERT_EQ(Send(together, bytes, set), Send(alone, bytes, set)) << "round " << round << ", frame " << frame;
        }
        EXPECT_EQ(together.Seen().samples, 5);
    }
}

// Who looks at the frame on its way sees whether the work was put off.
TEST_F(Row, PutsWorkOffUntilTheLastEffectHasTheFrame)
{
    const std::vector<Work> row = {
        {CLSID_AddPixel, {1, 1, 1, 0}}, {CLSID_AddPixel, {10, 10, 10, 0}}, {CLSID_AddPixel, {100, 100, 100, 0}}};
    const auto filters = Filters(row, true);
    PushGraph graph(filters, VideoType(16, 16));
    const auto seen = [&] {
        std::set<int> values;
        std::vector<std::uint8_t> frame(16 * 16 * 4, 7);
        Send(graph, frame,
             [&](HandSample& sample) { sample.onPointer = [&values, &sample] { values.insert(*sample.bytes); }; });
        return values;
    };
    EXPECT_EQ(seen(), (std::set{7, 118}));
    Chain(filters[1], false);
    EXPECT_EQ(seen(), (std::set{7, 8, 18, 118}));
    Chain(filters[1], true);
    Chain(filters[2], false);
    EXPECT_EQ(seen(), (std::set{7, 18, 118}));
}

// A frame that an effect in the middle can't get hold of has been changed by those before it, and goes no further.
TEST_F(Row, AFailureInTheMiddleLeavesTheWorkBeforeItDone)
{
    const std::vector<Work> row = {{CLSID_AddPixel, {1, 1, 1, 0}},
                                   {CLSID_SoftenFilter, {8}},
                                   {CLSID_GammaCorrection, {50}},
                                   {CLSID_InvertColor, {7}}};
    // Any call may be the one that fails.
    for (int good = 0; good < 12; ++good) {
        Outcome outcomes[2];
        for (const bool together : {false, true}) {
            PushGraph graph(Filters(row, together), VideoType(16, 16));
            int calls = 0;
            outcomes[together] = Send(graph, std::vector<std::uint8_t>(16 * 16 * 4, 90), [&](HandSample& sample) {
                sample.onPointer = [&sample, &calls, good] {
                    if (++calls > good)
                        sample.pointerResult = E_FAIL;
                };
            });
        }
        EXPECT_EQ(outcomes[0], outcomes[1]) << good;
    }
}

TEST_F(Row, AFrameNeverSeesAMixture)
{
    const std::vector<Work> row = {{CLSID_AddPixel, {10, 10, 10, 0}}, {CLSID_AddPixel, {3, 3, 3, 0}}};
    const auto filters = Filters(row, true);
    PushGraph graph(filters, VideoType(64, 64));
    graph.Seen().keepsContent = false;
    std::atomic<bool> done = false;
    std::thread changer([&] {
        ComPtr<IEffectFilter> first;
        filters[0].As(&first);
        RecordedSet sets[] = {{10, 10, 10, 0}, {100, 100, 100, 0}};
        for (std::size_t i = 0; !done; ++i) {
            first->SetPropertySet(&sets[i % 2]);
            Chain(filters[1], i % 3 != 0);
        }
    });
    for (int i = 0; i < 3000; ++i) {
        std::vector<std::uint8_t> frame(64 * 64 * 4, 100);
        graph.Send(frame);
        ASSERT_TRUE(frame[0] == 113 || frame[0] == 203) << int{frame[0]};
        for (std::size_t at = 0; at < frame.size(); ++at)
            ASSERT_EQ(frame[at], at % 4 == 3 ? 100 : frame[0]) << "frame " << i << ", byte " << at;
    }
    done = true;
    changer.join();
}

} // namespace
