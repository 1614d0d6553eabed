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
        void* memory = nullptr;
        section.reset(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &memory, nullptr, 0));
        pixels = static_cast<DWORD*>(memory);
        previous = SelectObject(dc.get(), section.get());
        std::fill(pixels, pixels + width * height, 0x005A5A5Au);
    }
    ~Canvas() { SelectObject(dc.get(), previous); }

    operator HDC() const { return dc.get(); }
    HBITMAP Handle() const { return section.get(); }
    COLORREF At(LONG x, LONG y) const
    {
        GdiFlush();
        const DWORD pixel = pixels[y * width + x];
        return RGB(pixel >> 16 & 0xFF, pixel >> 8 & 0xFF, pixel & 0xFF);
    }
    std::string Text() const
    {
        return Letters(width, height, [this](LONG x, LONG y) { return At(x, y); });
    }

private:
    LONG width, height;
    vixa::UniqueMemoryDC dc;
    vixa::UniqueBitmap section;
    HGDIOBJ previous;
    DWORD* pixels;
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

TEST(Drawing, LayoutsPlaceThePicture)
{
    const GDIBitmap dib = Picture({"RG", "BW"});
    for (const GDIBitmap& bitmap : {dib, Compatible(dib)}) {
        const auto drawn = [&bitmap](int layout, double scaleX, double scaleY, RECT rect) {
            const Canvas canvas(6, 4);
            EXPECT_TRUE(bitmap.Draw(canvas, rect, layout, scaleX, scaleY));
            return canvas.Text();
        };
        EXPECT_EQ(drawn(0, 1.0, 1.0, {1, 0, 5, 4}), ".RRGG./.RRGG./.BBWW./.BBWW.");
        EXPECT_EQ(drawn(9, 1.0, 1.0, {0, 0, 2, 2}), "RG..../BW..../....../......");
        EXPECT_EQ(drawn(1, 1.0, 1.0, {0, 0, 6, 4}), ".RRGG./.RRGG./.BBWW./.BBWW.");
        EXPECT_EQ(drawn(2, 0.5, 1.0, {0, 0, 4, 4}), "BBWW../BBWW../BBWW../BBWW..") << "rows 0.5 to 1.5";
        EXPECT_EQ(drawn(3, 1.0, 1.0, {0, 0, 6, 4}), "....../..RG../..BW../......");
        EXPECT_EQ(drawn(3, 2.0, 1.0, {0, 0, 6, 4}), "....../.RRGG./.BBWW./......");
        EXPECT_EQ(drawn(4, 1.0, 1.0, {0, 0, 5, 3}), "RGRGR./BWBWB./RGRGR./......");
        EXPECT_EQ(drawn(4, 4.0, 4.0, {1, 1, 4, 3}), "....../.RRR../.RRR../......");
        EXPECT_EQ(drawn(0, 0.0, 1.0, {0, 0, 6, 4}), "....../....../....../......");
        EXPECT_EQ(drawn(0, 1.0, 1.0, {4, 4, 0, 0}), "....../....../....../......");
    }
    EXPECT_TRUE(GDIBitmap().Draw(Canvas(1, 1), {0, 0, 1, 1}, 0, 1.0, 1.0));
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
    CountingSource all, some, failing;
    EXPECT_TRUE(bitmap.Through(canvas, all));
    EXPECT_EQ(all.calls, 25);
    IntersectClipRect(canvas, 3, 3, 5, 4);
    EXPECT_TRUE(bitmap.Through(canvas, some));
    EXPECT_EQ(some.calls, 2);
    failing.failAt = 2;
    EXPECT_FALSE(bitmap.Through(canvas, failing));
    EXPECT_EQ(failing.calls, 2);
}

TEST(Drawing, BltTakesAPartCountedFromTheTop)
{
    const GDIBitmap dib = Picture({"RGB", "WkR"});
    for (const GDIBitmap& bitmap : {dib, Compatible(dib)}) {
        const Canvas canvas(4, 2);
        EXPECT_TRUE(bitmap.Blt(canvas, {1, 0, 3, 1}, {1, 0, 3, 1}, SRCCOPY));
        EXPECT_TRUE(bitmap.Blt(canvas, {0, 1, 1, 2}, {0, 1, 1, 2}, SRCCOPY));
        EXPECT_EQ(canvas.Text(), ".GB./W...");
        EXPECT_TRUE(bitmap.Blt(canvas, {0, 1, 1, 2}, {0, 0, 1, 1}, SRCAND));
        EXPECT_EQ(canvas.Text(), ".GB./R...");
    }
    EXPECT_FALSE(GDIBitmap().Blt(Canvas(1, 1), {0, 0, 1, 1}, {0, 0, 1, 1}, SRCCOPY));
    // Rows from the top in memory: the source row is the rectangle's own.
    MemoryBitmap topDown(PackedDib(2, 3, 32));
    topDown.bytes = Forged(topDown.bytes, [](vixa::bitmap::DibHeader& h) { h.height = -3; });
    const Canvas canvas(2, 1);
    EXPECT_TRUE(
        BitmapBase::DibSrc(topDown.GetInfo(), topDown.GetBits(), SRCCOPY).Blt(canvas, {0, 1, 2, 2}, {0, 0, 2, 1}));
    const auto* const row = static_cast<const BYTE*>(topDown.GetBits()) + 8;
    EXPECT_EQ(canvas.At(0, 0), RGB(row[2], row[1], row[0]));
}

TEST(Drawing, TransparentLeavesTheKeyColourOut)
{
    const GDIBitmap bitmap = Picture({"RG", "BR"});
    const Canvas canvas(6, 2);
    EXPECT_TRUE(bitmap.DrawTransparent(canvas, {0, 0, 4, 2}, red, 4, 1.0, 1.0));
    EXPECT_TRUE(bitmap.BltTransparent(canvas, {4, 0, 6, 1}, {0, 1, 2, 2}, blue));
    EXPECT_EQ(canvas.Text(), ".G.G.R/B.B...");
    const Canvas one(1, 1);
    EXPECT_TRUE(Indexed(1, 1, green).BltTransparent(one, {0, 0, 1, 1}, {0, 0, 1, 1}, red));
    EXPECT_EQ(one.Text(), "G") << "the colour table counts";
    EXPECT_TRUE(GDIBitmap().DrawTransparent(one, {0, 0, 1, 1}, red, 0, 1.0, 1.0));
    EXPECT_FALSE(GDIBitmap().BltTransparent(one, {0, 0, 1, 1}, {0, 0, 1, 1}, red));
}

TEST(Drawing, AlphaBlends)
{
    const GDIBitmap bitmap = Picture({"W"}, 32);
    const auto blended = [&bitmap](double opacity) {
        const Canvas canvas(1, 1);
        EXPECT_TRUE(bitmap.BltAlpha(canvas, {0, 0, 1, 1}, {0, 0, 1, 1}, opacity, false));
        return int{GetRValue(canvas.At(0, 0))};
    };
    EXPECT_EQ(blended(0.0), 90);
    EXPECT_EQ(blended(-3.0), 90);
    EXPECT_EQ(blended(std::nan("")), 90);
    EXPECT_EQ(blended(1.0), 255);
    EXPECT_EQ(blended(1e9), 255);
    EXPECT_NEAR(blended(0.5), 90 + (255 - 90) * 127.0 / 255, 1) << "0.5 is 127 of 255";

    GDIBitmap alpha = Picture({"kW"}, 32);
    static_cast<BYTE*>(alpha.GetBitsForWrite())[7] = 255;
    const Canvas canvas(4, 1);
    EXPECT_TRUE(alpha.DrawAlpha(canvas, {0, 0, 2, 1}, 1.0, true, 0, 1.0, 1.0));
    EXPECT_TRUE(alpha.DrawAlpha(canvas, {2, 0, 4, 1}, 1.0, false, 0, 1.0, 1.0));
    EXPECT_EQ(canvas.Text(), ".WkW");
}

TEST(Drawing, ResizeKeepsColoursAtEveryDepth)
{
    GDIBitmap bitmap = Picture({"RG", "BW"});
    ASSERT_TRUE(bitmap.Resize({4, 2}));
    EXPECT_EQ(Text(bitmap), "RRGG/BBWW");
    EXPECT_FALSE(bitmap.Resize({0, 2}));
    EXPECT_EQ(Text(bitmap), "RRGG/BBWW");

    GDIBitmap palette = Indexed(2, 2, green);
    ASSERT_TRUE(palette.Resize({3, 3}));
    EXPECT_EQ(palette.GetBitCount(), 8);
    EXPECT_EQ(Drawn(palette, 3, 3), "GGG/GGG/GGG");

    GDIBitmap device = Compatible(Picture({"RG"}));
    ASSERT_TRUE(device.Resize({4, 1}));
    EXPECT_EQ(device.GetBits(), nullptr);
    EXPECT_EQ(Drawn(device, 4, 1), "RRGG");
}

TEST(Drawing, PreparedCopiesLookTheSame)
{
    const GDIBitmap original = Picture({"RRGGBBWW", "RRGGBBWW", "WWBBGGRR", "WWBBGGRR", "RRRRRRRR", "GGGGGGGG"});
    for (const RECT rect : {RECT{0, 0, 4, 3}, {1, 2, 9, 5}, {0, 0, 3, 7}})
        for (const int layout : {0, 1, 2, 3, 4})
            for (const double scale : {0.5, 1.0}) {
                GDIBitmap prepared(original);
                EXPECT_TRUE(prepared.PrepareForDrawing(rect, layout, scale, scale, 100.0));
                EXPECT_FALSE(prepared.SharesStorageWith(&original));
                const Canvas expected(10, 10), got(10, 10);
                EXPECT_TRUE(original.Draw(expected, rect, layout, scale, scale));
                EXPECT_TRUE(prepared.Draw(got, rect, layout, 1.0, 1.0));
                EXPECT_EQ(got.Text(), expected.Text())
                    << "layout " << layout << " at " << scale << " in " << rect.right;
            }
    GDIBitmap unchanged(original);
    EXPECT_TRUE(unchanged.PrepareForDrawing({0, 0, 8, 6}, 0, 1.0, 1.0, 1.0)) << "an area ratio of 1 is not below 1";
    EXPECT_TRUE(unchanged.PrepareForDrawing({0, 0, 0, 6}, 0, 1.0, 1.0, 100.0));
    EXPECT_TRUE(unchanged.SharesStorageWith(&original));
    EXPECT_FALSE(GDIBitmap().PrepareForDrawing({0, 0, 8, 6}, 0, 1.0, 1.0, 100.0));
}

TEST(Drawing, CompatibleBitmapsExportTheirPicture)
{
    GDIBitmap bitmap = Compatible(Picture({"RG", "BW"}));
    EXPECT_EQ(bitmap.GetBitCount(), 0);
    const Bytes bytes = Exported(bitmap);
    EXPECT_EQ(bytes.size(), 40u + 16u);
    GDIBitmap loaded;
    ASSERT_TRUE(Load(loaded, bytes));
    EXPECT_EQ(Text(loaded), "RG/BW");

    GDIBitmap copy(bitmap);
    EXPECT_TRUE(copy.MakeUnique());
    EXPECT_FALSE(copy.SharesStorageWith(&bitmap));
    EXPECT_EQ(Drawn(copy, 2, 2), "RG/BW");
    EXPECT_FALSE(bitmap.Fill(0)) << "no pixel memory";
    EXPECT_EQ(bitmap.GetPixel(0, 0), CLR_INVALID);
}

TEST(Drawing, HandlesAreCopied)
{
    const Canvas canvas(3, 2);
    ASSERT_TRUE(Picture({"RGB", "WkR"}).Draw(canvas, {0, 0, 3, 2}, 0, 1.0, 1.0));
    GdiFlush();
    const GDIBitmap fromSection(canvas.Handle());
    EXPECT_EQ(Text(fromSection), "RGB/WkR");

    const vixa::UniqueBitmap device(CreateBitmap(2, 1, 1, 32, nullptr));
    {
        const vixa::UniqueMemoryDC dc(CreateCompatibleDC(nullptr));
        const HGDIOBJ previous = SelectObject(dc.get(), device.get());
        SetPixel(dc.get(), 0, 0, green);
        SetPixel(dc.get(), 1, 0, blue);
        SelectObject(dc.get(), previous);
    }
    const GDIBitmap fromDevice(device.get());
    GDIBitmap copy(fromDevice);
    EXPECT_TRUE(copy.MakeUnique());
    EXPECT_FALSE(copy.SharesStorageWith(&fromDevice));
    EXPECT_EQ(Drawn(copy, 2, 1), "GB");
    // Two colours that the system knows; the exported picture has to carry them.
    const WORD whiteBlack = 0x80;
    const vixa::UniqueBitmap mono(CreateBitmap(2, 1, 1, 1, &whiteBlack));
    GDIBitmap monoLoaded;
    EXPECT_TRUE(Load(monoLoaded, Exported(GDIBitmap(mono.get()))));
    EXPECT_EQ(Drawn(monoLoaded, 2, 1), "Wk");
    EXPECT_TRUE(GDIBitmap(static_cast<HBITMAP>(nullptr)).IsEmpty());
}

TEST(Changing, KeyColourTakesAnyOtherBitmap)
{
    GDIBitmap bitmap = Picture({"RGR", "RGR"});
    const GDIBitmap before(bitmap);
    EXPECT_TRUE(bitmap.ReplaceKeyColor(&before, red)) << "its own picture, shared";
    EXPECT_EQ(Text(bitmap), "RGR/RGR");
    const GDIBitmap other = Picture({"B"}, 32);
    EXPECT_TRUE(bitmap.ReplaceKeyColor(&other, red)) << "stretched and converted";
    EXPECT_EQ(Text(bitmap), "BGB/BGB");
    EXPECT_EQ(Text(before), "RGR/RGR");
    const GDIBitmap device = Compatible(Picture({"WWW", "kkk"}));
    EXPECT_TRUE(bitmap.ReplaceKeyColor(&device, green));
    EXPECT_EQ(Text(bitmap), "BWB/BkB");
    EXPECT_FALSE(bitmap.ReplaceKeyColor(nullptr, green));
    const GDIBitmap empty;
    EXPECT_FALSE(bitmap.ReplaceKeyColor(&empty, green));
    EXPECT_FALSE(Indexed(2, 2, green).ReplaceKeyColor(&bitmap, green));
}

TEST(Changing, TintWantsARealMask)
{
    GDIBitmap bitmap = Picture({"kk", "kk"}, 32);
    const GDIBitmap before(bitmap);
    GDIBitmap mask;
    ASSERT_TRUE(mask.Create({2, 2}, 1));
    static_cast<BYTE*>(mask.GetBitsForWrite())[0] = 0x40; // right column of the bottom row
    EXPECT_TRUE(bitmap.Tint({0, 0, 2, 2}, white, 255, &mask));
    EXPECT_EQ(Text(bitmap), "kk/kW");
    EXPECT_EQ(Text(before), "kk/kk");
    EXPECT_TRUE(bitmap.Tint({0, 0, 1, 1}, green, 255, nullptr));
    EXPECT_TRUE(bitmap.Tint({1, 0, 2, 1}, red, 255, nullptr)) << "other tables than the last";
    EXPECT_TRUE(bitmap.Tint({0, 0, 2, 2}, blue, 0, nullptr));
    EXPECT_EQ(Text(bitmap), "GR/kW");
    GDIBitmap wrongSize, empty;
    ASSERT_TRUE(wrongSize.Create({3, 2}, 1));
    EXPECT_FALSE(bitmap.Tint({0, 0, 2, 2}, blue, 255, &wrongSize));
    EXPECT_FALSE(bitmap.Tint({0, 0, 2, 2}, blue, 255, &empty));
    EXPECT_FALSE(bitmap.Tint({0, 0, 2, 2}, blue, 255, &before)) << "32 bits are no mask";
    EXPECT_EQ(Text(bitmap), "GR/kW");
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
    EXPECT_FALSE(bitmap.HasMinColorVariation(-1e-300, 0.0) && bitmap.HasMinColorVariation(-1.0, 0.0));
    test::DebugText::last.clear();
    EXPECT_FALSE(Picture({"kW"}).HasMinColorVariation(0.0, 0.0)) << "24 bits";
    EXPECT_EQ(test::DebugText::last, "");
    EXPECT_TRUE(bitmap.ContainsColor(white));
    EXPECT_FALSE(bitmap.ContainsColor(red));
}

} // namespace
