// Frames and property sets that lie. Guard pages turn a byte too far into a crash of the test program.
#include "tests/support/EffectGraph.h"
#include "tests/support/GuardedBytes.h"
#include "tests/support/Library.h"
#include "tests/support/TestPropertySet.h"

#include <algorithm>
#include <climits>

using namespace test;
using namespace vixavideofx;

namespace {

class Hostile : public LibraryTest
{
protected:
    static void SetUpTestSuite() { CoInitializeEx(nullptr, COINIT_MULTITHREADED); }
    static void TearDownTestSuite() { CoUninitialize(); }

    // A block that makes each effect do something.
    static TestPropertySet Working(std::size_t effect)
    {
        switch (effect) {
        case 0:
            return TestPropertySet{40, -30, 20, 0};
        case 1:
            return TestPropertySet{40, 0};
        case 2:
            return TestPropertySet{7};
        case 3:
        case 4:
            return TestPropertySet{150};
        default:
            return TestPropertySet{static_cast<std::int32_t>(effect) - 4};
        }
    }

    ComPtr<IBaseFilter> Create(std::size_t effect, IDataPropertySet* set)
    {
        const auto filter = library.Create(effects[effect].clsid);
        ComPtr<IEffectFilter> parameters;
        filter.As(&parameters);
        EXPECT_EQ(parameters->SetPropertySet(set), S_OK);
        return filter;
    }
};

TEST_F(Hostile, NothingOutsideTheFrameIsTouched)
{
    for (std::size_t effect = 0; effect < effects.size(); ++effect) {
        auto set = Working(effect);
        const auto filter = Create(effect, &set);
        for (const auto& [width, height] : {std::pair{37L, 11L}, {1L, 1L}, {3L, 3L}, {64L, 4L}, {5L, -7L}}) {
            EffectGraph graph(filter.Get(), VideoType(width, height));
            ASSERT_EQ(graph.connected, S_OK);
            for (const auto guard : {GuardedBytes::Guard::Before, GuardedBytes::Guard::Behind}) {
                GuardedBytes frame(static_cast<std::size_t>(width * std::abs(height)) * 4, guard);
                std::ranges::fill(frame.Bytes(), std::uint8_t{100});
                EXPECT_EQ(graph.Send(frame.Bytes()), S_OK) << effects[effect].name;
            }
        }
    }
}

TEST_F(Hostile, LyingLengths)
{
    for (std::size_t effect = 0; effect < effects.size(); ++effect) {
        auto set = Working(effect);
        const auto filter = Create(effect, &set);
        EffectGraph graph(filter.Get(), VideoType(16, 16));
        ASSERT_EQ(graph.connected, S_OK);
        graph.sink->pin->keep = false;
        GuardedBytes frame(16 * 16 * 4, GuardedBytes::Guard::Behind);
        for (const long length :
             {0L, -1L, -8L, static_cast<long>(INT_MIN), 1L, 7L, 1025L, static_cast<long>(INT_MAX)}) {
            std::ranges::fill(frame.Bytes(), std::uint8_t{100});
            TestSample sample(frame.Bytes());
            sample.length = length;
            EXPECT_EQ(graph.Send(&sample), S_OK) << effects[effect].name << ", length " << length;
            if (length <= 1 && effect < 5) {
                EXPECT_TRUE(std::ranges::all_of(frame.Bytes(), [](auto byte) { return byte == 100; })) << length;
            }
        }
        // A buffer shorter than the frame that the type promised.
        GuardedBytes part(16 * 16 * 4 - 1, GuardedBytes::Guard::Behind);
        std::ranges::fill(part.Bytes(), std::uint8_t{100});
        EXPECT_EQ(graph.Send(part.Bytes()), S_OK);
        if (effect >= 5) {
            EXPECT_TRUE(std::ranges::all_of(part.Bytes(), [](auto byte) { return byte == 100; }))
                << effects[effect].name;
        }
    }
}

TEST_F(Hostile, ImpossibleFrameSizes)
{
    const std::pair<LONG, LONG> sizes[] = {{0, 0},           {INT_MIN, INT_MIN}, {INT_MAX, INT_MAX}, {INT_MAX, INT_MIN},
                                           {1, INT_MIN},     {INT_MIN, 1},       {65536, 65536},     {0x40000001, 4},
                                           {0x10000, 0x4000}};
    for (const std::size_t effect : {std::size_t{5}, std::size_t{11}, std::size_t{12}}) {
        auto set = Working(effect);
        const auto filter = Create(effect, &set);
        for (const auto& [width, height] : sizes) {
            EffectGraph graph(filter.Get(), VideoType(width, height));
            ASSERT_EQ(graph.connected, S_OK) << width << " x " << height;
            GuardedBytes frame(256, GuardedBytes::Guard::Behind);
            std::ranges::fill(frame.Bytes(), std::uint8_t{100});
            EXPECT_EQ(graph.Send(frame.Bytes()), S_OK);
            EXPECT_TRUE(std::ranges::all_of(frame.Bytes(), [](auto byte) { return byte == 100; }))
                << width << " x " << height;
        }
    }
}

TEST_F(Hostile, SamplesWithoutABuffer)
{
    for (std::size_t effect = 0; effect < effects.size(); ++effect) {
        auto set = Working(effect);
        const auto filter = Create(effect, &set);
        EffectGraph graph(filter.Get(), VideoType(4, 4));
        TestSample failing, null;
        failing.pointerResult = E_UNEXPECTED;
        null.size = null.length = 64;
        graph.sink->pin->keep = false;
        const HRESULT expected = effects[effect].clsid == CLSID_GammaCorrection ? E_FAIL : S_OK;
        EXPECT_EQ(graph.Send(&failing), expected) << effects[effect].name;
        EXPECT_EQ(graph.Send(&null), expected) << effects[effect].name;
    }
}

TEST_F(Hostile, PropertySets)
{
    for (std::size_t effect = 0; effect < effects.size(); ++effect) {
        auto set = Working(effect);
        const auto filter = Create(effect, &set);
        ComPtr<IEffectFilter> parameters;
        filter.As(&parameters);
        EXPECT_EQ(parameters->SetPropertySet(nullptr), S_OK);

        EffectGraph graph(filter.Get(), VideoType(8, 8));
        const std::vector<std::uint8_t> original(8 * 8 * 4, 100);
        auto expected = original;
        graph.Send(expected);

        // Far more data than the effect has fields, with an honest size, an absurd one, and none.
        for (const int claimed : {1 << 16, INT_MAX, -1, 0}) {
            set.answer = [&](void* buffer, int* size) {
                EXPECT_EQ(*size, 0) << "the size starts at 0";
                std::memset(buffer, 0xEE, 1 << 16);
                std::memcpy(buffer, set.block.data(), set.block.size());
                *size = claimed;
                return S_OK;
            };
            EXPECT_EQ(parameters->SetPropertySet(&set), S_OK);
            auto frame = original;
            graph.Send(frame);
            EXPECT_EQ(frame, expected) << effects[effect].name << ", claimed " << claimed;
        }
    }
}

TEST_F(Hostile, FailedAndPartialReads)
{
    const auto apply = [&](REFCLSID clsid, TestPropertySet& set, std::vector<std::uint8_t> frame) {
        const auto filter = library.Create(clsid);
        ComPtr<IEffectFilter> parameters;
        filter.As(&parameters);
        auto answer = std::exchange(set.answer, nullptr);
        EXPECT_EQ(parameters->SetPropertySet(&set), S_OK);
        set.answer = answer;
        EXPECT_EQ(parameters->SetPropertySet(&set), S_OK) << "whatever GetData answers";
        EffectGraph graph(filter.Get(), VideoType(static_cast<LONG>(frame.size() / 12), 3));
        graph.Send(frame);
        return frame;
    };
    const std::vector<std::uint8_t> frame(36, 100);
    using Bytes = std::vector<std::uint8_t>;

    // A failed read that writes nothing keeps what was there.
    TestPropertySet add{10, 20, 30, 0};
    add.answer = [](void*, int*) { return E_FAIL; };
    const auto kept = apply(CLSID_AddPixel, add, frame);
    EXPECT_EQ(Bytes(kept.begin(), kept.begin() + 4), (Bytes{130, 120, 110, 100}));
    // What a failing read wrote has landed: here the red offset alone.
    add.answer = [](void* buffer, int*) {
        *static_cast<std::int32_t*>(buffer) = 50;
        return E_FAIL;
    };
    const auto landed = apply(CLSID_AddPixel, add, frame);
    EXPECT_EQ(Bytes(landed.begin(), landed.begin() + 4), (Bytes{130, 120, 150, 100}));

    // "Filter color" takes the sign only from a read that succeeded with at least one byte.
    TestPropertySet colour{-40, 0};
    colour.answer = [](void* buffer, int*) {
        *static_cast<std::int32_t*>(buffer) = 60;
        return S_OK; // size stays 0
    };
    EXPECT_EQ(apply(CLSID_FilterColor, colour, frame)[0], 40) << "still darkens, by the new amount";
    colour.answer = [](void* buffer, int* size) {
        *static_cast<std::int32_t*>(buffer) = 60;
        *size = 1;
        return S_OK;
    };
    EXPECT_EQ(apply(CLSID_FilterColor, colour, frame)[0], 160);

    // A convolution whose kind can't be read, or is none, keeps its kernel but neither divides nor offsets.
    TestPropertySet soften{8};
    soften.answer = [](void*, int*) { return E_FAIL; };
    EXPECT_EQ(apply(CLSID_SoftenFilter, soften, Bytes(36, 1))[16], 99);
    soften.answer = [](void* buffer, int*) {
        *static_cast<std::int32_t*>(buffer) = 11;
        return S_OK;
    };
    EXPECT_EQ(apply(CLSID_SoftenFilter, soften, Bytes(36, 2))[16], 198);
    TestPropertySet emboss{2};
    emboss.answer = [](void*, int*) { return E_FAIL; };
    EXPECT_EQ(apply(CLSID_Emboss, emboss, frame)[16], 0) << "no offset any more";
}

// A read that fails or gives less while another one completes must not bring back what it found at its start. Here the
// other one runs inside GetData; on another thread it would be the same.
TEST_F(Hostile, AReadTakesBackNothingThatCameMeanwhile)
{
    const auto outcome = [&](REFCLSID clsid, TestPropertySet meanwhile, HRESULT answer, std::int32_t written) {
        const auto filter = library.Create(clsid);
        ComPtr<IEffectFilter> parameters;
        filter.As(&parameters);
        TestPropertySet slow;
        slow.answer = [&](void* buffer, int* size) {
            EXPECT_EQ(parameters->SetPropertySet(&meanwhile), S_OK);
            if (SUCCEEDED(answer)) {
                *static_cast<std::int32_t*>(buffer) = written;
                *size = sizeof written;
            }
            return answer;
        };
        EXPECT_EQ(parameters->SetPropertySet(&slow), S_OK);
        EffectGraph graph(filter.Get(), VideoType(2, 1));
        std::vector<std::uint8_t> frame(8, 100);
        graph.Send(frame);
        return std::vector<int>(frame.begin(), frame.begin() + 3);
    };
    EXPECT_EQ(outcome(CLSID_AddPixel, {10, 20, 30, 0}, E_FAIL, 0), (std::vector{130, 120, 110}));
    EXPECT_EQ(outcome(CLSID_AddPixel, {10, 20, 30, 0}, S_OK, 50), (std::vector{130, 120, 150}))
        << "red alone was given";
    EXPECT_EQ(outcome(CLSID_FilterColor, {-40, 0}, E_FAIL, 0), (std::vector{60, 100, 100}));
    EXPECT_EQ(outcome(CLSID_FilterColor, {-40, 0}, S_OK, 50), (std::vector{150, 100, 100}))
        << "of blue, as set meanwhile";
    EXPECT_EQ(outcome(CLSID_GammaCorrection, {200}, E_FAIL, 0), (std::vector{160, 160, 160}));
}

TEST_F(Hostile, AHostMayLetGoOfTheFilterInsideGetData)
{
    for (std::size_t effect = 0; effect < 6; ++effect) {
        auto set = Working(effect);
        ComPtr<IEffectFilter> filter = library.Create<IEffectFilter>(effects[effect].clsid);
        set.answer = [&](void*, int*) {
            filter.Reset();
            EXPECT_EQ(library.canUnloadNow(), S_FALSE) << "gone while its own call runs";
            return S_OK;
        };
        EXPECT_EQ(filter->SetPropertySet(&set), S_OK);
        EXPECT_EQ(library.canUnloadNow(), S_OK);
    }
}

// A caller that keeps the stack aligned to 4 bytes only: a spilled vector register would fault.
__attribute__((noinline)) HRESULT SendMisaligned(IMemInputPin* pin, IMediaSample* sample, unsigned offset)
{
    HRESULT result;
    __asm__ volatile("movl %%esp, %%esi\n\t"
                     "andl $-64, %%esp\n\t"
                     "subl %[offset], %%esp\n\t"
                     "pushl %[sample]\n\t"
                     "pushl %[pin]\n\t"
                     "call *%[receive]\n\t"
                     "movl %%esi, %%esp\n\t"
                     : "=&a"(result)
                     : [pin] "b"(pin), [sample] "D"(sample), [offset] "c"(offset),
                       [receive] "d"((*reinterpret_cast<void***>(pin))[6])
                     : "esi", "memory", "cc");
    return result;
}

TEST_F(Hostile, MisalignedStack)
{
    for (std::size_t effect = 0; effect < effects.size(); ++effect) {
        auto set = Working(effect);
        const auto filter = Create(effect, &set);
        EffectGraph graph(filter.Get(), VideoType(67, 9));
        std::vector<std::uint8_t> reference(67 * 9 * 4, 100);
        graph.Send(reference);
        for (unsigned offset = 0; offset < 64; offset += 4) {
            std::vector<std::uint8_t> frame(67 * 9 * 4, 100);
            TestSample sample(frame);
            ASSERT_EQ(SendMisaligned(graph.memory.Get(), &sample, offset), S_OK) << effects[effect].name << offset;
            EXPECT_EQ(frame, reference);
        }
    }
}

} // namespace
