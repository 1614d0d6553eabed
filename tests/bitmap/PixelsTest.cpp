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

TEST(Pixels, ColoursAreReadFoundAndReplaced)
{
    for (const int bitCount : {24, 32}) {
        const Picture picture(5, 3, bitCount), other(5, 3, bitCount);
        const WritablePixels pixels = picture.Pixels();
        EXPECT_FALSE(ContainsColor(pixels, 0x00112233));
        picture.Set(4, 0, 0x00112233);
        picture.Set(1, 1, 0x00332211);
        EXPECT_EQ(picture.At(4, 0), &pixels.bytes[static_cast<std::size_t>(2 * pixels.stride + 4 * bitCount / 8)]);
        if (bitCount == 32)
            picture.At(4, 0)[3] = 0x99; // does not count
        EXPECT_EQ(PixelColor(pixels, 4, 0), 0x00112233u);
        EXPECT_EQ(PixelColor(pixels, 0, 0), 0u);
        for (const auto& [x, y] : {std::pair{-1, 0}, {0, -1}, {5, 0}, {0, 3}, {INT32_MAX, INT32_MIN}})
            EXPECT_EQ(PixelColor(pixels, x, y), noColor);
        EXPECT_TRUE(ContainsColor(pixels, 0x00112233));
        EXPECT_FALSE(ContainsColor(pixels, 0x00223311));
        std::ranges::fill(other.Pixels().bytes, std::uint8_t{0xAB});
        ReplaceKeyColor(pixels, other.Pixels(), 0x00112233);
        EXPECT_EQ(PixelColor(pixels, 4, 0), 0x00ABABABu);
        EXPECT_TRUE(bitCount == 24 || picture.At(4, 0)[3] == 0xAB);
        EXPECT_EQ(PixelColor(pixels, 1, 1), 0x00332211u);
        EXPECT_EQ(PixelColor(pixels, 1, 0), 0u);
    }
    const Picture bits(19, 2, 1), padded(1, 1, 24);
    bits.Pixels().StoredRow(1)[2] = 0x20;
    EXPECT_EQ(PixelColor(bits.Pixels(), 18, 0), 1u);
    EXPECT_EQ(PixelColor(bits.Pixels(), 17, 0) + PixelColor(bits.Pixels(), 18, 1), 0u);
    padded.Pixels().bytes[3] = 7; // holds no pixel
    EXPECT_FALSE(ContainsColor(padded.Pixels(), 0x00070000));
    EXPECT_EQ(PixelColor(Picture(4, 4, 8).Pixels(), 0, 0), noColor);
    EXPECT_EQ(PixelColor(Picture(4, 4, 16).Pixels(), 0, 0), noColor);
    EXPECT_FALSE(ContainsColor(Picture(4, 4, 8).Pixels(), 0));
}

TEST(Pixels, TintTablesMoveTowardTheColour)
{
    const TintTables all = MakeTintTables(0x00102030, 255);
    for (const std::size_t value : {0u, 128u, 255u})
        EXPECT_TRUE(all.red[value] == 0x30 && all.green[value] == 0x20 && all.blue[value] == 0x10) << value;
    // 128 × 256 ÷ 255 is 128.5: (200 × 128 + 100 × 128) >> 8.
    EXPECT_EQ(MakeTintTables(200, 128).red[100], 150);
    // 1 × 256 ÷ 255 is 1.004: (0 × 1 + 255 × 255) >> 8.
    EXPECT_EQ(MakeTintTables(0, 1).red[255], 254);
}

TEST(Pixels, TintChangesItsRectangleAndMaskOnly)
{
    const Picture picture(5, 4, 32), mask(5, 4, 1);
    std::ranges::fill(picture.Pixels().bytes, std::uint8_t{9});
    const TintTables tables = MakeTintTables(0x00FFFFFF, 255);
    Tint(picture.Pixels(), {3, -5, 100, 2}, tables, nullptr);
    for (std::int32_t y = 0; y < 4; ++y)
        for (std::int32_t x = 0; x < 5; ++x)
            EXPECT_TRUE(picture.At(x, y)[0] == (x >= 3 && y < 2 ? 255 : 9) && picture.At(x, y)[3] == 9) << x << y;
    mask.Pixels().RowFromTop(3)[0] = 0x88; // columns 0 and 4
    const Pixels bits = mask.Pixels();
    Tint(picture.Pixels(), {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX}, tables, &bits);
    for (std::int32_t x = 0; x < 5; ++x)
        EXPECT_EQ(picture.At(x, 3)[1], x == 0 || x == 4 ? 255 : 9) << x;
    EXPECT_EQ(picture.At(0, 2)[1], 9);
    // Each channel by its own table, from its own value.
    auto* const pixel = picture.At(1, 2);
    pixel[0] = 10, pixel[1] = 60, pixel[2] = 200;
    const TintTables half = MakeTintTables(0x00102030, 128);
    Tint(picture.Pixels(), {1, 2, 2, 3}, half, nullptr);
    EXPECT_TRUE(pixel[0] == half.blue[10] && pixel[1] == half.green[60] && pixel[2] == half.red[200]);
}

TEST(Pixels, ColourVariationIsTheMeanDeviation)
{
    const Picture plain(8, 8, 32), halves(4, 2, 32);
    const auto of = [](const Picture& picture, double limit) { return ColorVariationOf(picture.Pixels(), limit); };
    std::ranges::fill(plain.Pixels().bytes, std::uint8_t{200});
    EXPECT_FALSE(of(plain, 1.0).reached);
    EXPECT_EQ(of(plain, 1.0).variation, 0.0f);
    EXPECT_TRUE(of(plain, 0.0).reached);
    EXPECT_EQ(of(plain, 0.0).row, 0);
    EXPECT_TRUE(of(plain, 256.9).reached) << "the limit's low byte is 0";
    EXPECT_FALSE(of(plain, -1.0).reached) << "the limit's low byte is 255";
    EXPECT_TRUE(of(plain, 1e300).reached);
    // Half black, half white: levels 0 and 63, mean 31, deviations 31 and 32: 4 × 31.5 = 126 for the whole picture.
    for (const auto& [x, y] : {std::pair{2, 0}, {3, 0}, {2, 1}, {3, 1}})
        halves.Set(x, y, 0x00FFFFFF);
    EXPECT_EQ(of(halves, 126.0).row, 1);
    EXPECT_FLOAT_EQ(of(halves, 126.0).variation, 126.0f);
    EXPECT_EQ(of(halves, 63.0).row, 0);
    EXPECT_FALSE(of(halves, 127.0).reached);
}

TEST(OsFamily, VersionsBecomeFlags)
{
    constexpr unsigned versions[][4] = {{1, 4, 0, Os95},        {1, 4, 10, Os98},       {1, 4, 90, OsMe},
                                        {2, 4, 0, OsNt4},       {2, 5, 0, OsNt5Point0}, {2, 5, 1, OsNtLater},
                                        {2, 6, 0, OsNt5Point0}, {2, 6, 2, OsNtLater}};
    for (const auto& [platform, major, minor, family] : versions)
        EXPECT_EQ(OsFamilyOf(platform, major, minor), family) << platform << ' ' << major << '.' << minor;
}

} // namespace
} // namespace vixa::bitmap::test
