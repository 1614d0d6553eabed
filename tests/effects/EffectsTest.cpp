// Every effect on hand-worked numbers.
#include "host/fixtures/PushGraph.h"
#include "host/fixtures/RecordedSet.h"
#include "tests/support/Library.h"

#include <vixavideofx/ClassIds.h>

using namespace test;
using namespace vixahost::fixtures;
using namespace vixavideofx;

namespace {

using Bytes = std::vector<std::uint8_t>;

class Effects : public LibraryTest
{
protected:
    static void SetUpTestSuite() { CoInitializeEx(nullptr, COINIT_MULTITHREADED); }
    static void TearDownTestSuite() { CoUninitialize(); }

    // The frame after the effect, with these parameters; the graph delivers it in place.
    Bytes Apply(REFCLSID clsid, std::initializer_list<std::int32_t> block, Bytes frame, LONG width = 0, LONG height = 1)
    {
        const auto filter = library.Create(clsid);
        ComPtr<IEffectFilter> effect;
        EXPECT_EQ(filter.As(&effect), S_OK);
        if (block.size() > 0) {
            RecordedSet set(block);
            EXPECT_EQ(effect->SetPropertySet(&set), S_OK);
            EXPECT_EQ(set.references, 1u);
            EXPECT_EQ(set.queries, 0);
            EXPECT_EQ(set.writes, 0);
        }
        effect.Reset();
        PushGraph graph(filter.Get(), VideoType(width ? width : static_cast<LONG>(frame.size() / 4), height));
        EXPECT_EQ(graph.Send(frame), S_OK);
        EXPECT_EQ(graph.Seen().samples, 1);
        EXPECT_EQ(graph.Seen().content, frame) << "another buffer was delivered";
        return frame;
    }

    // One pixel, sent twice so that effects which work on pairs take it; the second one's bytes.
    Bytes Pixel(REFCLSID clsid, std::initializer_list<std::int32_t> block, Bytes pixel)
    {
        Bytes pair = pixel;
        pair.insert(pair.end(), pixel.begin(), pixel.end());
        pair = Apply(clsid, block, pair);
        EXPECT_TRUE(std::equal(pair.begin(), pair.begin() + 4, pair.begin() + 4));
        return Bytes(pair.begin() + 4, pair.end());
    }

    // The middle of a 3 x 3 frame in which all four bytes of pixel i are values[i].
    int Centre(REFCLSID clsid, std::int32_t kind, std::array<std::uint8_t, 9> values)
    {
        Bytes frame;
        for (const auto value : values)
            frame.insert(frame.end(), 4, value);
        frame = Apply(clsid, {kind}, frame, 3, 3);
        for (std::size_t i = 0; i < 36; ++i) {
            if (i < 16 || i >= 20) {
                EXPECT_EQ(frame[i], 0) << "border byte " << i;
            }
        }
        EXPECT_TRUE(frame[16] == frame[17] && frame[17] == frame[18] && frame[18] == frame[19]);
        return frame[16];
    }
};

TEST_F(Effects, Gamma)
{
    EXPECT_EQ(Pixel(CLSID_GammaCorrection, {}, {1, 128, 254, 7}), (Bytes{1, 128, 254, 7})) << "at creation";
    EXPECT_EQ(Pixel(CLSID_GammaCorrection, {100}, {1, 128, 254, 7}), (Bytes{1, 128, 254, 7}));
    EXPECT_EQ(Pixel(CLSID_GammaCorrection, {200}, {0, 128, 255, 99}), (Bytes{0, 181, 255, 99}));
    EXPECT_EQ(Pixel(CLSID_GammaCorrection, {45}, {0, 128, 255, 99}), (Bytes{0, 55, 255, 99}));
    EXPECT_EQ(Pixel(CLSID_GammaCorrection, {0}, {0, 1, 255, 99}), (Bytes{0, 241, 255, 99})) << "exponent 0.01";
    EXPECT_EQ(Pixel(CLSID_GammaCorrection, {-5}, {0, 1, 255, 99}), (Bytes{0, 241, 255, 99}));
}

TEST_F(Effects, GammaReportsAMissingBuffer)
{
    const auto filter = library.Create(CLSID_GammaCorrection);
    ComPtr<IEffectFilter> effect;
    filter.As(&effect);
    PushGraph graph(filter.Get(), VideoType(2, 1));
    HandSample none;
    none.pointerResult = E_POINTER;
    EXPECT_EQ(graph.Send(&none), S_OK) << "the identity looks at no buffer";
    RecordedSet set{150};
    effect->SetPropertySet(&set);
    EXPECT_EQ(graph.Send(&none), E_FAIL);
    EXPECT_EQ(graph.Seen().samples, 1);
}

TEST_F(Effects, Multiply)
{
    EXPECT_EQ(Pixel(CLSID_MultiplyPixel, {}, {1, 128, 254, 7}), (Bytes{1, 128, 254, 0})) << "100 % at creation";
    EXPECT_EQ(Pixel(CLSID_MultiplyPixel, {150}, {100, 200, 10, 77}), (Bytes{150, 255, 15, 0}));
    EXPECT_EQ(Pixel(CLSID_MultiplyPixel, {0}, {100, 200, 10, 77}), (Bytes{0, 0, 0, 0}));
    EXPECT_EQ(Pixel(CLSID_MultiplyPixel, {200}, {0, 127, 128, 77}), (Bytes{0, 254, 255, 0}));
    EXPECT_EQ(Pixel(CLSID_MultiplyPixel, {-1}, {0, 1, 255, 77}), (Bytes{0, 255, 255, 0})) << "wraps as 32 bits do";
    // A single pixel is enough: no pairs here.
    EXPECT_EQ(Apply(CLSID_MultiplyPixel, {50}, {100, 201, 3, 9}), (Bytes{50, 100, 1, 0}));
}

TEST_F(Effects, Invert)
{
    EXPECT_EQ(Pixel(CLSID_InvertColor, {}, {10, 20, 30, 40}), (Bytes{10, 20, 30, 40}));
    EXPECT_EQ(Pixel(CLSID_InvertColor, {0}, {10, 20, 30, 40}), (Bytes{10, 20, 30, 40}));
    EXPECT_EQ(Pixel(CLSID_InvertColor, {4}, {10, 20, 30, 40}), (Bytes{0, 0, 225, 0}));
    EXPECT_EQ(Pixel(CLSID_InvertColor, {7}, {10, 20, 30, 40}), (Bytes{245, 235, 225, 0}));
    EXPECT_EQ(Pixel(CLSID_InvertColor, {8}, {10, 20, 30, 40}), (Bytes{0, 0, 0, 0})) << "a bit of no channel";
    // A lone last pixel is not half of a pair.
    EXPECT_EQ(Apply(CLSID_InvertColor, {7}, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}),
              (Bytes{254, 253, 252, 0, 250, 249, 248, 0, 9, 10, 11, 12}));
}

TEST_F(Effects, Add)
{
    EXPECT_EQ(Pixel(CLSID_AddPixel, {}, {100, 20, 230, 9}), (Bytes{100, 20, 230, 9}));
    EXPECT_EQ(Pixel(CLSID_AddPixel, {50, -30, 0, 0}, {100, 20, 230, 9}), (Bytes{100, 0, 255, 9}));
    EXPECT_EQ(Pixel(CLSID_AddPixel, {0, 0, 10, 1}, {100, 20, 230, 9}), (Bytes{110, 20, 230, 9}));
    EXPECT_EQ(Pixel(CLSID_AddPixel, {1000, INT_MIN, -256, 0}, {9, 200, 1, 9}), (Bytes{0, 0, 255, 9})) << "saturates";
    EXPECT_EQ(Apply(CLSID_AddPixel, {1, 1, 1, 0}, {1, 1, 1, 1, 2, 2, 2, 2, 3, 3, 3, 3}),
              (Bytes{2, 2, 2, 1, 3, 3, 3, 2, 3, 3, 3, 3}));
}

TEST_F(Effects, FilterColor)
{
    const Bytes reddish = {50, 60, 200, 9};
    EXPECT_EQ(Pixel(CLSID_FilterColor, {40, 2}, reddish), (Bytes{50, 60, 240, 9}));
    EXPECT_EQ(Pixel(CLSID_FilterColor, {-100, 2}, reddish), (Bytes{50, 60, 100, 9}));
    EXPECT_EQ(Pixel(CLSID_FilterColor, {255, 2}, reddish), (Bytes{50, 60, 255, 9}));
    EXPECT_EQ(Pixel(CLSID_FilterColor, {40, 0}, reddish), reddish);
    EXPECT_EQ(Pixel(CLSID_FilterColor, {40, 2}, {60, 50, 200, 9}), (Bytes{60, 50, 240, 9})) << "hue 254, from below 0";
    EXPECT_EQ(Pixel(CLSID_FilterColor, {40, 0}, {128, 128, 128, 9}), (Bytes{168, 128, 128, 9})) << "grey is blue";
    EXPECT_EQ(Pixel(CLSID_FilterColor, {40, 0}, {30, 30, 30, 9}), (Bytes{30, 30, 30, 9})) << "too dark";
    EXPECT_EQ(Pixel(CLSID_FilterColor, {40, 0}, {201, 201, 201, 9}), (Bytes{201, 201, 201, 9})) << "too light";
    EXPECT_EQ(Pixel(CLSID_FilterColor, {40, 1}, {50, 200, 60, 9}), (Bytes{50, 240, 60, 9}));
    EXPECT_EQ(Pixel(CLSID_FilterColor, {INT_MIN, 2}, reddish), (Bytes{50, 60, 0, 9})) << "saturates";
    for (const std::int32_t colour : {3, -1, 6, 256})
        EXPECT_EQ(Pixel(CLSID_FilterColor, {40, colour}, reddish), reddish) << "colour " << colour;
}

TEST_F(Effects, Convolutions)
{
    const std::array<std::uint8_t, 9> steps = {0, 1, 2, 3, 4, 5, 6, 7, 8};
    const std::array<std::uint8_t, 9> flat = {77, 77, 77, 77, 77, 77, 77, 77, 77};
    const std::array<std::uint8_t, 9> cross = {10, 50, 20, 50, 100, 50, 30, 50, 40};

    EXPECT_EQ(Centre(CLSID_DetectEdges, 1, cross), 800 - 300 > 255 ? 255 : 0);
    EXPECT_EQ(Centre(CLSID_DetectEdges, 1, flat), 0);
    EXPECT_EQ(Centre(CLSID_Emboss, 2, flat), 128);
    EXPECT_EQ(Centre(CLSID_Emboss, 2, steps), 128 + (5 + 7 + 8) - (0 + 1 + 3));
    EXPECT_EQ(Centre(CLSID_Emboss, 2, {8, 7, 6, 5, 4, 3, 2, 1, 0}), 128 - 16) << "negative sums are kept";
    EXPECT_EQ(Centre(CLSID_EnhanceDetails, 3, cross), 140);
    EXPECT_EQ(Centre(CLSID_EnhanceDetails, 3, {0, 200, 0, 200, 1, 200, 0, 200, 0}), 0);
    EXPECT_EQ(Centre(CLSID_EnhanceEdges, 4, flat), 77);
    EXPECT_EQ(Centre(CLSID_EnhanceEdges, 4, {30, 30, 30, 30, 40, 30, 30, 30, 30}), 360 - 240);
    EXPECT_EQ(Centre(CLSID_EnhanceFocus, 5, cross), (700 - 100) / 3);
    EXPECT_EQ(Centre(CLSID_LightEdges, 6, flat), 0);
    EXPECT_EQ(Centre(CLSID_LightEdges, 6, {0, 50, 0, 50, 10, 50, 0, 50, 0}), 160);
    EXPECT_EQ(Centre(CLSID_ShiftEdges, 7, steps), 128 + 4 - 0);
    EXPECT_EQ(Centre(CLSID_ShiftEdges, 9, steps), 128 + 4 - 1);
    EXPECT_EQ(Centre(CLSID_ShiftEdges, 10, steps), 128 + 4 - 3);
    EXPECT_EQ(Centre(CLSID_SoftenFilter, 8, steps), 4);
    EXPECT_EQ(Centre(CLSID_SoftenFilter, 8, flat), 77);
}

TEST_F(Effects, ConvolutionNeedsAKind)
{
    const Bytes frame(5 * 4 * 4, 200);
    EXPECT_EQ(Apply(CLSID_SoftenFilter, {}, frame, 5, 4), frame) << "no block yet";
    EXPECT_EQ(Apply(CLSID_SoftenFilter, {11}, frame, 5, 4), frame) << "no valid kind yet";
}

TEST_F(Effects, ConvolutionFrameSizes)
{
    // Top-down: the same rows, counted by their magnitude.
    EXPECT_EQ(Apply(CLSID_SoftenFilter, {8}, Bytes(5 * 4 * 4, 90), 5, -4),
              Apply(CLSID_SoftenFilter, {8}, Bytes(5 * 4 * 4, 90), 5, 4));
    // Without inner pixels everything becomes 0; without pixels nothing happens.
    EXPECT_EQ(Apply(CLSID_Emboss, {2}, Bytes(2 * 6 * 4, 90), 2, 6), Bytes(2 * 6 * 4, 0));
    EXPECT_EQ(Apply(CLSID_Emboss, {2}, Bytes(6 * 2 * 4, 90), 6, 2), Bytes(6 * 2 * 4, 0));
    EXPECT_EQ(Apply(CLSID_Emboss, {2}, Bytes(16, 90), 5, 0), Bytes(16, 90));
    EXPECT_EQ(Apply(CLSID_Emboss, {2}, Bytes(16, 90), -2, 2), Bytes(16, 90));
}

TEST_F(Effects, AllConvolutionsReportOneClassIdentifier)
{
    for (std::size_t i = 0; i < effects.size(); ++i) {
        CLSID clsid{};
        EXPECT_EQ(library.Create<IPersist>(effects[i].clsid)->GetClassID(&clsid), S_OK);
        EXPECT_TRUE(clsid == (i < 5 ? effects[i].clsid : CLSID_AddPixel)) << effects[i].name;
    }
}

} // namespace
