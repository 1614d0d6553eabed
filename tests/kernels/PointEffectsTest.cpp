// The point effects against numbers worked out by hand, at every level that the machine has.
#include "tests/kernels/Helpers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>

namespace vixa::kernels::test {
namespace {

class PointEffects : public testing::TestWithParam<Level>
{
protected:
    const KernelSet& kernels = KernelsOf(GetParam());
};

INSTANTIATE_TEST_SUITE_P(Levels, PointEffects, testing::ValuesIn(AvailableLevels()),
                         [](const auto& tested) { return "Level" + std::to_string(static_cast<int>(tested.param)); });

TEST(GammaTable, FollowsThePowerCurve)
{
    EXPECT_EQ(MakeGammaTable(200).entries[128], 181);
    EXPECT_EQ(MakeGammaTable(45).entries[128], 55);
    EXPECT_EQ(MakeGammaTable(1).entries[254], 172) << "the exponent 100, not 0.01";
    for (const std::int32_t gamma : {INT_MIN, -1, 0, 1, 45, 100, 220, 10000, INT_MAX}) {
        const GammaTable table = MakeGammaTable(gamma);
        EXPECT_EQ(table.entries[0], 0) << gamma;
        EXPECT_EQ(table.entries[255], 255) << gamma;
        EXPECT_TRUE(std::is_sorted(table.entries.begin(), table.entries.end())) << gamma;
    }
    const GammaTable identity = MakeGammaTable(100);
    for (std::size_t i = 0; i < 256; ++i)
        EXPECT_EQ(identity.entries[i], i);
    // The exponent 0.01 lifts even the darkest value to 255 x 0.946.
    EXPECT_EQ(MakeGammaTable(0).entries[1], 241);
    EXPECT_EQ(MakeGammaTable(-5).entries, MakeGammaTable(0).entries);
}

// Every entry of every table that the dialog can ask for, as one number each: both builds must have the same
// arithmetic.
TEST(GammaTable, IsTheSameOnEveryMachine)
{
    std::uint64_t hash = 14695981039346656037u; // FNV-1a
    for (std::int32_t gamma = 45; gamma <= 220; ++gamma) {
        for (const std::uint8_t entry : MakeGammaTable(gamma).entries)
            hash = (hash ^ entry) * 1099511628211u;
    }
    EXPECT_EQ(hash, 10982135923086322182u);
}

TEST_P(PointEffects, GammaMapsThreeBytesAndKeepsTheFourth)
{
    Bytes frame = {128, 0, 255, 128, 10, 128, 64, 7, 128, 128, 128};
    kernels.gamma(frame, MakeGammaTable(200));
    EXPECT_EQ(frame, (Bytes{181, 0, 255, 128, 50, 181, 128, 7, 128, 128, 128}));
}

TEST_P(PointEffects, MultiplyScalesSaturatesAndClearsTheFourthByte)
{
    const auto multiplied = [&](Bytes frame, std::int32_t factor) {
        kernels.multiply(frame, factor);
        return frame;
    };
    EXPECT_EQ(multiplied({100, 200, 10, 77}, 150), (Bytes{150, 255, 15, 0}));
    EXPECT_EQ(multiplied({100, 200, 10, 77, 1, 2, 255, 4, 9}, 100), (Bytes{100, 200, 10, 0, 1, 2, 255, 0, 9}));
    EXPECT_EQ(multiplied({100, 127, 128, 77}, 200), (Bytes{200, 254, 255, 0}));
    EXPECT_EQ(multiplied({100, 127, 255, 77}, 0), (Bytes{0, 0, 0, 0}));
    EXPECT_EQ(multiplied({100, 127, 255, 77}, 50), (Bytes{50, 63, 127, 0}));
    // -1 percent is a multiplier of -2: below zero in 32 bits is far above 255 once shifted as unsigned.
    EXPECT_EQ(multiplied({0, 1, 255, 77}, -1), (Bytes{0, 255, 255, 0}));
    // 2^24 x 256 wraps to 0.
    EXPECT_EQ(multiplied({1, 2, 255, 77}, 1 << 24), (Bytes{0, 0, 0, 0}));
}

TEST_P(PointEffects, InvertTurnsTheChosenChannelsAndClearsTheRest)
{
    const auto inverted = [&](Bytes frame, std::int32_t mask) {
        kernels.invert(frame, mask);
        return frame;
    };
    const Bytes pair = {10, 20, 30, 40, 0, 128, 255, 1};
    EXPECT_EQ(inverted(pair, 0), pair);
    EXPECT_EQ(inverted(pair, 4), (Bytes{0, 0, 225, 0, 0, 0, 0, 0}));
    EXPECT_EQ(inverted(pair, 7), (Bytes{245, 235, 225, 0, 255, 127, 0, 0}));
    EXPECT_EQ(inverted(pair, 9), (Bytes{245, 0, 0, 0, 255, 0, 0, 0}));
    EXPECT_EQ(inverted(pair, 8), Bytes(8)); // no channel, but not the mask that leaves frames alone
    Bytes odd = pair;
    odd.insert(odd.end(), {10, 20, 30, 40});
    EXPECT_EQ(inverted(odd, 7), (Bytes{245, 235, 225, 0, 255, 127, 0, 0, 10, 20, 30, 40}));
}

TEST_P(PointEffects, AddSaturatesBothWays)
{
    const auto added = [&](Bytes frame, AddParameters parameters) {
        kernels.add(frame, parameters);
        return frame;
    };
    const Bytes pair = {100, 20, 230, 9, 255, 255, 0, 255};
    EXPECT_EQ(added(pair, {50, -30, 0}), (Bytes{100, 0, 255, 9, 255, 225, 50, 255}));
    EXPECT_EQ(added(pair, {0, 0, 0}), pair);
    EXPECT_EQ(added(pair, {-255, 255, -1}), (Bytes{99, 255, 0, 9, 254, 255, 0, 255}));
    EXPECT_EQ(added(pair, {300, INT_MIN, INT_MAX}), (Bytes{255, 0, 255, 9, 255, 0, 255, 255}));
    Bytes odd = pair;
    odd.insert(odd.end(), {1, 2, 3, 4, 5});
    EXPECT_EQ(added(odd, {1, 1, 1}), (Bytes{101, 21, 231, 9, 255, 255, 1, 255, 1, 2, 3, 4, 5}));
}

TEST_P(PointEffects, FilterColorChangesOnlyPixelsOfItsHue)
{
    const auto filtered = [&](Bytes pixel, std::int32_t intensity, std::int32_t colour, bool brighten = true) {
        kernels.filterColor(pixel, {intensity, colour, brighten});
        return pixel;
    };
    const Bytes red = {50, 60, 200, 9}, rose = {60, 50, 200, 9};
    EXPECT_EQ(filtered(red, 40, 2), (Bytes{50, 60, 240, 9}));
    EXPECT_EQ(filtered(red, 40, 2, false), (Bytes{50, 60, 160, 9}));
    EXPECT_EQ(filtered(red, 40, 0), red);
    EXPECT_EQ(filtered(red, 40, 1), red);
    EXPECT_EQ(filtered(rose, 40, 2), (Bytes{60, 50, 240, 9})); // hue 254, just below the full turn
    EXPECT_EQ(filtered(red, 255, 2), (Bytes{50, 60, 255, 9}));
    EXPECT_EQ(filtered(red, 1000, 2, false), (Bytes{50, 60, 0, 9}));
    EXPECT_EQ(filtered(red, INT_MIN, 2, false), (Bytes{50, 60, 0, 9}));
    EXPECT_EQ(filtered({50, 200, 60, 9}, 40, 1), (Bytes{50, 240, 60, 9}));
    EXPECT_EQ(filtered({200, 50, 60, 9}, 40, 0), (Bytes{240, 50, 60, 9}));

    // Grey counts as blue, unless it is too dark or too light: lightness 60 and 200 are the ends that still count.
    EXPECT_EQ(filtered({128, 128, 128, 9}, 40, 0), (Bytes{168, 128, 128, 9}));
    EXPECT_EQ(filtered({128, 128, 128, 9}, 40, 0, false), (Bytes{88, 128, 128, 9}));
    EXPECT_EQ(filtered({60, 60, 60, 9}, 40, 0), (Bytes{100, 60, 60, 9}));
    EXPECT_EQ(filtered({200, 200, 200, 9}, 40, 0), (Bytes{240, 200, 200, 9}));
    for (const std::uint8_t grey : {std::uint8_t{30}, std::uint8_t{59}, std::uint8_t{201}, std::uint8_t{255}})
        EXPECT_EQ(filtered({grey, grey, grey, 9}, 40, 0), (Bytes{grey, grey, grey, 9}));

    for (const std::int32_t colour : {-1, 3, 6, INT_MIN, INT_MAX}) {
        EXPECT_EQ(filtered(red, 40, colour), red);
        EXPECT_EQ(filtered({128, 128, 128, 9}, 40, colour), (Bytes{128, 128, 128, 9}));
    }
    EXPECT_EQ(filtered({128, 128, 128, 9, 128, 128, 128}, 40, 0), (Bytes{168, 128, 128, 9, 128, 128, 128}));
}

} // namespace
} // namespace vixa::kernels::test
