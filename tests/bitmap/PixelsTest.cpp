// Pixel reads and changes, and the flags of the operating-system family.
#include "bitmap/Pixels.h"
#include "bitmap/DibLayout.h"
#include "bitmap/OsFamily.h"
#include "host/fixtures/GuardedMemory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace vixa::bitmap::test {
namespace {

// A picture of zeros whose last byte is followed by a page that must not be touched.
class Picture
{
public:
    Picture(std::int32_t width, std::int32_t height, int bitCount)
        : layout(*LayoutOf(width, height, bitCount)), block(static_cast<std::size_t>(layout.pixelBytes))
    {
    }
    WritablePixels Pixels() const
    {
        return {block.Bytes(), layout.width, layout.height, layout.stride, layout.bitCount};
    }
    // Blue, green, red and the fourth byte of a pixel counted from the top.
    std::uint8_t* At(std::int32_t x, std::int32_t y) const
    {
        return &Pixels().RowFromTop(y)[static_cast<std::size_t>(x * layout.bitCount / 8)];
    }
    void Set(std::int32_t x, std::int32_t y, Color color) const
    {
        At(x, y)[0] = static_cast<std::uint8_t>(color >> 16);
        At(x, y)[1] = static_cast<std::uint8_t>(color >> 8);
        At(x, y)[2] = static_cast<std::uint8_t>(color);
    }

private:
    DibLayout layout;
    ::vixahost::fixtures::GuardedMemory block;
};

TEST(Pixels, ReadColoursFromTheTop)
{
    for (const int bitCount : {24, 32}) {
        const Picture picture(4, 3, bitCount);
        picture.Set(3, 0, 0x00112233);
        // The last pixel of the last row in memory.
        const auto bytes = picture.Pixels().bytes;
        EXPECT_EQ(bytes[bytes.size() - static_cast<std::size_t>(bitCount / 8)], 0x11);
        EXPECT_EQ(PixelColor(picture.Pixels(), 3, 0), 0x00112233u);
        EXPECT_EQ(PixelColor(picture.Pixels(), 0, 0), 0u);
        for (const auto& [x, y] : {std::pair{-1, 0}, {0, -1}, {4, 0}, {0, 3}, {INT32_MAX, INT32_MIN}})
            EXPECT_EQ(PixelColor(picture.Pixels(), x, y), noColor);
    }
    const Picture bits(19, 2, 1);
    bits.Pixels().StoredRow(1)[2] = 0x20;
    EXPECT_EQ(PixelColor(bits.Pixels(), 18, 0), 1u);
    EXPECT_EQ(PixelColor(bits.Pixels(), 17, 0), 0u);
    EXPECT_EQ(PixelColor(bits.Pixels(), 18, 1), 0u);
    EXPECT_EQ(PixelColor(Picture(4, 4, 8).Pixels(), 0, 0), noColor);
    EXPECT_EQ(PixelColor(Picture(4, 4, 16).Pixels(), 0, 0), noColor);
}

TEST(Pixels, FindAColourWhateverTheFourthByte)
{
    for (const int bitCount : {24, 32}) {
        const Picture picture(5, 3, bitCount);
        EXPECT_FALSE(ContainsColor(picture.Pixels(), 0x00010203));
        picture.Set(4, 0, 0x00010203);
        EXPECT_TRUE(ContainsColor(picture.Pixels(), 0x00010203));
        EXPECT_FALSE(ContainsColor(picture.Pixels(), 0x00030201));
        if (bitCount == 32)
            picture.At(4, 0)[3] = 0x99;
        EXPECT_TRUE(ContainsColor(picture.Pixels(), 0x00010203));
    }
    // Padding holds no pixel.
    const Picture padded(1, 1, 24);
    padded.Pixels().bytes[3] = 7;
    EXPECT_FALSE(ContainsColor(padded.Pixels(), 0x00070000));
    EXPECT_FALSE(ContainsColor(Picture(4, 4, 8).Pixels(), 0));
}

TEST(Pixels, KeyColourTakesTheOtherPicture)
{
    for (const int bitCount : {24, 32}) {
        const Picture picture(3, 2, bitCount), other(3, 2, bitCount);
        std::ranges::fill(other.Pixels().bytes, std::uint8_t{0xAB});
        picture.Set(0, 0, 0x00FF0000);
        picture.Set(2, 1, 0x00FF0000);
        picture.Set(1, 1, 0x000000FF);
        if (bitCount == 32)
            picture.At(0, 0)[3] = 0x55; // does not count
        ReplaceKeyColor(picture.Pixels(), other.Pixels(), 0x00FF0000);
        EXPECT_EQ(PixelColor(picture.Pixels(), 0, 0), 0x00ABABABu);
        EXPECT_EQ(PixelColor(picture.Pixels(), 2, 1), 0x00ABABABu);
        EXPECT_EQ(PixelColor(picture.Pixels(), 1, 1), 0x000000FFu);
        EXPECT_EQ(PixelColor(picture.Pixels(), 1, 0), 0u);
        if (bitCount == 32) {
            EXPECT_EQ(picture.At(0, 0)[3], 0xAB);
        }
    }
}

TEST(Pixels, TintTablesMoveTowardTheColour)
{
    const TintTables all = MakeTintTables(0x00102030, 255);
    for (const std::size_t value : {0u, 128u, 255u}) {
        EXPECT_EQ(all.red[value], 0x30) << value;
        EXPECT_EQ(all.green[value], 0x20) << value;
        EXPECT_EQ(all.blue[value], 0x10) << value;
    }
    // 128 × 256 ÷ 255 is 128.5: (200 × 128 + 100 × 128) >> 8.
    EXPECT_EQ(MakeTintTables(200, 128).red[100], 150);
    // 1 × 256 ÷ 255 is 1.004: (0 × 1 + 255 × 255) >> 8.
    EXPECT_EQ(MakeTintTables(0, 1).red[255], 254);
    EXPECT_EQ(MakeTintTables(0, 1).red[1], 0);
}

TEST(Pixels, TintChangesItsRectangleAndMaskOnly)
{
    const Picture picture(5, 4, 32), mask(5, 4, 1);
    std::ranges::fill(picture.Pixels().bytes, std::uint8_t{9});
    const TintTables tables = MakeTintTables(0x00FFFFFF, 255);
    Tint(picture.Pixels(), {3, -5, 100, 2}, tables, nullptr);
    for (std::int32_t y = 0; y < 4; ++y)
        for (std::int32_t x = 0; x < 5; ++x) {
            EXPECT_EQ(picture.At(x, y)[0], x >= 3 && y < 2 ? 255 : 9) << x << ", " << y;
            EXPECT_EQ(picture.At(x, y)[3], 9);
        }
    mask.Pixels().RowFromTop(3)[0] = 0x88; // columns 0 and 4
    const Pixels bits = mask.Pixels();
    Tint(picture.Pixels(), {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX}, tables, &bits);
    for (std::int32_t x = 0; x < 5; ++x)
        EXPECT_EQ(picture.At(x, 3)[1], x == 0 || x == 4 ? 255 : 9) << x;
    EXPECT_EQ(picture.At(0, 2)[1], 9);
}

TEST(Pixels, ColourVariationIsTheMeanDeviation)
{
    const Picture plain(8, 8, 32);
    std::ranges::fill(plain.Pixels().bytes, std::uint8_t{200});
    const ColorVariation none = ColorVariationOf(plain.Pixels(), 1.0);
    EXPECT_FALSE(none.reached);
    EXPECT_EQ(none.variation, 0.0f);
    const ColorVariation first = ColorVariationOf(plain.Pixels(), 0.0);
    EXPECT_TRUE(first.reached);
    EXPECT_EQ(first.row, 0);
    EXPECT_TRUE(ColorVariationOf(plain.Pixels(), 256.9).reached) << "the limit's low byte is 0";
    EXPECT_FALSE(ColorVariationOf(plain.Pixels(), -1.0).reached) << "the limit's low byte is 255";
    EXPECT_TRUE(ColorVariationOf(plain.Pixels(), 1e300).reached);

    // Half black, half white: levels 0 and 63, mean 31, deviations 31 and 32: 4 × 31.5 = 126 for the whole picture.
    const Picture halves(4, 2, 32);
    for (std::int32_t y = 0; y < 2; ++y)
        for (std::int32_t x = 2; x < 4; ++x)
            halves.Set(x, y, 0x00FFFFFF);
    const ColorVariation whole = ColorVariationOf(halves.Pixels(), 126.0);
    EXPECT_TRUE(whole.reached);
    EXPECT_EQ(whole.row, 1);
    EXPECT_FLOAT_EQ(whole.variation, 126.0f);
    EXPECT_EQ(ColorVariationOf(halves.Pixels(), 63.0).row, 0);
    EXPECT_FALSE(ColorVariationOf(halves.Pixels(), 127.0).reached);
}

TEST(OsFamily, VersionsBecomeFlags)
{
    EXPECT_EQ(OsFamilyOf(1, 4, 0), Os95);
    EXPECT_EQ(OsFamilyOf(1, 4, 10), Os98);
    EXPECT_EQ(OsFamilyOf(1, 4, 90), OsMe);
    EXPECT_EQ(OsFamilyOf(2, 4, 0), OsNt4);
    EXPECT_EQ(OsFamilyOf(2, 5, 0), OsNt5Point0);
    EXPECT_EQ(OsFamilyOf(2, 5, 1), OsNtLater);
    EXPECT_EQ(OsFamilyOf(2, 6, 0), OsNt5Point0);
    EXPECT_EQ(OsFamilyOf(2, 6, 2), OsNtLater);
    EXPECT_EQ(OsFamilyOf(2, 10, 0), OsNt5Point0);
}

} // namespace
} // namespace vixa::bitmap::test
