// The host's graph: pictures in bands, and a graph that can't start.
#include "host/graph/EffectGraph.h"
#include "host/base/HostError.h"
#include "host/effects/DataPropertySet.h"
#include "host/fixtures/PixelModel.h"
#include "host/media/PictureFrames.h"
#include "tests/host/TestFiles.h"
#include "tests/support/ComTest.h"

#include <vixavideofx/ClassIds.h>
#include <vixavideofx/IEffectFilter.h>

#include <qedit.h>

#include <algorithm>

namespace vixahost {
namespace {

using namespace test;
using namespace vixavideofx;

class Graph : public ::test::ComTest
{
protected:
    effects::EffectLibrary library;
};

TEST_F(Graph, BandsGiveTheBytesOfTheWholePicture)
{
    // Neighbours of neighbours, and effects that leave an odd last pixel alone.
    const effects::EffectStack stacks[] = {{{CLSID_Emboss, "", {2}}},
                                           {{CLSID_AddPixel, "", {90, -20, 7, 0}}, {CLSID_SoftenFilter, "", {8}}},
                                           {{CLSID_SoftenFilter, "", {8}},
                                            {CLSID_InvertColor, "", {7}},
                                            {CLSID_Emboss, "", {2}},
                                            {CLSID_SoftenFilter, "", {8}}}};
    for (const auto& [width, height] : {std::pair{17, 41}, {16, 41}, {17, 40}, {3, 9}, {17, 1}})
        for (const effects::EffectStack& stack : stacks)
            for (const int rows : {1, 7, 12, 39}) {
                SCOPED_TRACE(testing::Message() << width << " x " << height << ", " << stack.size()
                                                << " effects, about " << rows << " rows a band");
                media::Picture picture = TestPicture(width, height, 5), wanted = picture;
                Bytes frame(picture.pixels.size());
                media::PictureReader(picture).Read(frame);
                for (const effects::EffectStep& step : stack)
                    frame = fixtures::ExpectedFrame(step.classId, step.block, frame, width, height);
                media::PictureWriter(wanted).Write(frame);

                media::BandedPicture bands(picture, effects::ReachOf(stack), picture.RowBytes() * std::size_t(rows));
                graph::EffectGraph(library, stack, bands, bands, bands.Format().TimeOf(1)).Run();
                EXPECT_TRUE(bands.Whole());
                EXPECT_EQ(bands.FramesAPicture() > 1, height > std::max(rows, 2 * int(stack.size()) + 2));
                EXPECT_TRUE(picture.pixels == wanted.pixels);
            }
}

TEST_F(Graph, AtEitherPaceFramesKeepTheirOrderAndFaultsAreTold)
{
    constexpr int count = 30;
    struct Ends : media::FrameReader, media::FrameWriter
    {
        media::FrameFormat Format() const override { return {8, 8, 25, 1}; }
        bool Read(std::span<std::uint8_t> frame) override
        {
            if (read == readFault)
                throw FailedJob("cut short");
            std::ranges::fill(frame, static_cast<std::uint8_t>(read));
            return read++ < count;
        }
        void Write(std::span<const std::uint8_t> frame) override
        {
            if (written == writeFault)
                throw FailedJob("full");
            inOrder &= frame[0] == 255 - written++;
        }
        int readFault = -1, writeFault = -1, read = 0, written = 0;
        bool inOrder = true;
    };
    for (const auto pace : {graph::EffectGraph::Pace::InTurn, graph::EffectGraph::Pace::Overlapping})
        for (const auto& [readFault, writeFault] : {std::pair{-1, -1}, {0, -1}, {20, -1}, {-1, 0}, {-1, count - 1}}) {
            SCOPED_TRACE(testing::Message() << readFault << ", " << writeFault << ", pace " << int(pace));
            Ends ends;
            ends.readFault = readFault;
            ends.writeFault = writeFault;
            graph::EffectGraph graph(library, {{CLSID_InvertColor, "", {7}}}, ends, ends, 1, pace);
            std::string fault;
            try {
                graph.Run();
            } catch (const FailedJob& failure) {
                fault = failure.what();
            }
            EXPECT_EQ(fault, readFault >= 0 ? "cut short" : writeFault >= 0 ? "full" : "");
            EXPECT_TRUE(ends.inOrder);
            EXPECT_EQ(ends.written, writeFault >= 0 ? writeFault : readFault >= 0 ? ends.written : count);
        }
}

TEST_F(Graph, OneThatCannotStartEndsAtOnceAndSaysWhy)
{
    if (sizeof(void*) > 4)
        GTEST_SKIP() << "every buffer that a sample can have is to be had";
    struct Nothing : media::FrameReader, media::FrameWriter
    {
        media::FrameFormat Format() const override { return {0x1FFFFFFF, 1, 25, 1}; }
        bool Read(std::span<std::uint8_t>) override { return false; }
        void Write(std::span<const std::uint8_t>) override {}
    } nothing;
    graph::EffectGraph graph(library, {{CLSID_Emboss, "", {2}}}, nothing, nothing, 1);
    try {
        graph.Run();
        ADD_FAILURE() << "it ran";
    } catch (const FailedJob& fault) {
        EXPECT_NE(
            std::string(fault.what()).find("Not enough memory for a picture of 536870911 x 1 pixels; the largest"),
            std::string::npos)
            << fault.what();
    }
}

// As a foreign host plays a compressed clip: the system finds splitter and decoder, the effect takes what they give.
TEST_F(Graph, BehindTheSystemsDecoderAnEffectWorksAndEverythingIsGivenBack)
{
    const ClipRecipe recipe = JpegRecipe(10);
    const ScratchFolder folder;
    WriteBytes(folder / L"clip.avi", MakeClip(recipe));
    constexpr CLSID sampleGrabber = {0xC1F400A0, 0x3F08, 0x11D3, {0x9F, 0x0B, 0x00, 0x60, 0x08, 0x03, 0x9E, 0x37}};
    constexpr CLSID nullRenderer = {0xC1F400A4, 0x3F08, 0x11D3, {0x9F, 0x0B, 0x00, 0x60, 0x08, 0x03, 0x9E, 0x37}};
    const effects::EffectStep step = {CLSID_InvertColor, "Invert color", {7}};
    ComPtr<IBaseFilter> effect = library.CreateFilter(step.classId, step.name);
    ComPtr<IGraphBuilder> graph;
    ASSERT_EQ(CoCreateInstance(CLSID_FilterGraph, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&graph)), S_OK);
    {
        ComPtr<IBaseFilter> source, end, nowhere;
        ComPtr<ISampleGrabber> grabber;
        ComPtr<IEffectFilter> parameters;
        ComPtr<IMediaControl> control;
        ComPtr<IMediaEvent> events;
        ComPtr<IMediaFilter> clock;
        ASSERT_EQ(CoCreateInstance(sampleGrabber, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&end)), S_OK);
        ASSERT_EQ(CoCreateInstance(nullRenderer, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&nowhere)), S_OK);
        ASSERT_EQ(end.As(&grabber) | effect.As(&parameters) | graph.As(&control) | graph.As(&clock), S_OK);
        ASSERT_EQ(graph->QueryInterface(IID_IMediaEvent, &events), S_OK);
        ASSERT_EQ(parameters->SetPropertySet(effects::DataPropertySet::Create(step.block).Get()), S_OK);
        ASSERT_EQ(grabber->SetBufferSamples(TRUE), S_OK);
        for (IBaseFilter* const filter : {effect.Get(), end.Get(), nowhere.Get()})
            ASSERT_EQ(graph->AddFilter(filter, nullptr), S_OK);
        ASSERT_EQ(graph->AddSourceFilter((folder / L"clip.avi").c_str(), L"Clip", &source), S_OK);
        const auto pin = [](IBaseFilter* filter, PIN_DIRECTION wanted) {
            ComPtr<IEnumPins> pins;
            ComPtr<IPin> found;
            PIN_DIRECTION direction = {};
            filter->EnumPins(&pins);
            while (pins->Next(1, found.ReleaseAndGetAddressOf(), nullptr) == S_OK)
                if (found->QueryDirection(&direction) == S_OK && direction == wanted)
                    break;
            return found;
        };
        const auto join = [&](IBaseFilter* from, IBaseFilter* to) {
            return graph->Connect(pin(from, PINDIR_OUTPUT).Get(), pin(to, PINDIR_INPUT).Get());
        };
        ASSERT_EQ(join(source.Get(), effect.Get()), S_OK) << "are GStreamer's plug-ins installed? ./run decoders";
        ASSERT_EQ(join(effect.Get(), end.Get()) | join(end.Get(), nowhere.Get()), S_OK);
        ASSERT_EQ(clock->SetSyncSource(nullptr), S_OK);
        long code = 0, bytes = 48 * 32 * 4;
        ASSERT_GE(control->Run(), S_OK);
        ASSERT_EQ(events->WaitForCompletion(20'000, &code), S_OK);
        EXPECT_EQ(code, EC_COMPLETE);
        Bytes last(std::size_t(bytes), 0);
        ASSERT_EQ(grabber->GetCurrentBuffer(&bytes, reinterpret_cast<long*>(last.data())), S_OK);
        for (const auto& [row, at] : {std::pair{31, std::size_t{0}}, {0, last.size() - 4}})
            EXPECT_NEAR(last[at], 255 - JpegGrey(recipe, 9, row), 3) << "row " << row;
        EXPECT_EQ(control->Stop(), S_OK);
        EXPECT_FALSE(library.CanUnload());
    }
    EXPECT_EQ(graph.Detach()->Release(), 0u);
    EXPECT_EQ(effect.Detach()->Release(), 0u);
    EXPECT_TRUE(library.CanUnload());
}

} // namespace
} // namespace vixahost
