// The host's graph: pictures in bands, and a graph that can't start.
#include "host/graph/EffectGraph.h"
#include "host/base/HostError.h"
#include "host/fixtures/PixelModel.h"
#include "host/media/PictureFrames.h"
#include "tests/host/TestFiles.h"
#include "tests/support/ComTest.h"

#include <vixavideofx/ClassIds.h>

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

} // namespace
} // namespace vixahost
