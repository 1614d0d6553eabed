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
constexpr Rect whole = {0, 0, 40, 20}, square = {0, 0, 100, 100};

TEST(DrawLayout, TakesAPartToItsPlace)
{
    const struct
    {
        Layout layout;
        Rect destination;
        Scale scale;
        Rect source, drawn;
        Size size = picture;
    } cases[] = {
        {Layout::Stretch, {10, 20, 110, 50}, {3.0, 0.5}, whole, {10, 20, 110, 50}},
        {Layout::Fit, square, {}, whole, {0, 25, 100, 75}},
        {Layout::Fit, {10, 0, 210, 20}, {}, whole, {90, 0, 130, 20}},
        {Layout::Fit, {0, 0, 100, 50}, {1.0, 2.0}, whole, {25, 0, 75, 50}}, // pixels twice as high as wide
        {Layout::Fit, square, {}, {0, 0, 3, 1}, {0, 33, 100, 67}, {3, 1}},  // from 33.33, and 33.33 high
        {Layout::Fill, {7, 8, 57, 58}, {}, {10, 0, 30, 20}, {7, 8, 57, 58}},
        {Layout::Fill, {0, 0, 80, 20}, {}, {0, 5, 40, 15}, {0, 0, 80, 20}},
        {Layout::Fill, {0, 0, 50, 50}, {1.0, 2.0}, whole, {0, 0, 50, 50}},
        {Layout::Centre, square, {2.0, 1.0}, whole, {10, 40, 90, 60}},
        {Layout::Centre, {0, 0, 20, 100}, {2.0, 2.0}, {15, 0, 25, 20}, {0, 30, 20, 70}}, // cut off
        {Layout::Centre, square, {1.49, 1.0}, whole, {21, 40, 80, 60}}, // 59.6 is 59, and half a pixel goes up
    };
    for (const auto& each : cases) {
        const auto copy = LayoutCopy(each.size, each.destination, each.layout, each.scale);
        ASSERT_TRUE(copy) << &each - cases;
        EXPECT_EQ(copy->source, each.source) << &each - cases;
        EXPECT_EQ(copy->destination, each.drawn) << &each - cases;
        const Size drawn = {each.drawn.right - each.drawn.left, each.drawn.bottom - each.drawn.top};
        EXPECT_EQ(DrawnSize(each.size, each.destination, each.layout, each.scale), drawn) << &each - cases;
    }
    for (const int number : {0, 5, -1, 1000})
        EXPECT_EQ(LayoutFrom(number), Layout::Stretch);
    EXPECT_EQ(DrawnSize(picture, {10, 10, 110, 110}, Layout::Tile, {1.49, 7.0}), (Size{60, 100}));
}

TEST(DrawLayout, NothingToDrawIsSaid)
{
    const auto draws = [](Size size, const Rect& destination, Layout layout, Scale scale) {
        return LayoutCopy(size, destination, layout, scale) || DrawnSize(size, destination, layout, scale) != Size();
    };
    for (const Layout layout : {Layout::Stretch, Layout::Fit, Layout::Fill, Layout::Centre}) {
        EXPECT_FALSE(draws({}, square, layout, {}));
        EXPECT_FALSE(draws(picture, {5, 0, 5, 10}, layout, {}));
        EXPECT_FALSE(draws(picture, {6, 0, 5, 10}, layout, {}));
        for (const double bad : {0.0, -1.0, std::nan(""), std::numeric_limits<double>::infinity()})
            EXPECT_FALSE(draws(picture, square, layout, {bad, 1.0}) || draws(picture, square, layout, {1.0, bad}));
    }
    EXPECT_FALSE(draws(picture, square, Layout::Centre, {0.01, 1.0}));
    EXPECT_EQ(DrawnSize(picture, square, Layout::Tile, {0.001, 1.0}), Size());
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
    EXPECT_EQ(all[5].destination, (Rect{18, 23, 19, 25}));
    EXPECT_EQ(all[5].source, (Rect{0, 0, 1, 2}));
    all = Tiles({10, 10}, square, {35, 40, 51, 45}, {});
    ASSERT_EQ(all.size(), 3u);
    EXPECT_EQ(all[0].destination, (Rect{30, 40, 40, 50}));
    EXPECT_EQ(all[2].destination, (Rect{50, 40, 60, 50}));
    EXPECT_TRUE(Tiles({10, 10}, square, {200, 0, 300, 100}, {}).empty());
    for (const double scale : {0.26, 1.0 / 3.0, 0.9, 1.1, 2.4, 7.77})
        for (const std::int32_t size : {1, 2, 5, 10})
            for (const Copy& tile : Tiles({size, size}, {0, 0, 17, 17}, {}, {scale, scale}))
                EXPECT_TRUE(tile.source.Width() >= 1 && tile.source.right <= size && !tile.destination.IsEmpty())
                    << size << " at " << scale;
}

TEST(DrawLayout, ExtremesStayInRange)
{
    const Rect all = {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX};
    for (const Layout layout : {Layout::Stretch, Layout::Fit, Layout::Fill, Layout::Centre})
        for (const double scale : {1e-300, 1e-9, 1e9, 1e300}) {
            const auto copy = LayoutCopy({INT32_MAX, 1}, all, layout, {scale, 1.0});
            EXPECT_TRUE(!copy || !copy->destination.IsEmpty());
        }
    EXPECT_EQ(TileGrid(picture, all, {}, {1e300, 1e300}).Columns(), 3);
    const TileGrid grid({1, 1}, all, {}, {}); // counted without being walked
    EXPECT_EQ(grid.Columns(), 4294967295);
    EXPECT_EQ(grid.Tile(4294967294, 0).destination, (Rect{INT32_MAX - 1, INT32_MIN, INT32_MAX, INT32_MIN + 1}));
}

} // namespace
} // namespace vixa::bitmap
