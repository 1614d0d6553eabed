// Drawing, seen by its pixels on a DIB section, and the operations that change pixels.
#include "bitmap/GDIBitmap.h"
#include "tests/bitmap/MemoryBitmap.h"
#include "tests/bitmap/PackedDibs.h"
#include "tests/support/DebugText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

using namespace vixa::bitmap::test;

namespace {

constexpr COLORREF red = RGB(255, 0, 0), green = RGB(0, 255, 0), blue = RGB(0, 0, 255), white = RGB(255, 255, 255),
                   grey = RGB(90, 90, 90), black = 0;

// A letter for each colour, so that a picture can be read.
constexpr std::pair<COLORREF, char> letters[] = {{red, 'R'},   {green, 'G'}, {blue, 'B'},
                                                 {white, 'W'}, {grey, '.'},  {black, 'k'}};

// One letter for each pixel, rows parted by '/'.
template <typename At>
std::string Letters(LONG width, LONG height, At at)
{
    std::string all;
    for (LONG y = 0; y < height; ++y) {
        for (LONG x = 0; x < width; ++x) {
            const auto* const found = std::ranges::find(letters, at(x, y), [](const auto& each) { return each.first; });
            all += found == std::end(letters) ? '?' : found->second;
        }
        all += y + 1 < height ? "/" : "";
    }
    return all;
}

// A grey 32-bit DIB section in a device context.
class Canvas
{
public:
    Canvas(LONG columns, LONG rows) : width(columns), height(rows), dc(CreateCompatibleDC(nullptr))
    {
        BITMAPINFO info = {};
        info.bmiHeader = {sizeof info.bmiHeader, width, -height, 1, 32, 0, 0, 0, 0, 0, 0};
        void* pixels = nullptr;
        section.reset(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &pixels, nullptr, 0));
        previous = SelectObject(dc.get(), section.get());
        std::fill_n(static_cast<DWORD*>(pixels), width * height, 0x005A5A5Au);
    }
    ~Canvas() { SelectObject(dc.get(), previous); }

    operator HDC() const { return dc.get(); }
    HBITMAP Handle() const { return section.get(); }
    std::string Text() const
    {
        return Letters(width, height, [this](LONG x, LONG y) { return ::GetPixel(*this, x, y); });
    }

private:
    LONG width, height;
    vixa::UniqueMemoryDC dc;
    vixa::UniqueBitmap section;
    HGDIOBJ previous;
};

// The colours of `rows` (as letters) in a bitmap of 24 or 32 bits.
GDIBitmap Picture(const std::vector<std::string>& rows, int bitCount = 24)
{
    GDIBitmap bitmap;
    const auto height = static_cast<LONG>(rows.size()), width = static_cast<LONG>(rows[0].size());
    EXPECT_TRUE(bitmap.Create({width, height}, bitCount));
    const auto pixels = WritablePixelsOf(bitmap);
    for (LONG y = 0; y < height; ++y)
        for (LONG x = 0; x < width; ++x)
            for (const auto& [color, letter] : letters)
                if (letter == rows[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)]) {
                    auto* const pixel = &pixels.RowFromTop(y)[static_cast<std::size_t>(x * bitCount / 8)];
                    pixel[0] = GetBValue(color);
                    pixel[1] = GetGValue(color);
                    pixel[2] = GetRValue(color);
                }
    return bitmap;
}

// An 8-bit picture of one colour, whose only use of the colour table is entry 1.
GDIBitmap Indexed(LONG width, LONG height, COLORREF color)
{
    GDIBitmap bitmap;
    EXPECT_TRUE(bitmap.Create({width, height}, 8));
    EXPECT_TRUE(bitmap.Fill(1));
    bitmap.GetPaletteForWrite()[1] = {GetBValue(color), GetGValue(color), GetRValue(color), 0};
    return bitmap;
}

std::string Text(const IBitmap& bitmap)
{
    return Letters(bitmap.GetWidth(), bitmap.GetHeight(), [&](LONG x, LONG y) { return bitmap.GetPixel(x, y); });
}

// What it looks like, stretched to that size.
std::string Drawn(const GDIBitmap& bitmap, LONG width, LONG height)
{
    const Canvas canvas(width, height);
    EXPECT_TRUE(bitmap.Draw(canvas, {0, 0, width, height}, 0, 1.0, 1.0));
    return canvas.Text();
}

// The same picture as a device-compatible bitmap, which draws through its handle.
GDIBitmap Compatible(const GDIBitmap& source)
{
    GDIBitmap bitmap;
    EXPECT_TRUE(bitmap.CreateDrawn(source, {source.GetWidth(), source.GetHeight()}, 0, 0, {}));
    EXPECT_EQ(bitmap.GetBits(), nullptr);
    return bitmap;
}

// What a drawing function leaves of a grey canvas.
template <typename Draw>
std::string After(LONG width, LONG height, Draw draw)
{
    const Canvas canvas(width, height);
    EXPECT_TRUE(draw(canvas));
    return canvas.Text();
}

TEST(Drawing, PlacesAWholePictureOrAPart)
{
    const GDIBitmap dib = Picture({"RG", "BW"});
    for (const GDIBitmap& bitmap : {dib, Compatible(dib)}) {
        const auto drawn = [&bitmap](int layout, double scaleX, double scaleY, RECT rect) {
            return After(6, 4, [&](HDC dc) { return bitmap.Draw(dc, rect, layout, scaleX, scaleY); });
        };
        EXPECT_EQ(drawn(0, 1.0, 1.0, {1, 0, 5, 4}), ".RRGG./.RRGG./.BBWW./.BBWW.");
        EXPECT_EQ(drawn(1, 1.0, 1.0, {0, 0, 6, 4}), ".RRGG./.RRGG./.BBWW./.BBWW.");
        EXPECT_EQ(drawn(2, 0.5, 1.0, {0, 0, 4, 4}), "BBWW../BBWW../BBWW../BBWW..") << "rows 0.5 to 1.5";
        EXPECT_EQ(drawn(3, 2.0, 1.0, {0, 0, 6, 4}), "....../.RRGG./.BBWW./......");
        EXPECT_EQ(drawn(4, 1.0, 1.0, {0, 0, 5, 3}), "RGRGR./BWBWB./RGRGR./......");
        EXPECT_EQ(drawn(0, 0.0, 1.0, {0, 0, 6, 4}), "....../....../....../......");
        const Canvas canvas(3, 2);
        EXPECT_TRUE(bitmap.Blt(canvas, {1, 0, 3, 1}, {0, 1, 2, 2}, SRCCOPY));
        EXPECT_TRUE(bitmap.Blt(canvas, {0, 1, 1, 2}, {1, 0, 2, 1}, SRCCOPY));
        EXPECT_TRUE(bitmap.Blt(canvas, {2, 0, 3, 1}, {0, 0, 1, 1}, SRCAND));
        EXPECT_EQ(canvas.Text(), ".BR/G..");
    }
    EXPECT_TRUE(GDIBitmap().Draw(Canvas(1, 1), {0, 0, 1, 1}, 0, 1.0, 1.0));
    EXPECT_FALSE(GDIBitmap().Blt(Canvas(1, 1), {0, 0, 1, 1}, {0, 0, 1, 1}, SRCCOPY));
    // Rows from the top in memory: the source row is the rectangle's own.
    MemoryBitmap topDown(PackedDib(1, 3, 32));
    topDown.bytes = Forged(topDown.bytes, [](vixa::bitmap::DibHeader& h) { h.height = -3; });
    const BitmapBase::DibSrc source(topDown.GetInfo(), topDown.GetBits(), SRCCOPY);
    const Canvas canvas(1, 1);
    EXPECT_TRUE(source.Blt(canvas, {0, 1, 1, 2}, {0, 0, 1, 1}));
    const auto* const row = static_cast<const BYTE*>(topDown.GetBits()) + 4;
    EXPECT_EQ(GetPixel(canvas, 0, 0), RGB(row[2], row[1], row[0]));
}

TEST(Drawing, TilesOutsideTheClippingBoxAreLeftOut)
{
    struct CountingSource final : BitmapBase::IBltSrc
    {
        mutable int calls = 0;
        int failAt = 1000;
        bool Blt(HDC, const RECT&, const RECT&) const noexcept override { return ++calls < failAt; }
    };
    struct Opened : GDIBitmap
    {
        using GDIBitmap::GDIBitmap;
        bool Through(HDC dc, const IBltSrc& source) const { return DrawLayout(dc, {0, 0, 10, 10}, 4, 1, 1, source); }
    };
    Opened bitmap;
    ASSERT_TRUE(bitmap.Create({2, 2}, 24));
    const Canvas canvas(10, 10);
    CountingSource source;
    IntersectClipRect(canvas, 3, 3, 5, 4);
    EXPECT_TRUE(bitmap.Through(canvas, source));
    EXPECT_EQ(source.calls, 2);
    source.failAt = 3;
    EXPECT_FALSE(bitmap.Through(canvas, source));
    EXPECT_EQ(source.calls, 3);
}

TEST(Drawing, TransparentLeavesTheKeyColourOut)
{
    const GDIBitmap bitmap = Picture({"RG", "BR"});
    EXPECT_EQ(After(6, 2,
                    [&](HDC dc) {
                        return bitmap.DrawTransparent(dc, {0, 0, 4, 2}, red, 4, 1.0, 1.0) &&
                               bitmap.BltTransparent(dc, {4, 0, 6, 1}, {0, 1, 2, 2}, blue);
                    }),
              ".G.G.R/B.B...");
    const Canvas one(1, 1);
    EXPECT_TRUE(Indexed(1, 1, green).BltTransparent(one, {0, 0, 1, 1}, {0, 0, 1, 1}, red));
    EXPECT_EQ(one.Text(), "G") << "the colour table counts";
    EXPECT_TRUE(GDIBitmap().DrawTransparent(one, {0, 0, 1, 1}, red, 0, 1.0, 1.0));
    EXPECT_FALSE(GDIBitmap().BltTransparent(one, {0, 0, 1, 1}, {0, 0, 1, 1}, red));
}

TEST(Drawing, AlphaBlends)
{
    const GDIBitmap bitmap = Picture({"W"}, 32);
    // 0.5 is 127 of 255.
    for (const auto& [opacity, level] :
         {std::pair{0.0, 90}, {-3.0, 90}, {std::nan(""), 90}, {1.0, 255}, {1e9, 255}, {0.5, 172}}) {
        const Canvas canvas(1, 1);
        EXPECT_TRUE(bitmap.BltAlpha(canvas, {0, 0, 1, 1}, {0, 0, 1, 1}, opacity, false));
        EXPECT_NEAR(GetRValue(GetPixel(canvas, 0, 0)), level, opacity == 0.5) << opacity;
    }
    GDIBitmap alpha = Picture({"kW"}, 32);
    static_cast<BYTE*>(alpha.GetBitsForWrite())[7] = 255;
    EXPECT_EQ(After(4, 1,
                    [&](HDC dc) {
                        return alpha.DrawAlpha(dc, {0, 0, 2, 1}, 1.0, true, 0, 1.0, 1.0) &&
                               alpha.DrawAlpha(dc, {2, 0, 4, 1}, 1.0, false, 0, 1.0, 1.0);
                    }),
              ".WkW");
}

TEST(Drawing, ResizeKeepsColoursAtEveryDepth)
{
    GDIBitmap bitmap = Picture({"RG", "BW"}), palette = Indexed(2, 2, green), device = Compatible(bitmap);
    ASSERT_TRUE(bitmap.Resize({4, 2}) && palette.Resize({3, 3}) && device.Resize({4, 1}));
    EXPECT_FALSE(bitmap.Resize({0, 2}));
    EXPECT_EQ(Text(bitmap), "RRGG/BBWW");
    EXPECT_EQ(palette.GetBitCount(), 8);
    EXPECT_EQ(Drawn(palette, 3, 3), "GGG/GGG/GGG");
    EXPECT_EQ(device.GetBits(), nullptr);
    EXPECT_EQ(device.GetHeight(), 1);
}

TEST(Drawing, PreparedCopiesLookTheSame)
{
    const GDIBitmap original = Picture({"RRGGBBWW", "RRGGBBWW", "WWBBGGRR", "WWBBGGRR", "RRRRRRRR", "GGGGGGGG"});
    for (const RECT rect : {RECT{0, 0, 4, 3}, {1, 2, 9, 5}, {0, 0, 5, 7}})
        for (const int layout : {0, 1, 2, 3, 4})
            for (const double scale : {0.5, 1.0}) {
                GDIBitmap prepared(original);
                EXPECT_TRUE(prepared.PrepareForDrawing(rect, layout, scale, scale, 100.0));
                EXPECT_FALSE(prepared.SharesStorageWith(&original));
                EXPECT_EQ(After(10, 10, [&](HDC dc) { return prepared.Draw(dc, rect, layout, 1.0, 1.0); }),
                          After(10, 10, [&](HDC dc) { return original.Draw(dc, rect, layout, scale, scale); }))
                    << "layout " << layout << " at " << scale << " in " << rect.right;
            }
    GDIBitmap unchanged(original);
    EXPECT_TRUE(unchanged.PrepareForDrawing({0, 0, 8, 6}, 0, 1.0, 1.0, 1.0)) << "an area ratio of 1 is not below 1";
    EXPECT_TRUE(unchanged.PrepareForDrawing({0, 0, 0, 6}, 0, 1.0, 1.0, 100.0));
    EXPECT_TRUE(unchanged.SharesStorageWith(&original));
    EXPECT_FALSE(GDIBitmap().PrepareForDrawing({0, 0, 8, 6}, 0, 1.0, 1.0, 100.0));
}

TEST(Drawing, HandlesAndCompatibleBitmapsAreCopiedAndExported)
{
    GDIBitmap bitmap = Compatible(Picture({"RG", "BW"})), loaded, copy(bitmap);
    EXPECT_EQ(bitmap.GetBitCount(), 0);
    EXPECT_EQ(Exported(bitmap).size(), 40u + 16u);
    ASSERT_TRUE(Load(loaded, Exported(bitmap)));
    EXPECT_EQ(Text(loaded), "RG/BW");
    EXPECT_TRUE(copy.MakeUnique());
    EXPECT_FALSE(copy.SharesStorageWith(&bitmap));
    EXPECT_EQ(Drawn(copy, 2, 2), "RG/BW");
    EXPECT_FALSE(bitmap.Fill(0)) << "no pixel memory";
    EXPECT_EQ(bitmap.GetPixel(0, 0), CLR_INVALID);

    const Canvas canvas(2, 2);
    ASSERT_TRUE(loaded.Draw(canvas, {0, 0, 2, 2}, 0, 1.0, 1.0));
    EXPECT_EQ(Text(GDIBitmap(canvas.Handle())), "RG/BW");
    // Two colours that the system knows; the exported picture has to carry them.
    const WORD whiteBlack = 0x80;
    const DWORD greenBlue[] = {0x0000FF00, 0x000000FF};
    const vixa::UniqueBitmap mono(CreateBitmap(2, 1, 1, 1, &whiteBlack)), device(CreateBitmap(2, 1, 1, 32, greenBlue));
    EXPECT_TRUE(Load(loaded, Exported(GDIBitmap(mono.get()))));
    EXPECT_EQ(Drawn(loaded, 2, 1), "Wk");
    const GDIBitmap fromDevice(device.get());
    copy = fromDevice;
    EXPECT_TRUE(copy.MakeUnique());
    EXPECT_FALSE(copy.SharesStorageWith(&fromDevice));
    EXPECT_EQ(Drawn(copy, 2, 1), "GB");
    EXPECT_TRUE(GDIBitmap(static_cast<HBITMAP>(nullptr)).IsEmpty());
}

TEST(Changing, KeyColourTakesAnyOtherBitmap)
{
    GDIBitmap bitmap = Picture({"RGR", "RGR"});
    const GDIBitmap before(bitmap), empty;
    EXPECT_TRUE(bitmap.ReplaceKeyColor(&before, red)) << "its own picture, shared";
    EXPECT_EQ(Text(bitmap), "RGR/RGR");
    const GDIBitmap other = Picture({"B"}, 32), device = Compatible(Picture({"WWW", "kkk"}));
    EXPECT_TRUE(bitmap.ReplaceKeyColor(&other, red)) << "stretched and converted";
    EXPECT_TRUE(bitmap.ReplaceKeyColor(&device, green));
    EXPECT_EQ(Text(bitmap), "BWB/BkB");
    EXPECT_EQ(Text(before), "RGR/RGR");
    EXPECT_FALSE(bitmap.ReplaceKeyColor(nullptr, green));
    EXPECT_FALSE(bitmap.ReplaceKeyColor(&empty, green));
    EXPECT_FALSE(Indexed(2, 2, green).ReplaceKeyColor(&bitmap, green));
}

TEST(Changing, TintWantsARealMask)
{
    GDIBitmap bitmap = Picture({"kk", "kk"}, 32), mask, wrongSize, empty;
    const GDIBitmap before(bitmap);
    ASSERT_TRUE(mask.Create({2, 2}, 1) && wrongSize.Create({3, 2}, 1));
    static_cast<BYTE*>(mask.GetBitsForWrite())[0] = 0x40; // right column of the bottom row
    EXPECT_TRUE(bitmap.Tint({0, 0, 2, 2}, white, 255, &mask));
    EXPECT_TRUE(bitmap.Tint({0, 0, 1, 1}, green, 255, nullptr));
    EXPECT_TRUE(bitmap.Tint({1, 0, 2, 1}, red, 255, nullptr)) << "other tables than the last";
    EXPECT_TRUE(bitmap.Tint({0, 0, 2, 2}, blue, 0, nullptr));
    for (const GDIBitmap* const none : std::initializer_list<const GDIBitmap*>{&wrongSize, &empty, &before})
        EXPECT_FALSE(bitmap.Tint({0, 0, 2, 2}, blue, 255, none)) << none->GetBitCount();
    EXPECT_EQ(Text(bitmap), "GR/kW");
    EXPECT_EQ(Text(before), "kk/kk");
    EXPECT_FALSE(Picture({"R"}).Tint({0, 0, 1, 1}, blue, 255, nullptr)) << "24 bits";
}

TEST(Changing, ColourVariationSaysItsFinding)
{
    const test::DebugText debugText;
    const GDIBitmap bitmap = Picture({"kkWW", "kkWW"}, 32);
    EXPECT_TRUE(bitmap.HasMinColorVariation(126.0, 0.0));
    EXPECT_EQ(test::DebugText::last, "BitmapBase::HasMinColorVariation succeeded (line=1, var=126)");
    EXPECT_FALSE(bitmap.HasMinColorVariation(127.5, 0.0));
    EXPECT_EQ(test::DebugText::last, "BitmapBase::HasMinColorVariation returned false (var=126.00, limit was 127.50)");
    test::DebugText::last.clear();
    EXPECT_FALSE(Picture({"kW"}).HasMinColorVariation(0.0, 0.0)) << "24 bits";
    EXPECT_EQ(test::DebugText::last, "");
    EXPECT_TRUE(bitmap.ContainsColor(white));
    EXPECT_FALSE(bitmap.ContainsColor(red));
}

} // namespace
