// Header arithmetic and the check of packed DIBs that come from outside.
#include "bitmap/DibLayout.h"
#include "tests/bitmap/GuardedBlock.h"
#include "tests/bitmap/PackedDibs.h"

#include <gtest/gtest.h>

namespace vixa::bitmap::test {
namespace {

TEST(DibLayout, RowsArePaddedToFourBytes)
{
    EXPECT_EQ(strideOf(24, 24), 72);
    EXPECT_EQ(strideOf(36, 24), 108);
    EXPECT_EQ(strideOf(1, 1), 4);
    EXPECT_EQ(strideOf(32, 1), 4);
    EXPECT_EQ(strideOf(33, 1), 8);
    EXPECT_EQ(strideOf(7, 4), 4);
    EXPECT_EQ(strideOf(9, 4), 8);
    EXPECT_EQ(strideOf(5, 8), 8);
    EXPECT_EQ(strideOf(3, 24), 12);
    EXPECT_EQ(strideOf(10, 0), 0);
    EXPECT_EQ(strideOf(-10, 24), 0);
    EXPECT_EQ(strideOf(INT32_MIN, INT32_MIN), 0);
    EXPECT_EQ(strideOf(INT32_MAX, INT32_MAX), 0);
}

TEST(DibLayout, ColourTablesFollowDepthUnlessCounted)
{
    EXPECT_EQ(colorTableBytes(0, 1), 8);
    EXPECT_EQ(colorTableBytes(0, 4), 64);
    EXPECT_EQ(colorTableBytes(0, 8), 1024);
    EXPECT_EQ(colorTableBytes(16, 8), 64);
    EXPECT_EQ(colorTableBytes(0, 16), 0);
    EXPECT_EQ(colorTableBytes(3, 24), 12);
    EXPECT_EQ(colorTableBytes(0xFFFFFFFF, 8), 4 * 0xFFFFFFFFLL);
}

TEST(DibLayout, NewPicturesFitIn31Bits)
{
    EXPECT_EQ(layoutOf(48, 48, 24)->totalBytes(), 6952);
    EXPECT_EQ(layoutOf(24, 24, 24)->totalBytes(), 1768);
    EXPECT_EQ(layoutOf(36, 34, 24)->totalBytes(), 3712);
    EXPECT_EQ(layoutOf(5, 2, 8)->totalBytes(), 40 + 1024 + 16);
    EXPECT_EQ(layoutOf(16384, 32767, 32)->pixelBytes, 2147418112);
    EXPECT_FALSE(layoutOf(16384, 32768, 32));
    EXPECT_FALSE(layoutOf(INT32_MAX, INT32_MAX, 32));
    EXPECT_FALSE(layoutOf(0, 5, 24));
    EXPECT_FALSE(layoutOf(5, -5, 24));
    EXPECT_FALSE(layoutOf(5, 5, 2));
}

TEST(DibLayout, ReadsPackedDibsUpToTheirLastByte)
{
    struct Case
    {
        std::int32_t width, height;
        int bitCount;
        std::uint32_t colors;
    };
    for (const Case& c : {Case{1, 1, 1, 0},
                          {9, 3, 4, 5},
                          {5, 4, 8, 0},
                          {5, 4, 8, 16},
                          {3, 2, 16, 0},
                          {36, 34, 24, 0},
                          {7, 7, 24, 9},
                          {4, 4, 32, 0}}) {
        const Bytes bytes = packedDib(c.width, c.height, c.bitCount, c.colors);
        const GuardedBlock block(bytes);
        const auto layout = parsePackedDib(block.bytes());
        ASSERT_TRUE(layout) << c.width << " x " << c.height << " at " << c.bitCount;
        EXPECT_EQ(layout->width, c.width);
        EXPECT_EQ(layout->height, c.height);
        EXPECT_EQ(layout->bitCount, c.bitCount);
        EXPECT_EQ(layout->tableBytes, colorTableBytes(c.colors, c.bitCount));
        EXPECT_EQ(static_cast<std::size_t>(layout->totalBytes()), bytes.size());
    }
}

TEST(DibLayout, ReadsHeadersWithMoreFields)
{
    for (const std::uint32_t size : {52u, 56u, 108u, 124u}) {
        Bytes bytes = forged(packedDib(5, 4, 24), [=](DibHeader& h) { h.size = size; });
        bytes.insert(bytes.begin() + 40, size - 40, std::byte{0xEE});
        const auto layout = parsePackedDib(bytes);
        ASSERT_TRUE(layout) << size;
        EXPECT_EQ(layout->pixelOffset(), static_cast<std::int32_t>(size));
        bytes.pop_back();
        EXPECT_FALSE(parsePackedDib(bytes)) << size;
    }
}

TEST(DibLayout, RefusesHostileData)
{
    for (const HostileDib& hostile : hostileDibs()) {
        const GuardedBlock block(hostile.bytes);
        EXPECT_FALSE(parsePackedDib(block.bytes())) << hostile.what;
    }
}

} // namespace
} // namespace vixa::bitmap::test
