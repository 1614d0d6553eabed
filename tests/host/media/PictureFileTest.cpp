// Picture files through the platform's codecs: round trips, transparency, orientation, damage.
#include "host/media/PictureFile.h"
#include "host/base/HostError.h"
#include "host/base/TargetFile.h"
#include "host/media/PictureFrames.h"
#include "host/media/SampleScene.h"
#include "tests/host/TestFiles.h"
#include "tests/support/ComTest.h"

#include <algorithm>
#include <cmath>
#include <set>

namespace vixahost {
namespace {

using namespace test;

class PictureFile : public ::test::ComTest
{
protected:
    static void ExpectRefused(const std::filesystem::path& file)
    {
        try {
            media::ReadPicture(file);
            ADD_FAILURE() << "it was read";
        } catch (const FailedJob& fault) {
            EXPECT_EQ(std::string(fault.what()).find('\n'), std::string::npos);
        }
    }

    ScratchFolder folder;
};

// A picture made darker by its own alpha would differ here.
media::Picture Opaque(media::Picture picture)
{
    for (std::size_t i = 3; i < picture.pixels.size(); i += 4)
        picture.pixels[i] = 255;
    return picture;
}

TEST_F(PictureFile, LosslessFormatsKeepEveryPixel)
{
    struct Case
    {
        const wchar_t* name;
        bool alpha; // kept
    };
    for (const Case& format : {Case{L"a.png", true}, {L"b.BMP", false}, {L"c.tif", true}, {L"d.tiff", true}}) {
        const auto kind = media::PictureFormatOf(format.name);
        ASSERT_TRUE(kind.has_value());
        for (const bool alpha : {false, true}) {
            const auto file = folder / format.name;
            // Odd sizes: rows of a bitmap file are padded.
            media::Picture picture = TestPicture(37, 23, 1, alpha);
            picture.dpiX = 300;
            picture.dpiY = 150;
            media::WritePicture(file, *kind, picture);
            const media::Picture back = media::ReadPicture(file);
            EXPECT_EQ(back.width, 37);
            EXPECT_EQ(back.height, 23);
            EXPECT_TRUE(back.pixels == (format.alpha ? picture : Opaque(picture)).pixels) << format.name;
            EXPECT_NEAR(back.dpiX, 300, 0.1);
            EXPECT_NEAR(back.dpiY, 150, 0.1);
            std::filesystem::remove(file);
        }
    }
    EXPECT_FALSE(media::PictureFormatOf(L"x.gif").has_value());
    EXPECT_FALSE(media::PictureFormatOf(L"png").has_value());
}

TEST_F(PictureFile, JpegStaysClose)
{
    media::Picture smooth(64, 40);
    for (int y = 0; y < smooth.height; ++y)
        for (int x = 0; x < smooth.width; ++x) {
            std::uint8_t* pixel = smooth.Row(y) + x * 4;
            pixel[0] = static_cast<std::uint8_t>(x * 4);
            pixel[1] = static_cast<std::uint8_t>(y * 6);
            pixel[2] = static_cast<std::uint8_t>(200 - x);
            pixel[3] = 255;
        }
    media::WritePicture(folder / L"a.jpg", media::PictureFormat::Jpeg, smooth);
    const media::Picture back = media::ReadPicture(folder / L"a.jpg");
    ASSERT_EQ(back.pixels.size(), smooth.pixels.size());
    int worst = 0;
    for (std::size_t i = 0; i < back.pixels.size(); ++i)
        worst = std::max(worst, std::abs(back.pixels[i] - smooth.pixels[i]));
    EXPECT_LE(worst, 12);
}

TEST_F(PictureFile, APictureOnItsSideIsTurnedUpright)
{
    // A quarter of the picture is bright: where it ends up shows the turn.
    media::Picture lying(32, 16);
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 32; ++x)
            for (int channel = 0; channel < 4; ++channel)
                lying.Row(y)[x * 4 + channel] = channel == 3 || (x < 16 && y < 8) ? 255 : 0;
    media::WritePicture(folder / L"plain.jpg", media::PictureFormat::Jpeg, lying);
    const Bytes plain = ReadBytes(folder / L"plain.jpg");

    // The corner in which the bright quarter (stored at the upper left) is to be seen, for each value of the tag.
    struct Case
    {
        std::uint8_t tag;
        bool sideways, right, bottom;
    };
    for (const Case& turn : {Case{1, false, false, false},
                             {2, false, true, false},
                             {3, false, true, true},
                             {4, false, false, true},
                             {5, true, false, false},
                             {6, true, true, false},
                             {7, true, true, true},
                             {8, true, false, true},
                             {9, false, false, false}}) {
        const Bytes exif = {0xFF, 0xE1,     0,    34,   'E', 'x', 'i', 'f', 0, 0, // application segment 1
                            'M',  'M',      0,    42,   0,   0,   0,   8,         // header, directory at 8
                            0,    1,        0x01, 0x12, 0,   3,   0,   0,   0, 1, // one entry: orientation, one short
                            0,    turn.tag, 0,    0,    0,   0,   0,   0};
        Bytes file(plain.begin(), plain.begin() + 2);
        file.insert(file.end(), exif.begin(), exif.end());
        file.insert(file.end(), plain.begin() + 2, plain.end());
        WriteBytes(folder / L"turned.jpg", file);
        const media::Picture upright = media::ReadPicture(folder / L"turned.jpg");
        ASSERT_EQ(upright.width, turn.sideways ? 16 : 32) << int(turn.tag);
        ASSERT_EQ(upright.height, turn.sideways ? 32 : 16) << int(turn.tag);
        const int x = turn.right ? upright.width - 4 : 3, y = turn.bottom ? upright.height - 4 : 3;
        EXPECT_GT(upright.Row(y)[x * 4], 200) << int(turn.tag);
        EXPECT_LT(upright.Row(upright.height - 1 - y)[x * 4], 50) << int(turn.tag);
        EXPECT_LT(upright.Row(y)[(upright.width - 1 - x) * 4], 50) << int(turn.tag);
    }
}

TEST_F(PictureFile, DamagedFilesAreRefused)
{
    for (const wchar_t* name : {L"a.png", L"a.bmp", L"a.jpg", L"a.tif"}) {
        const auto file = folder / name;
        media::WritePicture(file, *media::PictureFormatOf(file), TestPicture(120, 90, 7));
        const Bytes whole = ReadBytes(file);
        for (const double part : {0.001, 0.02, 0.5, 0.9}) {
            SCOPED_TRACE(testing::Message() << file.string() << " cut at " << part);
            WriteBytes(file, Bytes(whole.begin(), whole.begin() + std::ptrdiff_t(double(whole.size()) * part)));
            ExpectRefused(file);
        }
    }
    WriteBytes(folder / L"text.png", {'h', 'e', 'l', 'l', 'o', ' ', 'w', 'o', 'r', 'l', 'd'});
    ExpectRefused(folder / L"text.png");
    ExpectRefused(folder / L"missing.png");
    // A GIF of one pixel: the system can read it, the host says that it doesn't.
    WriteBytes(folder / L"a.gif", {'G', 'I',  'F', '8', '9', 'a', 1, 0, 1, 0, 0x80, 0, 0, 255,  255, 255, 0,   0,
                                   0,   0x2C, 0,   0,   0,   0,   1, 0, 1, 0, 0,    2, 2, 0x44, 1,   0,   0x3B});
    ExpectRefused(folder / L"a.gif");
}

// The system's codecs would make too little room for these and fill it.
TEST_F(PictureFile, SizesThatCodecsCantCountAreRefusedUnseen)
{
    const auto expectUncounted = [&](const wchar_t* name, const Bytes& start) {
        WriteBytes(folder / name, start);
        try {
            media::ReadPicture(folder / name);
            ADD_FAILURE() << "it was read";
        } catch (const FailedJob& fault) {
            EXPECT_NE(std::string(fault.what()).find("40000 x 27000"), std::string::npos) << fault.what();
        }
    };
    for (const std::uint8_t bits : Bytes{8, 16})
        expectUncounted(L"a.png", {0x89, 'P', 'N', 'G',  13,   10, 26, 10,   0,    0,    0, 13, 'I', 'H', 'D',
                                   'R',  0,   0,   0x9C, 0x40, 0,  0,  0x69, 0x78, bits, 2, 0,  0,   0});
    // With what codecs skip before the frame's header.
    expectUncounted(L"a.jpg", {0xFF, 0xD8, 0xFF, 0xE0, 0,    4,    1,    2,    7, 0xFF, 0xFF, 0xD0, 0xFF,
                               0xC2, 0,    11,   8,    0x69, 0x78, 0x9C, 0x40, 1, 1,    0x11, 0});
}

#ifdef _WIN64
// For a machine with 10 GB to spare: codecs that count a row's place with a sign would give wrong rows from 23,860 on.
TEST_F(PictureFile, DISABLED_GiganticPicturesKeepEveryRow)
{
    const auto file = folder / L"gigantic.png";
    constexpr int side = 30'000;
    const auto fill = [](int y, std::span<std::uint8_t> row) {
        for (std::size_t i = 0; i < row.size(); ++i)
            row[i] = i % 4 == 3 ? 255 : static_cast<std::uint8_t>(static_cast<std::size_t>(y) >> (i % 4 * 4));
    };
    {
        media::Picture picture(side, side);
        for (int y = 0; y < side; ++y)
            fill(y, {picture.Row(y), picture.RowBytes()});
        media::WritePicture(file, media::PictureFormat::Png, picture);
        EXPECT_THROW(media::WritePicture(folder / L"gigantic.tif", media::PictureFormat::Tiff, picture), FailedJob);
    }
    const media::Picture back = media::ReadPicture(file);
    ASSERT_EQ(back.height, side);
    Bytes row(back.RowBytes());
    for (int y = 0; y < side; ++y) {
        fill(y, row);
        ASSERT_TRUE(std::equal(row.begin(), row.end(), back.Row(y))) << y;
    }
}
#endif

TEST_F(PictureFile, FramesAreBottomUpAndLeaveAlphaAside)
{
    const media::Picture picture = TestPicture(5, 3, 11, true);
    media::PictureReader reader(picture, 2);
    Bytes frame(reader.Format().FrameBytes(), 0xEE);
    ASSERT_TRUE(reader.Read(frame));
    for (int x = 0; x < 5; ++x) {
        EXPECT_TRUE(std::equal(frame.begin() + x * 4, frame.begin() + x * 4 + 3, picture.Row(2) + x * 4));
        EXPECT_EQ(frame[static_cast<std::size_t>(x) * 4 + 3], 0);
    }
    EXPECT_TRUE(reader.Read(frame));
    EXPECT_FALSE(reader.Read(frame));

    for (std::uint8_t& byte : frame)
        byte = static_cast<std::uint8_t>(255 - byte);
    media::Picture changed = picture;
    media::PictureWriter(changed).Write(frame);
    for (std::size_t i = 0; i < picture.pixels.size(); ++i)
        EXPECT_EQ(changed.pixels[i], i % 4 == 3 ? picture.pixels[i] : 255 - picture.pixels[i]);
    EXPECT_THROW(media::PictureWriter(changed).Write(Bytes(4)), FailedJob);
}

TEST_F(PictureFile, ATargetAppearsOnlyWhenCommitted)
{
    const auto file = folder / L"out.bin";
    WriteBytes(file, {1, 2, 3});
    {
        const TargetFile target(file);
        WriteBytes(target.Temporary(), {9});
    }
    EXPECT_EQ(ReadBytes(file), (Bytes{1, 2, 3}));
    EXPECT_EQ(folder.Names().size(), 1u);
    {
        TargetFile target(file);
        WriteBytes(target.Temporary(), {9});
        target.Commit();
    }
    EXPECT_EQ(ReadBytes(file), Bytes{9});
    EXPECT_EQ(folder.Names().size(), 1u);
    EXPECT_THROW(TargetFile(folder / L"none/out.bin"), FailedJob);
    EXPECT_THROW(TargetFile(folder.Path()), FailedJob);

    EXPECT_TRUE(IsSameFile(file, folder.Path() / L"." / L"OUT.BIN"));
    EXPECT_TRUE(IsSameFile(file, folder.Path() / L".." / folder.Path().filename() / L"out.bin"));
    EXPECT_FALSE(IsSameFile(file, folder / L"other.bin"));
}

TEST_F(PictureFile, TheSampleSceneHasSomethingForEveryEffect)
{
    const media::Picture scene = media::DrawSampleScene();
    ASSERT_EQ(scene.width, 640);
    ASSERT_EQ(scene.height, 480);
    EXPECT_FALSE(media::HasAlpha(scene));
    std::set<std::uint32_t> colours;
    for (std::size_t i = 0; i < scene.pixels.size(); i += 4)
        colours.insert(RGB(scene.pixels[i], scene.pixels[i + 1], scene.pixels[i + 2]));
    EXPECT_GT(colours.size(), 10'000u) << "ramps, wheel and balls have many colours";
    // The eight bars, from the left: white, yellow, cyan, green, magenta, red, blue, black.
    const std::uint32_t bars[] = {0xFFFFFF, 0xFFFF00, 0x00FFFF, 0x00FF00, 0xFF00FF, 0xFF0000, 0x0000FF, 0x000000};
    for (int bar = 0; bar < 8; ++bar) {
        const std::uint8_t* pixel = scene.Row(40) + (bar * 80 + 40) * 4;
        EXPECT_EQ(static_cast<std::uint32_t>(pixel[0] | pixel[1] << 8 | pixel[2] << 16), bars[bar]) << bar;
    }
    // Text was drawn: the light panel holds dark pixels.
    int dark = 0;
    for (int x = 8; x < 300; ++x)
        for (int y = 364; y < 400; ++y)
            dark += scene.Row(y)[x * 4] < 80;
    EXPECT_GT(dark, 300);
}

} // namespace
} // namespace vixahost
