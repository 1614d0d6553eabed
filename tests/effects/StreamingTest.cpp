// Effects while the film runs: in place, with parameters that change, and without growing.
#include "host/fixtures/PushGraph.h"
#include "host/fixtures/RecordedSet.h"
#include "tests/support/Library.h"

#include "effects/kernels/Kernels.h"

#include <vixavideofx/IEffectInfo.h>
#include <vixavideofx/IInstructionCeiling.h>

#include <psapi.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <thread>

using namespace test;
using namespace vixahost::fixtures;
using namespace vixavideofx;

namespace {

class Streaming : public LibraryTest
{
protected:
    static void SetUpTestSuite() { CoInitializeEx(nullptr, COINIT_MULTITHREADED); }
    static void TearDownTestSuite() { CoUninitialize(); }
};

TEST_F(Streaming, TheSampleThatCameInGoesOut)
{
    for (const auto& effect : effects) {
        PushGraph graph(library.Create(effect.clsid).Get(), VideoType(16, 16));
        std::vector<std::uint8_t> frame(16 * 16 * 4);
        HandSample sample(frame);
        sample.start = 123;
        sample.end = 456;
        EXPECT_EQ(graph.Send(&sample), S_OK);
        EXPECT_EQ(graph.Seen().last, &sample) << effect.name;
        EXPECT_EQ(sample.changes, 0);
    }
}

TEST_F(Streaming, AReadOnlySourceCostsOneCopy)
{
    for (const auto& effect : effects) {
        PushGraph graph(library.Create(effect.clsid).Get(), VideoType(16, 16), PushGraph::Allocator::ReadOnly);
        const std::vector<std::uint8_t> original(16 * 16 * 4, 100);
        // More frames than the output's allocator has buffers: a copy that is not given back would end the stream.
        for (int i = 1; i <= 10; ++i) {
            auto frame = original;
            HandSample sample(frame);
            EXPECT_EQ(graph.Send(&sample), S_OK);
            EXPECT_NE(graph.Seen().last, &sample) << effect.name;
            EXPECT_EQ(frame, original) << "the source's own bytes were changed";
            EXPECT_EQ(graph.Seen().samples, i);
            EXPECT_EQ(graph.Seen().content.size(), original.size());
            EXPECT_EQ(sample.changes, 0);
        }
    }
}

// One thread sends frames while another changes the parameters: every frame must be the work of one block, whole.
TEST_F(Streaming, AFrameNeverSeesAMixture)
{
    const auto filter = library.Create(CLSID_AddPixel);
    ComPtr<IEffectFilter> parameters;
    filter.As(&parameters);
    RecordedSet first{10, 10, 10, 10};
    parameters->SetPropertySet(&first);
    PushGraph graph(filter.Get(), VideoType(32, 2));
    graph.Seen().keepsContent = false;

    std::atomic<bool> done = false;
    std::thread changer([&] {
        RecordedSet sets[] = {{10, 10, 10, 10}, {-90, -90, -90, -90}, {100, 100, 100, 100}};
        for (std::size_t i = 0; !done; ++i)
            parameters->SetPropertySet(&sets[i % 3]);
    });
    for (int i = 0; i < 10000; ++i) {
        std::vector<std::uint8_t> frame(32 * 2 * 4, 100);
        graph.Send(frame);
        const auto value = frame[0];
        ASSERT_TRUE(value == 110 || value == 10 || value == 200) << int{value};
        for (std::size_t at = 0; at < frame.size(); ++at)
            ASSERT_EQ(frame[at], at % 4 == 3 ? 100 : value) << "frame " << i << ", byte " << at;
    }
    done = true;
    changer.join();
}

// The same for a convolution, whose kernel, divisor and offset belong together, while the frame size stays.
TEST_F(Streaming, AConvolutionNeverSeesAMixture)
{
    const auto filter = library.Create(CLSID_Emboss);
    ComPtr<IEffectFilter> parameters;
    filter.As(&parameters);
    RecordedSet first{2};
    parameters->SetPropertySet(&first);
    PushGraph graph(filter.Get(), VideoType(8, 8));
    graph.Seen().keepsContent = false;

    std::atomic<bool> done = false;
    std::thread changer([&] {
        RecordedSet sets[] = {{2}, {8}, {6}};
        for (std::size_t i = 0; !done; ++i)
            parameters->SetPropertySet(&sets[i % 3]);
    });
    for (int i = 0; i < 10000; ++i) {
        std::vector<std::uint8_t> frame(8 * 8 * 4, 50);
        graph.Send(frame);
        const auto value = frame[9 * 4];
        ASSERT_TRUE(value == 128 || value == 50 || value == 0) << int{value};
        ASSERT_TRUE(std::all_of(frame.begin() + 36, frame.begin() + 36 + 24, [&](auto byte) { return byte == value; }));
    }
    done = true;
    changer.join();
}

// SetPropertySet waits for a copy, not for a frame: a frame that is held up inside the sink must not hold it up.
TEST_F(Streaming, ParametersDoNotWaitForAFrame)
{
    const auto filter = library.Create(CLSID_AddPixel);
    ComPtr<IEffectFilter> parameters;
    filter.As(&parameters);
    RecordedSet set{1, 1, 1, 0};
    // GetData runs while no lock of the effect is held: a frame may pass meanwhile, on this very thread.
    PushGraph graph(filter.Get(), VideoType(4, 2));
    std::vector<std::uint8_t> frame(32, 100);
    set.answer = [&](void* buffer, int* size) {
        graph.Send(frame);
        std::memcpy(buffer, set.Block().data(), 4 * sizeof(std::int32_t));
        *size = 4 * sizeof(std::int32_t);
        return S_OK;
    };
    EXPECT_EQ(parameters->SetPropertySet(&set), S_OK);
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
    const auto filter = library.Create(CLSID_SoftenFilter);
    ComPtr<IEffectFilter> parameters;
    filter.As(&parameters);
    PushGraph graph(filter.Get(), VideoType(160, 120));
    graph.Seen().keepsContent = false;
    std::vector<std::uint8_t> frame(160 * 120 * 4, 100);
    SIZE_T before = 0;
    for (int i = 0; i < 10100; ++i) {
        if (i == 100)
            before = privateBytes();
        RecordedSet set{i % 12};
        parameters->SetPropertySet(&set);
        graph.Send(frame);
    }
    const auto after = privateBytes();
    EXPECT_LE(after, before + 256 * 1024) << "grew by " << (after - before) << " bytes";
}

// What leaves the graph is the kernels' own result, whatever the size.
TEST_F(Streaming, EqualsTheKernels)
{
    namespace kernels = vixa::kernels;
    const auto& scalar = kernels::KernelsOf(kernels::Level::Scalar);
    unsigned seed = 1;
    for (const auto& [width, height] : {std::pair{3L, 3L}, {17L, 5L}, {131L, 33L}, {320L, 240L}}) {
        std::vector<std::uint8_t> original(static_cast<std::size_t>(width * height) * 4);
        for (auto& byte : original)
            byte = static_cast<std::uint8_t>((seed = seed * 1664525 + 1013904223) >> 24);
        for (int kind = 1; kind <= 10; ++kind) {
            auto expected = original, frame = original;
            kernels::ConvolutionParameters convolution;
            convolution.SetKind(kind);
            std::vector<std::uint8_t> scratch(kernels::ConvolutionScratchBytes(width));
            scalar.convolve(expected, width, height, convolution, scratch);

            const auto filter = library.Create(CLSID_Emboss);
            ComPtr<IEffectFilter> parameters;
            filter.As(&parameters);
            RecordedSet set{kind};
            parameters->SetPropertySet(&set);
            PushGraph graph(filter.Get(), VideoType(width, height));
            graph.Send(frame);
            EXPECT_TRUE(frame == expected) << "kind " << kind << ", " << width << " x " << height;
        }
    }
}

// A host may lower the instruction set of a running effect, for comparison; the picture stays.
TEST_F(Streaming, EveryInstructionSetGivesTheSamePicture)
{
    for (const auto& effect : effects) {
        const auto filter = library.Create(effect.clsid);
        ComPtr<IInstructionCeiling> ceiling;
        ASSERT_EQ(filter.As(&ceiling), S_OK);
        ComPtr<IEffectInfo> info;
        ASSERT_EQ(library.Factory(effect.clsid).As(&info), S_OK);
        RecordedSet set;
        info->SetDefaults(&set);
        info.Reset();
        ComPtr<IEffectFilter> parameters;
        filter.As(&parameters);
        parameters->SetPropertySet(&set);

        ULONG best = 99, now = 99;
        ASSERT_EQ(ceiling->GetLevel(&best), S_OK);
        EXPECT_GE(best, IInstructionCeiling::Sse2);
        EXPECT_EQ(ceiling->GetLevel(nullptr), E_POINTER);
        EXPECT_EQ(ceiling->SetCeiling(4), E_INVALIDARG);

        PushGraph graph(filter.Get(), VideoType(67, 21));
        std::vector<std::uint8_t> original(67 * 21 * 4);
        unsigned seed = 7;
        for (auto& byte : original)
            byte = static_cast<std::uint8_t>((seed = seed * 1664525 + 1013904223) >> 24);
        auto expected = original;
        graph.Send(expected);
        for (ULONG level = 0; level <= IInstructionCeiling::Avx512; ++level) {
            ASSERT_EQ(ceiling->SetCeiling(level), S_OK);
            ceiling->GetLevel(&now);
            EXPECT_EQ(now, std::min(level, best));
            auto frame = original;
            graph.Send(frame);
            EXPECT_TRUE(frame == expected) << effect.name << " at level " << level;
        }
    }
}

} // namespace
