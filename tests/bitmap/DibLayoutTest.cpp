// Header arithmetic and the check of packed DIBs that come from outside.
#include "bitmap/DibLayout.h"
#include "host/fixtures/GuardedMemory.h"
#include "tests/bitmap/PackedDibs.h"

#include <gtest/gtest.h>

#include <array>

namespace vixa::bitmap::test {
namespace {

TEST(DibLayout, RowsArePaddedToFourBytes)
{
    EXPECT_EQ(StrideOf(24, 24), 72);
    EXPECT_EQ(StrideOf(36, 24), 108);
    EXPECT_EQ(StrideOf(1, 1), 4);
    EXPECT_EQ(StrideOf(32, 1), 4);
    EXPECT_EQ(StrideOf(33, 1), 8);
    EXPECT_EQ(StrideOf(7, 4), 4);
    EXPECT_EQ(StrideOf(9, 4), 8);
    EXPECT_EQ(StrideOf(5, 8), 8);
    EXPECT_EQ(StrideOf(3, 24), 12);
    EXPECT_EQ(StrideOf(10, 0), 0);
    EXPECT_EQ(StrideOf(-10, 24), 0);
    EXPECT_EQ(StrideOf(INT32_MIN, INT32_MIN), 0);
    EXPECT_EQ(StrideOf(INT32_MAX, INT32_MAX), 0);
}

TEST(DibLayout, ColourTablesFollowDepthUnlessCounted)
{
    EXPECT_EQ(ColorTableBytes(0, 1), 8);
    EXPECT_EQ(ColorTableBytes(0, 4), 64);
    EXPECT_EQ(ColorTableBytes(0, 8), 1024);
    EXPECT_EQ(ColorTableBytes(16, 8), 64);
    EXPECT_EQ(ColorTableBytes(0, 16), 0);
    EXPECT_EQ(ColorTableBytes(3, 24), 12);
    EXPECT_EQ(ColorTableBytes(0xFFFFFFFF, 8), 4 * 0xFFFFFFFFLL);
}

TEST(DibLayout, NewPicturesFitIn31Bits)
{
    EXPECT_EQ(LayoutOf(48, 48, 24)->TotalBytes(), 6952);
    EXPECT_EQ(LayoutOf(24, 24, 24)->TotalBytes(), 1768);
    EXPECT_EQ(LayoutOf(36, 34, 24)->TotalBytes(), 3712);
    EXPECT_EQ(LayoutOf(5, 2, 8)->TotalBytes(), 40 + 1024 + 16);
    EXPECT_EQ(LayoutOf(16384, 32767, 32)->pixelBytes, 2147418112);
    EXPECT_FALSE(LayoutOf(16384, 32768, 32));
    EXPECT_FALSE(LayoutOf(INT32_MAX, INT32_MAX, 32));
    for (const auto& [width, height, bits] : {std::array{0, 5, 24},
                                              {5, 0, 24},
                                              {5, -5, 24},
                                              {-5, 5, 24},
                                              {5, 5, 2},
                                              {5, 5, 7},
                                              {5, 5, 65568},
                                              {0x40000000, 1, 32},
                                              {65536, 65536, 8}})
        EXPECT_FALSE(LayoutOf(width, height, bits)) << width << " x " << height << " at " << bits;
}

TEST(DibLayout, ReadsPackedDibsUpToTheirLastByte)
{
    for (const auto& [width, height, bits, colors] : {std::array{1, 1, 1, 0},
                                                      {9, 3, 4, 5},
                                                      {5, 4, 8, 0},
                                                      {5, 4, 8, 16},
                                                      {3, 2, 16, 0},
                                                      {7, 7, 24, 9},
                                                      {4, 4, 32, 0}}) {
        const Bytes bytes = PackedDib(width, height, bits, static_cast<std::uint32_t>(colors));
        const ::vixahost::fixtures::GuardedMemory block(bytes);
        const auto layout = ParsePackedDib(std::as_bytes(block.Bytes()));
        ASSERT_TRUE(layout) << width << " x " << height << " at " << bits;
        EXPECT_EQ(layout->width, width);
        EXPECT_EQ(layout->height, height);
        EXPECT_EQ(layout->bitCount, bits);
        EXPECT_EQ(layout->tableBytes, ColorTableBytes(static_cast<std::uint32_t>(colors), bits));
        EXPECT_EQ(static_cast<std::size_t>(layout->TotalBytes()), bytes.size());
    }
}

TEST(DibLayout, ReadsHeadersWithMoreFields)
{
    for (const std::uint32_t size : {52u, 56u, 108u, 124u}) {
        Bytes bytes = Forged(PackedDib(5, 4, 24), [=](DibHeader& h) { h.size = size; });
        bytes.insert(bytes.begin() + 40, size - 40, std::byte{0xEE});
        const auto layout = ParsePackedDib(bytes);
        ASSERT_TRUE(layout) << size;
        EXPECT_EQ(layout->PixelOffset(), static_cast<std::int32_t>(size));
        bytes.pop_back();
        EXPECT_FALSE(ParsePackedDib(bytes)) << size;
    }
}

TEST(DibLayout, RefusesHostileData)
{
    for (const HostileDib& hostile : HostileDibs()) {
        const ::vixahost::fixtures::GuardedMemory block(hostile.bytes);
        EXPECT_FALSE(ParsePackedDib(std::as_bytes(block.Bytes()))) << hostile.what;
    }
}

} // namespace
} // namespace vixa::bitmap::test
