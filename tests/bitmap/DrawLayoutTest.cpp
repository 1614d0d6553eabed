// The rectangles of the five layouts.
#include "bitmap/DrawLayout.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace vixa::bitmap {

void PrintTo(const Rect& r, std::ostream* out)
{
    *out << '(' << r.left << ", " << r.top << ", " << r.right << ", " << r.bottom << ')';
}

namespace {

constexpr Size picture = {40, 20};

TEST(DrawLayout, StretchTakesWholeForWhole)
{
    for (const int number : {0, 5, -1, 1000}) {
        const auto copy = LayoutCopy(picture, {10, 20, 110, 50}, LayoutFrom(number), {3.0, 0.5});
        ASSERT_TRUE(copy);
        EXPECT_EQ(copy->source, (Rect{0, 0, 40, 20}));
        EXPECT_EQ(copy->destination, (Rect{10, 20, 110, 50}));
    }
}

TEST(DrawLayout, FitKeepsTheAspectAndCentres)
{
    EXPECT_EQ(LayoutCopy(picture, {0, 0, 100, 100}, Layout::Fit, {})->destination, (Rect{0, 25, 100, 75}));
    EXPECT_EQ(LayoutCopy(picture, {10, 0, 210, 20}, Layout::Fit, {})->destination, (Rect{90, 0, 130, 20}));
    // Pixels twice as high as wide make the picture square.
    EXPECT_EQ(LayoutCopy(picture, {0, 0, 100, 50}, Layout::Fit, {1.0, 2.0})->destination, (Rect{25, 0, 75, 50}));
    // 33.33 pixels high, from 33.33: both ends are rounded by themselves.
    EXPECT_EQ(LayoutCopy({3, 1}, {0, 0, 100, 100}, Layout::Fit, {})->destination, (Rect{0, 33, 100, 67}));
}

TEST(DrawLayout, FillCropsTheMiddle)
{
    EXPECT_EQ(LayoutCopy(picture, {0, 0, 50, 50}, Layout::Fill, {})->source, (Rect{10, 0, 30, 20}));
    EXPECT_EQ(LayoutCopy(picture, {0, 0, 80, 20}, Layout::Fill, {})->source, (Rect{0, 5, 40, 15}));
    EXPECT_EQ(LayoutCopy(picture, {0, 0, 50, 50}, Layout::Fill, {1.0, 2.0})->source, (Rect{0, 0, 40, 20}));
    EXPECT_EQ(LayoutCopy(picture, {7, 8, 57, 58}, Layout::Fill, {})->destination, (Rect{7, 8, 57, 58}));
}

TEST(DrawLayout, CentreScalesAndCutsOff)
{
    const auto whole = LayoutCopy(picture, {0, 0, 100, 100}, Layout::Centre, {2.0, 1.0});
    EXPECT_EQ(whole->destination, (Rect{10, 40, 90, 60}));
    EXPECT_EQ(whole->source, (Rect{0, 0, 40, 20}));
    const auto cut = LayoutCopy(picture, {0, 0, 20, 100}, Layout::Centre, {2.0, 2.0});
    EXPECT_EQ(cut->destination, (Rect{0, 30, 20, 70}));
    EXPECT_EQ(cut->source, (Rect{15, 0, 25, 20}));
    // Drawn sizes are truncated: 59.6 is 59, and half a pixel goes up.
    EXPECT_EQ(LayoutCopy(picture, {0, 0, 100, 100}, Layout::Centre, {1.49, 1.0})->destination, (Rect{21, 40, 80, 60}));
}

TEST(DrawLayout, NothingToDrawIsSaid)
{
    const Rect destination = {0, 0, 10, 10};
    constexpr double infinite = std::numeric_limits<double>::infinity();
    for (const Layout layout : {Layout::Stretch, Layout::Fit, Layout::Fill, Layout::Centre}) {
        EXPECT_FALSE(LayoutCopy({}, destination, layout, {}));
        EXPECT_FALSE(LayoutCopy(picture, {5, 0, 5, 10}, layout, {}));
        EXPECT_FALSE(LayoutCopy(picture, {6, 0, 5, 10}, layout, {}));
        for (const double bad : {0.0, -1.0, std::nan(""), infinite}) {
            EXPECT_FALSE(LayoutCopy(picture, destination, layout, {bad, 1.0}));
            EXPECT_FALSE(LayoutCopy(picture, destination, layout, {1.0, bad}));
        }
    }
    EXPECT_FALSE(LayoutCopy(picture, destination, Layout::Centre, {0.01, 1.0}));
}

std::vector<Copy> Tiles(Size size, const Rect& destination, const Rect& clip, Scale scale)
{
    const TileGrid grid(size, destination, clip, scale);
    std::vector<Copy> all;
    for (std::int64_t row = 0; row < grid.Rows(); ++row)
        for (std::int64_t column = 0; column < grid.Columns(); ++column)
            all.push_back(grid.Tile(column, row));
    return all;
}

TEST(DrawLayout, TilesAreCutAtTheFarEdgesAndLeftOutOfTheClip)
{
    auto all = Tiles({4, 3}, {10, 20, 19, 25}, {}, {});
    ASSERT_EQ(all.size(), 6u);
    EXPECT_EQ(all[0].destination, (Rect{10, 20, 14, 23}));
    EXPECT_EQ(all[0].source, (Rect{0, 0, 4, 3}));
    EXPECT_EQ(all[2].destination, (Rect{18, 20, 19, 23}));
    EXPECT_EQ(all[2].source, (Rect{0, 0, 1, 3}));
    EXPECT_EQ(all[5].destination, (Rect{18, 23, 19, 25}));
    EXPECT_EQ(all[5].source, (Rect{0, 0, 1, 2}));

    all = Tiles(picture, {5, 5, 12, 9}, {}, {2.0, 2.0});
    ASSERT_EQ(all.size(), 1u);
    EXPECT_EQ(all[0].destination, (Rect{5, 5, 12, 9}));
    EXPECT_EQ(all[0].source, (Rect{0, 0, 3, 2}));

    all = Tiles({10, 10}, {0, 0, 100, 100}, {35, 40, 51, 45}, {});
    ASSERT_EQ(all.size(), 3u);
    EXPECT_EQ(all[0].destination, (Rect{30, 40, 40, 50}));
    EXPECT_EQ(all[2].destination, (Rect{50, 40, 60, 50}));
    EXPECT_TRUE(Tiles({10, 10}, {0, 0, 100, 100}, {200, 0, 300, 100}, {}).empty());
}

TEST(DrawLayout, TileSourcesStayWithinThePicture)
{
    for (const double scale : {0.26, 0.3, 0.4, 1.0 / 3.0, 0.9, 1.1, 1.6, 2.4, 7.77})
        for (const std::int32_t size : {1, 2, 3, 5, 10})
            for (const Copy& tile : Tiles({size, size}, {0, 0, 17, 17}, {}, {scale, scale})) {
                EXPECT_GE(tile.source.Width(), 1) << size << " at " << scale;
                EXPECT_LE(tile.source.right, size) << size << " at " << scale;
                EXPECT_FALSE(tile.destination.IsEmpty());
            }
}

TEST(DrawLayout, ExtremesStayInRange)
{
    const Rect all = {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX};
    for (const Layout layout : {Layout::Stretch, Layout::Fit, Layout::Fill, Layout::Centre}) {
        for (const double scale : {1e-300, 1e-9, 1e9, 1e300}) {
            const auto copy = LayoutCopy({INT32_MAX, 1}, all, layout, {scale, 1.0});
            EXPECT_TRUE(!copy || !copy->destination.IsEmpty());
        }
    }
    // One tile over everything, and a grid that is counted without being walked.
    EXPECT_EQ(TileGrid(picture, all, {}, {1e300, 1e300}).Columns(), 3);
    const TileGrid grid({1, 1}, all, {}, {});
    EXPECT_EQ(grid.Columns(), 4294967295);
    EXPECT_EQ(grid.Tile(4294967294, 0).destination, (Rect{INT32_MAX - 1, INT32_MIN, INT32_MAX, INT32_MIN + 1}));
}

TEST(DrawLayout, DrawnSizesFollowTheLayout)
{
    const Rect destination = {10, 10, 110, 110};
    EXPECT_EQ(DrawnSize(picture, destination, Layout::Stretch, {3.0, 3.0}), (Size{100, 100}));
    EXPECT_EQ(DrawnSize(picture, destination, Layout::Fill, {3.0, 3.0}), (Size{100, 100}));
    EXPECT_EQ(DrawnSize(picture, destination, Layout::Fit, {}), (Size{100, 50}));
    EXPECT_EQ(DrawnSize(picture, destination, Layout::Centre, {1.49, 3.0}), (Size{59, 60}));
    EXPECT_EQ(DrawnSize(picture, destination, Layout::Tile, {1.49, 7.0}), (Size{60, 100}));
    EXPECT_EQ(DrawnSize(picture, destination, Layout::Tile, {0.001, 1.0}), Size());
    EXPECT_EQ(DrawnSize(picture, destination, Layout::Fit, {0.0, 1.0}), Size());
}

} // namespace
} // namespace vixa::bitmap
