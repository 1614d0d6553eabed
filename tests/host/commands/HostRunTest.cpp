// The real program from outside: its jobs, its complaints, its exit status, and what it leaves on the disk.
#include "host/base/TargetFile.h"
#include "host/base/Text.h"
#include "host/effects/EffectStack.h"
#include "host/fixtures/PixelModel.h"
#include "host/media/PictureFile.h"
#include "host/media/PictureFrames.h"
#include "host/media/YuvPixels.h"
#include "tests/host/TestFiles.h"
#include "tests/host/commands/Process.h"

#include <vixavideofx/ClassIds.h>

#include <gtest/gtest.h>
#include <objbase.h>

#include <algorithm>

namespace vixahost {
namespace {

using namespace test;

effects::EffectStep Step(const char* effect, std::initializer_list<const char*> settings = {})
{
    const effects::EffectLibrary library;
    return effects::StepOf(effects::ReadCatalogue(library), {effect, {settings.begin(), settings.end()}});
}

// The picture as it must come out, its alpha kept.
media::Picture Expected(const media::Picture& picture, const effects::EffectStack& stack)
{
    media::PictureReader reader(picture);
    Bytes frame(reader.Format().FrameBytes());
    reader.Read(frame);
    for (const effects::EffectStep& step : stack)
        frame = fixtures::ExpectedFrame(step.classId, step.block, frame, picture.width, picture.height);
    media::Picture result = picture;
    media::PictureWriter(result).Write(frame);
    return result;
}

class HostRun : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_MULTITHREADED)));
        media::WritePicture(folder / L"in.png", media::PictureFormat::Png, TestPicture(61, 47, 3));
    }
    void TearDown() override { CoUninitialize(); }

    Outcome Run(const std::vector<std::wstring>& words, const std::wstring& interruptWhen = L"",
                const Bytes& input = {})
    {
        return RunHost(folder.Path(), words, interruptWhen, input);
    }

    static void ExpectDone(const Outcome& outcome)
    {
        EXPECT_EQ(outcome.status, 0u);
        EXPECT_EQ(outcome.err, "");
    }

    ScratchFolder folder;
};

TEST_F(HostRun, PicturesOfEveryFormatGoThroughTheGraph)
{
    const media::Picture picture = media::ReadPicture(folder / L"in.png");
    const media::Picture wanted = Expected(picture, {Step("Emboss")});
    for (const wchar_t* format : {L".png", L".bmp", L".tif", L".jpg"}) {
        const std::wstring in = L"\x00e4\x4e2d in" + std::wstring(format), out = L"\x05d0 out" + std::wstring(format);
        media::WritePicture(folder / in, *media::PictureFormatOf(in), picture);
        ExpectDone(Run({L"apply", L"emboss", in, out}));
        const media::Picture result = media::ReadPicture(folder / out);
        ASSERT_EQ(result.width, picture.width);
        ASSERT_EQ(result.height, picture.height);
        if (*media::PictureFormatOf(out) != media::PictureFormat::Jpeg) {
            EXPECT_TRUE(result.pixels == wanted.pixels) << Utf8(format);
        }
    }
}

TEST_F(HostRun, AChainOfEffectsKeepsOrderSettingsAndTransparency)
{
    const media::Picture picture = TestPicture(40, 30, 9, true);
    media::WritePicture(folder / L"clear.png", media::PictureFormat::Png, picture);
    ExpectDone(Run({L"apply", L"Soften filter", L"--then", L"Gamma correction", L"--set", L"gamma=160", L"--then",
                    L"Invert color", L"--set", L"mask=all", L"clear.png", L"out.tif"}));
    const effects::EffectStack stack = {Step("Soften filter"), Step("Gamma correction", {"gamma=160"}),
                                        Step("Invert color", {"mask=all"})};
    EXPECT_TRUE(media::ReadPicture(folder / L"out.tif").pixels == Expected(picture, stack).pixels);
}

TEST_F(HostRun, VerboseTellsWhatTheGraphIsMadeOf)
{
    const Outcome outcome = Run({L"apply", L"--verbose", L"Emboss", L"--level", L"sse2", L"in.png", L"out.png"});
    EXPECT_EQ(outcome.status, 0u);
    EXPECT_EQ(outcome.out.find("The filter graph"), std::string::npos) << "standard output may be full of frames";
    const media::Picture picture = media::ReadPicture(folder / L"in.png");
    const std::string size = std::to_string(picture.width * picture.height * 4) + " bytes";
    for (const std::string& word :
         {std::string("\"Emboss\": SSE2, together"), std::string("MEDIASUBTYPE_RGB32, FORMAT_VideoInfo"),
          size + " a frame",
          "frames: 1 x " + size + ", aligned to 1, prefix 0, of the row's last filter, the same as before"})
        EXPECT_NE(outcome.err.find(word), std::string::npos) << word << "\n" << outcome.err;
    ExpectDone(Run({L"apply", L"Emboss", L"in.png", L"out.png"}));

    // The decoding graph runs in another process.
    WriteBytes(folder / L"in.mkv", MakeMatroska(JpegRecipe(2)));
    const std::string decoding = Run({L"apply", L"--verbose", L"Emboss", L"in.mkv", L"out.avi"}).err;
    EXPECT_EQ(decoding.find("The decoding graph:\n  \"Clip\"\n    from pin"), 0u) << decoding;
    for (const char* const word : {"none, the next filter reads bytes itself",
                                   "to pin \"In\"\n      type: MEDIATYPE_Video, MEDIASUBTYPE_RGB32", "\"Nowhere\""})
        EXPECT_NE(decoding.find(word), std::string::npos) << word << "\n" << decoding;
    ExpectDone(Run({L"apply", L"Emboss", L"in.mkv", L"out.avi"}));
}

TEST_F(HostRun, AClipKeepsEverythingButItsColours)
{
    ClipRecipe recipe;
    recipe.width = 40;
    recipe.height = 30;
    recipe.frames = 30;
    WriteBytes(folder / L"clip.avi", MakeClip(recipe));
    const Outcome outcome = Run({L"apply", L"Shift edges", L"--set", L"direction=vertical", L"clip.avi", L"out.AVI"});
    ExpectDone(outcome);
    EXPECT_NE(outcome.out.find("30 of 30 frames"), std::string::npos) << outcome.out;
    EXPECT_EQ(outcome.out.find('\r'), std::string::npos) << "a bar belongs on a terminal only";

    const ParsedClip clip = ParseClip(ReadBytes(folder / L"out.AVI"));
    EXPECT_EQ(clip.width, 40);
    EXPECT_EQ(clip.height, 30);
    EXPECT_EQ(std::uint64_t{clip.rate} * 1001, std::uint64_t{clip.scale} * 30000);
    EXPECT_TRUE(clip.sound == ClipSound(recipe));
    ASSERT_EQ(clip.frames.size(), 30u);
    const effects::EffectStep step = Step("Shift edges", {"direction=vertical"});
    for (int i = 0; i < 30; ++i) {
        const Bytes wanted = fixtures::ExpectedFrame(step.classId, step.block, ClipFrame(recipe, i), 40, 30);
        EXPECT_TRUE(clip.frames[static_cast<std::size_t>(i)] == wanted) << "frame " << i;
    }
    const std::string lost = Run({L"apply", L"Emboss", L"clip.avi", L"f%02d.bmp"}).err;
    EXPECT_NE(lost.find("ffmpeg -framerate 30000/1001 -start_number 1 -i \"f%02d.bmp\" -i \"clip.avi\" -map 0:v "
                        "-map 1:a -c:v ffv1 -c:a copy \"clip-with-sound.mkv\""),
              std::string::npos)
        << lost;
}

TEST_F(HostRun, FramesGoThroughStandardInputAndOutput)
{
    constexpr int width = 10, height = 6, count = 3;
    const effects::EffectStep step = Step("Emboss");
    const auto turned = [](const Bytes& frame) {
        Bytes other;
        for (std::size_t row = height; row-- > 0;)
            other.insert(other.end(), frame.begin() + std::ptrdiff_t(row * width * 4),
                         frame.begin() + std::ptrdiff_t((row + 1) * width * 4));
        return other;
    };
    const media::YuvPixels pixels(media::YuvLayout::I444, {media::YuvMatrix::Bt601, media::YuvRange::Full}, width,
                                  height);
    const std::string header = "YUV4MPEG2 W10 H6 F30000:1001 Ip A1:1 C444 XCOLORRANGE=FULL\n";
    Bytes bare, bareWanted, y4m(header.begin(), header.end()), y4mWanted = y4m;
    for (int i = 0; i < count; ++i) {
        Bytes frame(width * height * 4), planes(width * height * 3);
        for (std::size_t at = 0; at < frame.size(); ++at)
            frame[at] = static_cast<std::uint8_t>(at * 7 + std::size_t(i) * 26 + 13); // 10, 13, 26 are among them
        const auto append = [](Bytes& to, const Bytes& bytes) { to.insert(to.end(), bytes.begin(), bytes.end()); };
        append(bare, turned(frame));
        append(bareWanted, turned(fixtures::ExpectedFrame(step.classId, step.block, frame, width, height)));
        pixels.FromRgb(frame, planes);
        append(y4m, {'F', 'R', 'A', 'M', 'E', '\n'});
        append(y4m, planes);
        pixels.ToRgb(planes, frame);
        pixels.FromRgb(fixtures::ExpectedFrame(step.classId, step.block, frame, width, height), planes);
        append(y4mWanted, {'F', 'R', 'A', 'M', 'E', '\n'});
        append(y4mWanted, planes);
    }
    const auto bytes = [](const std::string& text) { return Bytes(text.begin(), text.end()); };
    Outcome outcome = Run({L"apply", L"Emboss", L"-", L"-", L"--format", L"rgb32", L"--size", L"10x6"}, L"", bare);
    EXPECT_EQ(outcome.status, 0u) << outcome.err;
    EXPECT_TRUE(bytes(outcome.out) == bareWanted);
    outcome = Run({L"apply", L"Emboss", L"-", L"-"}, L"", y4m);
    EXPECT_EQ(outcome.status, 0u) << outcome.err;
    EXPECT_NE(outcome.err.find("BT.601, full range"), std::string::npos) << outcome.err;
    EXPECT_TRUE(bytes(outcome.out) == y4mWanted);

    // A file between them, which doesn't appear when the frames end too early.
    ExpectDone(Run({L"apply", L"Emboss", L"-", L"out.avi"}, L"", y4m));
    EXPECT_EQ(ParseClip(ReadBytes(folder / L"out.avi")).frames.size(), std::size_t{count});
    const auto before = folder.Names();
    y4m.pop_back();
    for (const wchar_t* const target : {L"-", L"out.y4m"}) {
        outcome = Run({L"apply", L"Emboss", L"-", target}, L"", y4m);
        EXPECT_EQ(outcome.status, 1u);
        EXPECT_NE(outcome.err.find("Standard input ends in the middle of frame 2"), std::string::npos) << outcome.err;
    }
    EXPECT_EQ(folder.Names(), before);
    EXPECT_NE(Run({L"apply", L"Emboss", L"-", L"-"}, L"", bare).err.find("no y4m stream"), std::string::npos);
}

TEST_F(HostRun, NumberedPicturesAreAClip)
{
    const effects::EffectStep step = Step("Emboss");
    const auto write = [&](const wchar_t* name, int seed, int width = 20) {
        media::WritePicture(folder / name, *media::PictureFormatOf(name), TestPicture(width, 12, unsigned(seed)));
    };
    const wchar_t* const names[] = {L"in 9998.png", L"in 9999.png", L"in 10000.png"};
    for (int i = 0; i < 3; ++i)
        write(names[i], i);
    write(L"in 09997.png", 7); // another form of number
    ExpectDone(Run({L"apply", L"Emboss", L"in %04d.png", L"out%%%06d.bmp"}));
    const wchar_t* const results[] = {L"out%009998.bmp", L"out%009999.bmp", L"out%010000.bmp"};
    for (unsigned i = 0; i < 3; ++i)
        EXPECT_TRUE(media::ReadPicture(folder / results[i]).pixels == Expected(TestPicture(20, 12, i), {step}).pixels);
    ExpectDone(Run({L"apply", L"Emboss", L"in %04d.png", L"out.avi", L"--rate", L"30000/1001"}));
    const ParsedClip clip = ParseClip(ReadBytes(folder / L"out.avi"));
    EXPECT_EQ(clip.frames.size(), 3u);
    EXPECT_EQ(std::pair(clip.rate, clip.scale), std::pair(30000u, 1001u));
    ExpectDone(Run({L"apply", L"Emboss", L"out.avi", L"from clip%d.png"}));
    EXPECT_TRUE(std::filesystem::exists(folder / L"from clip1.png"));

    write(L"in 10003.png", 3);
    write(L"in 10007.png", 3);
    write(L"odd1.png", 1);
    write(L"odd2.png", 1, 21);
    const auto before = folder.Names();
    struct Case
    {
        std::vector<std::wstring> words;
        unsigned long status;
        const char* mentions;
    };
    for (const Case& wrong :
         {Case{{L"in %04d.png", L"x%d.png"}, 1, "no in 10001.png to in 10002.png, in 10004.png to in 10006.png."},
          {{L"odd%d.png", L"x%d.png"}, 1, "odd2.png measures 21 x 12 pixels, the first of its sequence 20 x 12"},
          {{L"none%d.png", L"x%d.png"}, 1, "no picture of the sequence none%d.png, such as none1.png"},
          {{L"odd%d.png", L"ODD%01d.png"}, 2, "same files"},
          {{L"odd1.png", L"x%d.png"}, 2, "is no clip"},
          {{L"out.avi", L"x%d.png", L"--rate", L"5"}, 2, "tells its own"}}) {
        std::vector<std::wstring> words = {L"apply", L"Emboss"};
        words.insert(words.end(), wrong.words.begin(), wrong.words.end());
        const Outcome outcome = Run(words);
        EXPECT_EQ(outcome.status, wrong.status) << outcome.err;
        EXPECT_NE(outcome.err.find(wrong.mentions), std::string::npos) << outcome.err;
        EXPECT_EQ(folder.Names(), before) << wrong.mentions;
    }
}

TEST_F(HostRun, BadInputIsToldInOneLineAndWritesNothing)
{
    WriteBytes(folder / L"empty.png", {});
    Bytes cut = ReadBytes(folder / L"in.png");
    cut.resize(cut.size() / 2);
    WriteBytes(folder / L"cut.png", cut);
    WriteBytes(folder / L"text.png", {'h', 'e', 'l', 'l', 'o'});
    Bytes clip = MakeClip({});
    WriteBytes(folder / L"clip.avi", clip);
    clip.resize(clip.size() - 100);
    WriteBytes(folder / L"cut.avi", clip);
    ClipRecipe foreign;
    std::copy_n("ZZZ9", 5, foreign.compression);
    WriteBytes(folder / L"foreign.avi", MakeClip(foreign));
    WriteBytes(folder / L"random.avi", Bytes(400, 0x5A));
    // A recording that was not ended: its pictures are there, but not what describes them.
    WriteBytes(folder / L"camera.mp4", {0, 0, 0, 8, 'f', 't', 'y', 'p', 0, 0, 0, 9, 'm', 'd', 'a', 't', 1});
    WriteBytes(folder / L"old.wmv", {0x30, 0x26, 0xB2, 0x75, 0x8E, 0x66, 0xCF, 0x11});
    ClipRecipe broken;
    broken.frames = 60;
    Bytes middle = MakeClip(broken);
    // A frame behind the middle is a third of its length by the index: the job fails when part of the output is
    // written already. An entry: name, flags, offset, length.
    const std::size_t index = middle.size() - 60 * 2 * 16;
    middle[index + 80 * 16 + 13] = 1;
    WriteBytes(folder / L"middle.avi", middle);
    std::filesystem::create_directory(folder / L"folder.png");
    Bytes other = ReadBytes(effects::LibraryBesideTheProgram());
    const std::size_t machine = static_cast<std::size_t>(other[0x3C]) + other[0x3D] * 256u + 4;
    other[machine] = static_cast<std::uint8_t>(other[machine] ^ 0x4C ^ 0x64); // i386 is 0x014C, AMD64 0x8664
    other[machine + 1] = static_cast<std::uint8_t>(other[machine + 1] ^ 0x01 ^ 0x86);
    WriteBytes(folder / L"other.dll", other);
    // With a host of that width beside it which the system doesn't start.
    std::filesystem::create_directory(folder / L"other");
    WriteBytes(folder / L"other/other.dll", other);
    WriteBytes(folder / L"other/vixahost.exe", other);
    const char* const otherWidth = sizeof(void*) == 4 ? "is a 64-bit library" : "is a 32-bit library";

    struct Case
    {
        std::vector<std::wstring> words;
        unsigned long status;
        const char* mentions;
    };
    const std::vector<Case> cases = {
        {{L"frobnicate"}, 2, "did you mean"},
        {{L"apply", L"Embos", L"in.png", L"out.png"}, 2, "\"Emboss\""},
        {{L"apply", L"Gamma correction", L"--set", L"gama=3", L"in.png", L"out.png"}, 2, "gamma (45 to 220)"},
        {{L"apply", L"Gamma correction", L"--set", L"gamma=3", L"in.png", L"out.png"}, 2, "45 to 220"},
        {{L"apply", L"Emboss", L"in.png"}, 2, "OUT"},
        {{L"apply", L"Emboss", L"in.png", L"out.xyz"}, 2, ".png"},
        {{L"apply", L"Emboss", L"in.png", L"out.avi"}, 2, "picture"},
        {{L"apply", L"Emboss", L"clip.avi", L"out.png"}, 2, ".avi"},
        {{L"apply", L"Emboss", L"in.png", L"in.png"}, 2, "same file"},
        {{L"apply", L"Emboss", L"in.png", L"./IN.PNG"}, 2, "same file"},
        {{L"apply", L"Emboss", L"in.png", folder.Path().native() + L"\\in.png"}, 2, "same file"},
        {{L"apply", L"Emboss", L"missing.png", L"out.png"}, 1, "missing.png"},
        {{L"apply", L"Emboss", L"folder.png", L"out.png"}, 1, "folder"},
        {{L"apply", L"Emboss", L"in.png", L"folder.png"}, 1, "folder"},
        {{L"apply", L"Emboss", L"empty.png", L"out.png"}, 1, "empty"},
        {{L"apply", L"Emboss", L"cut.png", L"out.png"}, 1, "a whole PNG"},
        {{L"apply", L"Emboss", L"text.png", L"out.png"}, 1, "PNG, BMP, JPEG or TIFF"},
        {{L"apply", L"Emboss", L"cut.avi", L"out.avi"}, 1, "cut short"},
        {{L"apply", L"Emboss", L"foreign.avi", L"out.avi"}, 3, "ZZZ9"},
        {{L"apply", L"Emboss", L"foreign.avi", L"out.avi"},
         3,
         R"(ffmpeg -i "foreign.avi" -c:v rawvideo -pix_fmt bgr24 -c:a pcm_s16le "foreign-rgb.avi")"},
        {{L"apply", L"Emboss", L"random.avi", L"out.avi"}, 1, "is no AVI clip although its name says so"},
        {{L"apply", L"Emboss", L"camera.mp4", L"out.png"}, 2, "is a clip"},
        {{L"apply", L"Emboss", L"camera.mp4", L"out.avi"}, 1, "holds no film"},
        {{L"apply", L"Emboss", L"old.wmv", L"out.avi"}, 3, "Windows Media"},
        {{L"apply", L"Emboss", L"middle.avi", L"out.avi"}, 1, "can't be decoded"},
        {{L"apply", L"Emboss", L"in.png", L"nowhere/out.png"}, 1, "nowhere"},
        {{L"apply", L"Emboss", L"clip.avi", L"nowhere/out.avi"}, 1, "nowhere"},
        {{L"validate", L"other.dll"}, 1, otherWidth},
        {{L"list", L"--dll", L"other.dll"}, 1, otherWidth},
        {{L"validate", L"other/other.dll"}, 1, otherWidth},
    };
    const auto before = folder.Names();
    const Bytes input = ReadBytes(folder / L"in.png");
    for (const Case& wrong : cases) {
        SCOPED_TRACE(testing::Message() << wrong.mentions);
        const Outcome outcome = Run(wrong.words);
        EXPECT_EQ(outcome.status, wrong.status) << outcome.err;
        EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
        EXPECT_NE(outcome.err.find(wrong.mentions), std::string::npos) << outcome.err;
        EXPECT_EQ(folder.Names(), before);
    }
    EXPECT_EQ(ReadBytes(folder / L"in.png"), input);
}

TEST_F(HostRun, AnInterruptedClipLeavesNothing)
{
    ClipRecipe recipe;
    recipe.width = 320;
    recipe.height = 240;
    recipe.frames = 1500;
    recipe.bits = 8;
    recipe.sound = false;
    WriteBytes(folder / L"clip.avi", MakeClip(recipe));
    WriteBytes(folder / L"out.avi", {1, 2, 3});
    const auto before = folder.Names();
    const Outcome outcome =
        Run({L"apply", L"Emboss", L"--then", L"Soften filter", L"clip.avi", L"out.avi"}, L"out.avi.partial");
    EXPECT_EQ(outcome.status, 1u) << outcome.out;
    EXPECT_NE(outcome.err.find("Stopped"), std::string::npos) << outcome.err;
    EXPECT_EQ(folder.Names(), before);
    EXPECT_EQ(ReadBytes(folder / L"out.avi"), (Bytes{1, 2, 3})) << "an older result stays";
}

TEST_F(HostRun, WhatAKilledRunLeftIsRemovedByTheNext)
{
    // One that nobody holds, one of a living run, and two files that only look alike.
    for (const wchar_t* const name : {L"out.png.partial-77", L"out.png.partial-x", L"other.png.partial-77"})
        WriteBytes(folder / name, {1});
    const TargetFile living(folder / L"out.png"), another(folder / L"out.png");
    EXPECT_NE(living.Temporary(), another.Temporary());
    ExpectDone(Run({L"apply", L"Emboss", L"in.png", L"out.png"}));
    std::vector<std::wstring> expected = {L"in.png",
                                          L"other.png.partial-77",
                                          L"out.png",
                                          L"out.png.partial-x",
                                          living.Temporary().filename(),
                                          another.Temporary().filename()};
    std::ranges::sort(expected);
    EXPECT_EQ(folder.Names(), expected);
}

TEST_F(HostRun, AFullDiskIsToldByItsNameAndTheResults)
{
    const std::string full = TargetFile(folder / L"out.avi").WriteFault(ERROR_DISK_FULL).what();
    EXPECT_NE(full.find("out.avi."), std::string::npos) << full;
    EXPECT_NE(full.find(":\\ is full"), std::string::npos) << full;
    EXPECT_EQ(full.find("partial"), std::string::npos) << full;
}

TEST_F(HostRun, WithoutWordsEveryEffectIsShown)
{
    const Outcome outcome = Run({});
    ExpectDone(outcome);
    const effects::EffectLibrary library;
    const auto catalogue = effects::ReadCatalogue(library);
    for (const effects::CatalogueEntry& effect : catalogue)
        EXPECT_NE(outcome.out.find(effect.englishName), std::string::npos) << effect.englishName;
    std::size_t pictures = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder / L"out")) {
        const media::Picture picture = media::ReadPicture(entry.path());
        EXPECT_GE(picture.width, 640);
        ++pictures;
    }
    EXPECT_EQ(pictures, catalogue.size() + 1) << "one for each, and a sheet";
    EXPECT_NE(outcome.out.find("\n" + std::to_string(pictures) + " pictures"), std::string::npos) << outcome.out;
    const Outcome list = Run({L"effects"});
    ExpectDone(list);
    EXPECT_NE(list.out.find("{C79C3183-D7F7-439A-98CC-33906A691708}"), std::string::npos);
    EXPECT_NE(list.out.find("45 to 220"), std::string::npos);
    const std::string width = std::to_string(8 * sizeof(void*));
    EXPECT_NE(Run({L"list"}).out.find(", for " + width + "-bit programs\n"), std::string::npos);
    EXPECT_NE(Run({L"list", L"--json"}).out.find("\"width\": " + width), std::string::npos);
}

TEST_F(HostRun, TheLibraryIsFreeWhenTheGraphIsGone)
{
    const effects::EffectLibrary library;
    {
        const auto filter = library.CreateFilter(vixavideofx::CLSID_Emboss, "Emboss");
        EXPECT_FALSE(library.CanUnload());
    }
    EXPECT_TRUE(library.CanUnload());
    EXPECT_THROW(effects::EffectLibrary(folder / L"in.png"), std::exception);
    EXPECT_THROW(library.CreateFilter(GUID{}, "Nothing"), std::exception);
}

} // namespace
} // namespace vixahost
