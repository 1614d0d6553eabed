// Frames and property sets that lie. Guard pages turn a byte too far into a crash of the test program.
#include "host/fixtures/GuardedMemory.h"
#include "host/fixtures/PushGraph.h"
#include "host/fixtures/RecordedSet.h"
#include "tests/support/Library.h"

#include <algorithm>
#include <climits>

using namespace test;
using namespace vixahost::fixtures;
using namespace vixavideofx;

namespace {

class Hostile : public LibraryTest
{
protected:
    static void SetUpTestSuite() { CoInitializeEx(nullptr, COINIT_MULTITHREADED); }
    static void TearDownTestSuite() { CoUninitialize(); }

    // A block that makes each effect do something.
    static RecordedSet Working(std::size_t effect)
    {
        switch (effect) {
        case 0:
            return RecordedSet{40, -30, 20, 0};
        case 1:
            return RecordedSet{40, 0};
        case 2:
            return RecordedSet{7};
        case 3:
        case 4:
            return RecordedSet{150};
        default:
            return RecordedSet{static_cast<std::int32_t>(effect) - 4};
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

// A type and a sample that claim a frame whose saved rows no memory could hold.
TEST_F(Hostile, AFrameTooWideForItsRowsPassesUnchanged)
{
    auto set = Working(12);
    const auto filter = Create(12, &set);
    PushGraph graph(filter.Get(), VideoType(0x10000001, 1));
    graph.Seen().keepsContent = false;
    GuardedMemory frame(256, GuardedMemory::Guard::Behind);
    std::ranges::fill(frame.Bytes(), std::uint8_t{100});
    HandSample sample(frame.Bytes());
    sample.size = LONG_MAX;
    EXPECT_EQ(graph.Send(&sample), S_OK);
    EXPECT_EQ(graph.Seen().samples, 1);
    EXPECT_TRUE(std::ranges::all_of(frame.Bytes(), [](auto byte) { return byte == 100; }));
}

TEST_F(Hostile, FailedAndPartialReads)
{
    const auto apply = [&](REFCLSID clsid, RecordedSet& set, std::vector<std::uint8_t> frame) {
        const auto filter = library.Create(clsid);
        ComPtr<IEffectFilter> parameters;
        filter.As(&parameters);
        auto answer = std::exchange(set.answer, nullptr);
        EXPECT_EQ(parameters->SetPropertySet(&set), S_OK);
        set.answer = answer;
        EXPECT_EQ(parameters->SetPropertySet(&set), S_OK) << "whatever GetData answers";
        PushGraph graph(filter.Get(), VideoType(static_cast<LONG>(frame.size() / 12), 3));
        graph.Send(frame);
        return frame;
    };
    const std::vector<std::uint8_t> frame(36, 100);
    using Bytes = std::vector<std::uint8_t>;

    // A failed read that writes nothing keeps what was there.
    RecordedSet add{10, 20, 30, 0};
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
    RecordedSet colour{-40, 0};
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
    RecordedSet soften{8};
    soften.answer = [](void*, int*) { return E_FAIL; };
    EXPECT_EQ(apply(CLSID_SoftenFilter, soften, Bytes(36, 1))[16], 99);
    soften.answer = [](void* buffer, int*) {
        *static_cast<std::int32_t*>(buffer) = 11;
        return S_OK;
    };
    EXPECT_EQ(apply(CLSID_SoftenFilter, soften, Bytes(36, 2))[16], 198);
    RecordedSet emboss{2};
    emboss.answer = [](void*, int*) { return E_FAIL; };
    EXPECT_EQ(apply(CLSID_Emboss, emboss, frame)[16], 0) << "no offset any more";
}

// A read that fails or gives less while another one completes must not bring back what it found at its start. Here the
// other one runs inside GetData; on another thread it would be the same.
TEST_F(Hostile, AReadTakesBackNothingThatCameMeanwhile)
{
    const auto outcome = [&](REFCLSID clsid, RecordedSet meanwhile, HRESULT answer, std::int32_t written) {
        const auto filter = library.Create(clsid);
        ComPtr<IEffectFilter> parameters;
        filter.As(&parameters);
        RecordedSet slow;
        slow.answer = [&](void* buffer, int* size) {
            EXPECT_EQ(parameters->SetPropertySet(&meanwhile), S_OK);
            if (SUCCEEDED(answer)) {
                *static_cast<std::int32_t*>(buffer) = written;
                *size = sizeof written;
            }
            return answer;
        };
        EXPECT_EQ(parameters->SetPropertySet(&slow), S_OK);
        PushGraph graph(filter.Get(), VideoType(2, 1));
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

} // namespace
