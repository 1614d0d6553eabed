// AVI clips: what is read from clips of several kinds, what is written, sound, damage.
#include "host/base/HostError.h"
#include "host/media/AviHeader.h"
#include "host/media/ClipReader.h"
#include "host/media/ClipWriter.h"
#include "host/media/Clips.h"
#include "host/media/GraphDecoder.h"
#include "tests/host/TestFiles.h"
#include "tests/support/ComTest.h"

#include <tlhelp32.h>

#include <algorithm>
#include <cstring>
#include <tuple>

namespace vixahost {
namespace {

using namespace test;

class ClipFile : public ::test::ComTest
{
protected:
    std::filesystem::path Make(const ClipRecipe& recipe)
    {
        auto file = folder / L"clip.avi";
        WriteBytes(file, MakeClip(recipe));
        return file;
    }

    ScratchFolder folder;
};

TEST_F(ClipFile, EveryKindOfRgbClipGivesItsFrames)
{
    std::vector<ClipRecipe> recipes(7);
    recipes[1].bits = 24;
    recipes[1].width = 17; // rows padded to 4 bytes
    recipes[2].bits = 8;
    recipes[2].width = 15;
    recipes[3].topDown = true;
    recipes[4].topDown = true;
    recipes[4].bits = 24;
    recipes[5].emptyFrame = 2;
    recipes[6].records = true;
    recipes[6].buffer = 1 << 20; // whatever their size, some programs suggest this
    for (const ClipRecipe& recipe : recipes) {
        SCOPED_TRACE(testing::Message() << recipe.bits << " bits, top-down " << recipe.topDown << ", empty frame "
                                        << recipe.emptyFrame);
        media::ClipReader reader(Make(recipe));
        EXPECT_EQ(reader.FrameCount(), recipe.frames);
        EXPECT_EQ(reader.Format().width, recipe.width);
        EXPECT_EQ(reader.Format().height, recipe.height);
        EXPECT_EQ(reader.Format().rate, 30000u);
        EXPECT_EQ(reader.Format().scale, 1001u);
        Bytes frame(reader.Format().FrameBytes());
        for (int i = 0; i < recipe.frames; ++i) {
            ASSERT_TRUE(reader.Read(frame));
            EXPECT_TRUE(frame == ClipFrame(recipe, i)) << "frame " << i;
        }
        EXPECT_FALSE(reader.Read(frame));
    }
}

TEST_F(ClipFile, AClipOfYuvIsReadAsAsked)
{
    ClipRecipe recipe;
    recipe.bits = 16;
    std::memcpy(recipe.compression, "YUY2", 5);
    const auto file = Make(recipe);
    Bytes stored, frame(ClipFrame(recipe, 0).size()), wanted(frame.size());
    for (int y = 0; y < recipe.height; ++y)
        for (int x = 0; x < recipe.width; ++x)
            stored.insert(stored.end(), {ClipByte(0, x, y, 0), ClipByte(0, x, y, 1)});
    for (const media::YuvChoice& choice : {media::YuvChoice(), {media::YuvMatrix::Bt709, media::YuvRange::Full}}) {
        media::ClipReader reader(file, choice);
        const auto colours = media::ColoursFor(choice, recipe.width, recipe.height);
        EXPECT_EQ(reader.Yuv()->colours, colours);
        ASSERT_TRUE(reader.Read(frame));
        media::YuvPixels(media::YuvLayout::Yuy2, colours, recipe.width, recipe.height).ToRgb(stored, wanted);
        EXPECT_TRUE(frame == wanted) << ColoursText(colours);
    }
}

TEST_F(ClipFile, ACompressedClipIsDecoded)
{
    ClipRecipe recipe;
    recipe.bits = 8;
    std::memcpy(recipe.compression, "MRLE", 5);
    media::ClipReader reader(Make(recipe));
    Bytes frame(reader.Format().FrameBytes());
    for (int i = 0; i < recipe.frames; ++i) {
        ASSERT_TRUE(reader.Read(frame));
        for (std::size_t at = 3; at < frame.size(); at += 4)
            frame[at] = 0; // a decoder may leave anything in the colourless byte
        EXPECT_TRUE(frame == ClipFrame(recipe, i)) << "frame " << i;
    }
}

// The graph says nothing of a stream that it has no decoder for.
TEST_F(ClipFile, SoundWithoutADecoderIsMissed)
{
    Bytes clip = MakeMatroska(JpegRecipe());
    const std::string_view known = "A_PCM/INT/LIT", unknown = "A_NOT/DECODED";
    std::ranges::copy(unknown, std::search(clip.begin(), clip.end(), known.begin(), known.end()));
    WriteBytes(folder / L"clip.mkv", clip);
    const auto reader = media::OpenClip(folder / L"clip.mkv");
    EXPECT_TRUE(reader->HasSound());
    EXPECT_TRUE(reader->Sound().empty());
}

// With GStreamer's decoders, which ./test installs.
TEST_F(ClipFile, ThePlatformsGraphDecodesEveryFrame)
{
    const ClipRecipe recipe = JpegRecipe();
    WriteBytes(folder / L"clip.avi", MakeClip(recipe));
    WriteBytes(folder / L"clip.mkv", MakeMatroska(recipe));
    WriteBytes(folder / L"late.mkv", MakeMatroska(recipe, 2)); // as where frames aren't stored in their order
    for (const wchar_t* const name : {L"clip.avi", L"clip.mkv", L"late.mkv"}) {
        const bool avi = media::IsAvi(folder / name);
        ASSERT_TRUE(media::HoldsClip(folder / name));
        const auto reader = media::OpenClip(folder / name);
        SCOPED_TRACE(testing::Message() << name);
        ASSERT_EQ(reader->FrameCount(), recipe.frames);
        EXPECT_TRUE(reader->HasSound());
        EXPECT_EQ(reader->AviPictures() != nullptr, avi);
        const media::FrameFormat format = reader->Format();
        ASSERT_EQ(std::tie(format.width, format.height, format.rate, format.scale), std::tuple(48, 32, 25u, 1u));
        Bytes frame(format.FrameBytes());
        const auto expect = [&](int index) {
            ASSERT_TRUE(reader->Read(frame)) << index;
            int most = 0;
            for (int row = 0; row < 32; ++row)
                for (std::size_t at = std::size_t(31 - row) * 48 * 4, end = at + 48 * 4; at < end; ++at)
                    most = std::max(most, std::abs(frame[at] - (at % 4 == 3 ? 0 : JpegGrey(recipe, index, row))));
            EXPECT_LE(most, 3) << "frame " << index; // the next one is lighter by 8
        };
        for (int index = 0; index < recipe.frames; ++index)
            expect(index);
        EXPECT_FALSE(reader->Read(frame));
        for (const int index : {13, 2, 3, 19}) {
            reader->Seek(index);
            expect(index);
        }
    }
    for (const auto& [interval, rate, scale] : {std::tuple(400'000, 25u, 1u),
                                                {333'667, 30'000u, 1001u},
                                                {417'083, 24'000u, 1001u},
                                                {166'667, 60u, 1u},
                                                {645'161, 10'000'000u, 645'161u},
                                                {0, 30u, 1u}}) {
        const media::FrameFormat found = media::RateOfInterval(interval);
        EXPECT_EQ(std::pair(found.rate, found.scale), std::pair(rate, scale)) << interval;
    }
}

// It stands to the pictures as in the clip; small differences are those of codecs, and do not count.
TEST_F(ClipFile, DecodedSoundIsKept)
{
    const ClipRecipe recipe = JpegRecipe();
    const Bytes sound = ClipSound(recipe);
    constexpr std::ptrdiff_t frameOfSound = 44100 / 25 * 4;
    for (const int late : {2, 10, -10}) {
        SCOPED_TRACE(late);
        WriteBytes(folder / L"clip.mkv", MakeMatroska(recipe, late));
        const auto reader = media::OpenClip(folder / L"clip.mkv");
        const auto target = media::CreateClip(folder / L"copy.avi", *reader);
        EXPECT_FALSE(target->losesSound);
        Bytes frame(reader->Format().FrameBytes());
        while (reader->Read(frame))
            target->writer->Write(frame);
        target->writer->Finish();
        target->Commit();
        const ParsedClip copy = ParseClip(ReadBytes(folder / L"copy.avi"));
        EXPECT_EQ(copy.frames.size(), std::size_t(recipe.frames));
        EXPECT_EQ(copy.soundSampleSize, 4u);
        EXPECT_EQ(copy.soundRate, copy.soundScale * 44100);
        Bytes wanted(late < 0 ? std::size_t(-late * frameOfSound) : 0);
        wanted.insert(wanted.end(), sound.begin() + (late == 10 ? late * frameOfSound : 0), sound.end());
        EXPECT_TRUE(copy.sound == wanted) << copy.sound.size() << " of " << wanted.size() << " bytes";
    }
}

TEST_F(ClipFile, ShallowDepthsBecomeRgb)
{
    struct Case
    {
        std::uint8_t bits;
        Bytes row, pixels; // of two pixels
    };
    const Case cases[] = {{1, {0x40, 0, 0, 0}, {1, 2, 3, 0, 4, 5, 6, 0}},
                          {4, {0x10, 0, 0, 0}, {4, 5, 6, 0, 1, 2, 3, 0}},
                          {16, {0x1F, 0x00, 0x41, 0x7C}, {255, 0, 0, 0, 8, 16, 255, 0}}};
    for (const Case& depth : cases) {
        Bytes format(40 + 64, 0);
        format[0] = 40;
        format[4] = 2;
        format[8] = format[12] = 1;
        format[14] = depth.bits;
        for (std::uint8_t i = 0; i < 8; ++i)
            format[40u + i] = static_cast<std::uint8_t>(i < 3 ? i + 1 : i > 3 && i < 7 ? i : 0); // two colours
        Bytes frame(8);
        media::ToRgb32(media::LayoutOfFormat(format), depth.row, frame);
        EXPECT_TRUE(frame == depth.pixels) << int{depth.bits} << " bits";
    }
}

// Calls the function with each decoder of this process's, opened.
template <typename Function>
int ForDecoders(Function function)
{
    int count = 0;
    const UniqueSnapshot processes(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    PROCESSENTRY32W entry = {};
    entry.dwSize = sizeof entry;
    for (BOOL more = Process32FirstW(processes.get(), &entry); more; more = Process32NextW(processes.get(), &entry))
        if (entry.th32ParentProcessID == GetCurrentProcessId() && !_wcsicmp(entry.szExeFile, L"vixahost.exe")) {
            const UniqueProcess child(OpenProcess(PROCESS_ALL_ACCESS, FALSE, entry.th32ProcessID));
            function(child.get());
            ++count;
        }
    return count;
}

TEST_F(ClipFile, ADecoderThatDiesOrHangsIsAMessageAndIsReplaced)
{
    ClipRecipe recipe;
    recipe.bits = 8;
    std::memcpy(recipe.compression, "MRLE", 5);
    media::FrameDecoder decoder(Make(recipe), media::FrameFormat{recipe.width, recipe.height}, 4000);
    Bytes frame = ClipFrame(recipe, 0);
    decoder.Decode(0, frame);
    const auto expectReplaced = [&](int index, const char* message) {
        try {
            decoder.Decode(index, frame);
            ADD_FAILURE() << "a frame without a decoder";
        } catch (const FailedJob& fault) {
            EXPECT_NE(std::string(fault.what()).find(message), std::string::npos) << fault.what();
        }
        decoder.Decode(index, frame);
        EXPECT_TRUE(frame == ClipFrame(recipe, index)) << message;
    };
    EXPECT_EQ(ForDecoders([](HANDLE child) { TerminateProcess(child, STATUS_ACCESS_VIOLATION); }), 1);
    expectReplaced(1, "decoder crashed (0xC0000005)");
    const auto suspend = reinterpret_cast<LONG(WINAPI*)(HANDLE)>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtSuspendProcess")));
    EXPECT_EQ(ForDecoders(suspend), 1);
    expectReplaced(2, "no answer for 4 s");
}

TEST_F(ClipFile, ACopyKeepsFramesRateLengthAndSound)
{
    for (const bool sound : {true, false}) {
        ClipRecipe recipe;
        recipe.frames = 40;
        recipe.sound = sound;
        const auto copy = folder / L"copy";
        {
            media::ClipReader reader(Make(recipe));
            ASSERT_EQ(reader.HasSound(), sound);
            TargetFile target(copy);
            media::ClipWriter writer(target, reader.Format(), reader.AviPictures(), reader.Sound());
            Bytes frame(reader.Format().FrameBytes());
            while (reader.Read(frame))
                writer.Write(frame);
            writer.Finish();
            target.Commit();
        }
        const ParsedClip clip = ParseClip(ReadBytes(copy));
        EXPECT_EQ(clip.width, recipe.width);
        EXPECT_EQ(clip.height, recipe.height);
        EXPECT_EQ(clip.bits, 32);
        EXPECT_EQ(clip.length, 40u);
        EXPECT_EQ(std::uint64_t{clip.rate} * 1001, std::uint64_t{clip.scale} * 30000);
        ASSERT_EQ(clip.frames.size(), 40u);
        for (int i = 0; i < 40; ++i)
            EXPECT_TRUE(clip.frames[static_cast<std::size_t>(i)] == ClipFrame(recipe, i)) << "frame " << i;
        if (sound) {
            const Bytes expected = ClipSound(recipe);
            EXPECT_TRUE(clip.sound == expected) << clip.sound.size() << " of " << expected.size() << " bytes";
            EXPECT_EQ(clip.soundLength, expected.size() / 4) << "counted in samples, not in blocks";
            EXPECT_EQ(clip.soundSampleSize, 4u);
            EXPECT_EQ(clip.soundRate, clip.soundScale * 44100);
            EXPECT_EQ(clip.soundFormat.size(), 18u);
        } else {
            EXPECT_TRUE(clip.sound.empty());
        }
    }
}

TEST_F(ClipFile, DamagedAndForeignClipsAreRefused)
{
    const Bytes whole = MakeClip({});
    const auto file = folder / L"clip.avi";
    const auto refused = [&](const Bytes& bytes, const char* what) {
        WriteBytes(file, bytes);
        EXPECT_THROW(
            {
                media::ClipReader reader(file);
                Bytes frame(reader.Format().FrameBytes());
                while (reader.Read(frame)) {
                }
            },
            FailedJob)
            << what;
    };
    for (const std::size_t size :
         {std::size_t{12}, std::size_t{40}, std::size_t{200}, whole.size() / 2, whole.size() - 1})
        refused(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)), "cut short");
    ClipRecipe recipe;
    std::memcpy(recipe.compression, "ZZZ9", 5);
    refused(MakeClip(recipe), "no decoder");
    Bytes timeless = whole;
    std::fill_n(timeless.begin() + 12 + 12 + 64 + 12 + 8 + 24, 4, std::uint8_t{0}); // the rate in the first strh
    refused(timeless, "no rate");
    // A row of this many pixels has 4 bytes when its bits are counted in 32 bits.
    Bytes wide = whole;
    const std::uint8_t format[] = {'s', 't', 'r', 'f'}, size[] = {1, 0, 0, 8, 1, 0, 0, 0};
    std::ranges::copy(size, std::search(wide.begin(), wide.end(), std::begin(format), std::end(format)) + 8 + 4);
    refused(wide, "a frame larger than its file");
    recipe = {};
    recipe.frames = 0;
    refused(MakeClip(recipe), "no frames");
    Bytes parts = whole;
    parts.insert(parts.end(), {'R', 'I', 'F', 'F', 4, 0, 0, 0, 'A', 'V', 'I', 'X'});
    refused(parts, "goes on in a second part");

    EXPECT_TRUE(media::IsAvi(file));
    WriteBytes(file, {'R', 'I', 'F', 'F'});
    EXPECT_FALSE(media::IsAvi(file));
    EXPECT_FALSE(media::IsAvi(folder / L"missing.avi"));
}

// Boxes of MP4: a size and a name, and for long ones (size 1) the size behind the name.
TEST_F(ClipFile, AFilmIsFoundBehindAnyBoxesOrIsMissing)
{
    const auto file = folder / L"clip.mp4";
    const Bytes kind = {0, 0, 0, 8, 'f', 't', 'y', 'p'}, film = {0, 0, 0, 8, 'm', 'o', 'o', 'v'};
    const Bytes longer = {0, 0, 0, 1, 'm', 'd', 'a', 't', 0, 0, 0, 0, 0, 0, 0, 17, 'x'};
    const Bytes endless = {0, 0, 0, 0, 'm', 'd', 'a', 't'}, tiny = {0, 0, 0, 7, 'f', 'r', 'e', 'e'};
    Bytes cut = longer, huge = longer;
    cut.pop_back();
    huge[8] = 0x80;
    struct Case
    {
        std::vector<Bytes> boxes;
        bool film;
    };
    const std::vector<Case> cases = {{{film}, true},
                                     {{kind, film}, true},
                                     {{kind, longer, film}, true},
                                     {{kind}, false},
                                     {{kind, longer}, false},
                                     {{kind, endless, film}, false},
                                     {{kind, tiny, film}, false},
                                     {{kind, cut}, false},
                                     {{kind, huge, film}, false}};
    for (const Case& each : cases) {
        Bytes bytes;
        for (const Bytes& box : each.boxes)
            bytes.insert(bytes.end(), box.begin(), box.end());
        WriteBytes(file, bytes);
        SCOPED_TRACE(&each - cases.data());
        if (each.film)
            EXPECT_NO_THROW(media::RefuseWithoutFilm(file));
        else
            EXPECT_THROW(media::RefuseWithoutFilm(file), FailedJob);
    }
}

TEST_F(ClipFile, TimesFollowTheRateWithoutDrift)
{
    const media::FrameFormat ntsc = {2, 2, 30000, 1001};
    EXPECT_EQ(ntsc.TimeOf(0), 0);
    EXPECT_EQ(ntsc.TimeOf(1), 333'666);
    EXPECT_EQ(ntsc.TimeOf(30000), std::int64_t{1001} * 10'000'000);
    const media::FrameFormat odd = {2, 2, 0xFFFFFFFF, 0xFFFFFFFE};
    EXPECT_EQ(odd.TimeOf(1'000'000) / 10'000'000, 999'999);
}

} // namespace
} // namespace vixahost
