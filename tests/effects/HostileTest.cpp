// Frames and property sets that lie. Guard pages turn a byte too far into a crash of the test program.
#include "host/fixtures/GuardedMemory.h"
#include "host/fixtures/PushGraph.h"
#include "host/fixtures/RecordedSet.h"
#include "tests/support/LibraryTest.h"

#include <algorithm>
#include <climits>

using namespace test;
using namespace vixahost::fixtures;
using namespace vixavideofx;

namespace {

using Bytes = std::vector<std::uint8_t>;

class Hostile : public LibraryTest
{
};

TEST_F(Hostile, WithoutAValidBlockColoursStay)
{
    Bytes frame(5 * 4 * 4);
    for (std::size_t i = 0; i < frame.size(); ++i)
        frame[i] = static_cast<std::uint8_t>(i * 3);
    for (const Promise& effect : Promises()) {
        Bytes expected = frame;
        for (std::size_t i = 3; *effect.classId == CLSID_MultiplyPixel && i < expected.size(); i += 4)
            expected[i] = 0;
        PushGraph graph(Filter(*effect.classId).Get(), VideoType(5, 4));
        EXPECT_EQ(graph.Through(frame), expected) << effect.name;
    }
    RecordedSet none{11};
    PushGraph graph(Filter(CLSID_SoftenFilter, &none).Get(), VideoType(5, 4));
    EXPECT_EQ(graph.Through(frame), frame) << "a kind that is none";
}

TEST_F(Hostile, FramesWithoutPixelsOrBytesArePassedOn)
{
    RecordedSet emboss{2};
    for (const auto& [width, height] : {std::pair{5L, 0L}, {-2L, 2L}}) {
        PushGraph graph(Filter(CLSID_Emboss, &emboss).Get(), VideoType(width, height));
        EXPECT_EQ(graph.Through(Bytes(16, 90)), Bytes(16, 90));
    }
    PushGraph graph(Filter(CLSID_GammaCorrection).Get(), VideoType(2, 1));
    HandSample sample;
    sample.pointerResult = E_POINTER;
    EXPECT_EQ(graph.Send(&sample), S_OK) << "no gamma looks at no buffer";
}

// A type and a sample that claim a frame whose saved rows no memory could hold.
TEST_F(Hostile, AFrameTooWideForItsRowsPassesUnchanged)
{
    RecordedSet set{8};
    PushGraph graph(Filter(CLSID_SoftenFilter, &set).Get(), VideoType(0x10000001, 1));
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
    const auto apply = [&](REFCLSID clsid, RecordedSet& set, Bytes frame) {
        auto answer = std::exchange(set.answer, nullptr);
        const auto filter = Filter(clsid, &set);
        set.answer = answer;
        EXPECT_EQ(ParametersOf(filter)->SetPropertySet(&set), S_OK) << "whatever GetData answers";
        PushGraph graph(filter.Get(), VideoType(static_cast<LONG>(frame.size() / 12), 3));
        graph.Send(frame);
        return frame;
    };
    const Bytes frame(36, 100);

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
        const auto filter = Filter(clsid);
        const auto parameters = ParametersOf(filter);
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
        Bytes frame(8, 100);
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
    for (const Promise& effect : Promises()) {
        RecordedSet set;
        auto filter = ParametersOf(Filter(*effect.classId));
        set.answer = [&](void*, int*) {
            filter.Reset();
            EXPECT_FALSE(library.CanUnload()) << effect.name << ": gone while its own call runs";
            return S_OK;
        };
        EXPECT_EQ(filter->SetPropertySet(&set), S_OK);
        EXPECT_TRUE(library.CanUnload());
    }
}

} // namespace
