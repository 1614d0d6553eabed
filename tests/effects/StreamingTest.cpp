// Effects while the film runs, with parameters that change, and without growing.
#include "host/fixtures/PixelModel.h"
#include "host/fixtures/PushGraph.h"
#include "host/fixtures/RecordedSet.h"
#include "tests/support/LibraryTest.h"

#include <vixavideofx/IInstructionCeiling.h>

#include <psapi.h>

#include <algorithm>
#include <cstring>
#include <deque>
#include <thread>

using namespace test;
using namespace vixahost::fixtures;
using namespace vixavideofx;

namespace {

using Bytes = std::vector<std::uint8_t>;

class Streaming : public LibraryTest
{
};

// One thread sends frames while another changes the parameters: every frame must be the work of one block, whole.
TEST_F(Streaming, AFrameNeverSeesAMixture)
{
    using Blocks = std::vector<std::vector<std::int32_t>>;
    for (const auto& [effect, blocks] :
         {std::pair{&CLSID_AddPixel, Blocks{{10, 10, 10, 10}, {-90, -90, -90, -90}, {100, 100, 100, 100}}},
          {&CLSID_Emboss, Blocks{{2}, {8}, {6}}}}) {
        const Bytes grey(8 * 8 * 4, 100);
        std::deque<RecordedSet> sets;
        std::vector<Bytes> wanted;
        for (const auto& block : blocks) {
            sets.emplace_back(block);
            wanted.push_back(ExpectedFrame(*effect, block, grey, 8, 8));
        }
        const auto filter = Filter(*effect, &sets[0]);
        PushGraph graph(filter.Get(), VideoType(8, 8));
        graph.Seen().keepsContent = false;
        const std::jthread changer([&](const std::stop_token& stop) {
            const auto parameters = ParametersOf(filter);
            for (std::size_t i = 0; !stop.stop_requested(); ++i)
                parameters->SetPropertySet(&sets[i % sets.size()]);
        });
        for (int i = 0; i < 10000; ++i) {
            Bytes frame = grey;
            graph.Send(frame);
            ASSERT_TRUE(std::ranges::count(wanted, frame)) << PromiseOf(*effect).name << ", frame " << i;
        }
    }
}

// GetData runs while no lock of the effect is held: a frame may pass meanwhile, on this very thread.
TEST_F(Streaming, ParametersDoNotWaitForAFrame)
{
    const auto filter = Filter(CLSID_AddPixel);
    PushGraph graph(filter.Get(), VideoType(4, 2));
    Bytes frame(32, 100);
    RecordedSet set;
    set.answer = [&](void* buffer, int* size) {
        graph.Send(frame);
        std::memset(buffer, 1, 16);
        *size = 16;
        return S_OK;
    };
    EXPECT_EQ(ParametersOf(filter)->SetPropertySet(&set), S_OK);
    EXPECT_EQ(graph.Seen().samples, 1);
    EXPECT_EQ(frame[0], 100) << "the parameters count from the next frame on";
}

TEST_F(Streaming, TenThousandFramesCostNoMemory)
{
    const auto privateBytes = [] {
        PROCESS_MEMORY_COUNTERS_EX counters{};
        counters.cb = sizeof counters;
        GetProcessMemoryInfo(GetCurrentProcess(), reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&counters),
                             sizeof counters);
        return counters.PrivateUsage;
    };
    const auto filter = Filter(CLSID_SoftenFilter);
    PushGraph graph(filter.Get(), VideoType(160, 120));
    graph.Seen().keepsContent = false;
    Bytes frame(160 * 120 * 4, 100);
    SIZE_T before = 0;
    for (int i = 0; i < 10100; ++i) {
        if (i == 100)
            before = privateBytes();
        RecordedSet set{i % 12};
        ParametersOf(filter)->SetPropertySet(&set);
        graph.Send(frame);
    }
    const auto after = privateBytes();
    EXPECT_LE(after, before + 256 * 1024) << "grew by " << (after - before) << " bytes";
}

// A host may lower the instruction set of a running effect, for comparison; the picture stays.
TEST_F(Streaming, EveryInstructionSetGivesTheSamePicture)
{
    for (const Promise& effect : Promises()) {
        RecordedSet set(effect.working);
        const auto filter = Filter(*effect.classId, &set);
        ComPtr<IInstructionCeiling> ceiling;
        ASSERT_EQ(filter.As(&ceiling), S_OK);
        ULONG best = 99, now = 99;
        ASSERT_EQ(ceiling->GetLevel(&best), S_OK);
        EXPECT_GE(best, IInstructionCeiling::Sse2);
        EXPECT_EQ(ceiling->GetLevel(nullptr), E_POINTER);
        EXPECT_EQ(ceiling->SetCeiling(4), E_INVALIDARG);

        PushGraph graph(filter.Get(), VideoType(67, 21));
        Bytes original(67 * 21 * 4);
        for (unsigned seed = 7; auto& byte : original)
            byte = static_cast<std::uint8_t>((seed = seed * 1664525 + 1013904223) >> 24);
        const Bytes expected = ExpectedFrame(*effect.classId, effect.working, original, 67, 21);
        for (ULONG level = 0; level <= IInstructionCeiling::Avx512; ++level) {
            ASSERT_EQ(ceiling->SetCeiling(level), S_OK);
            ceiling->GetLevel(&now);
            EXPECT_EQ(now, std::min(level, best));
            Bytes frame = original;
            graph.Send(frame);
            EXPECT_TRUE(frame == expected) << effect.name << " at level " << level;
        }
    }
}

} // namespace
