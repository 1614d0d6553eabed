// Clips in the browser: any frame on demand, playing, saving and cancelling.
#include "host/browse/FileDialogs.h"
#include "host/browse/SaveJob.h"
#include "host/browse/Session.h"
#include "host/media/ClipReader.h"
#include "tests/host/TestFiles.h"

#include <vixavideofx/ClassIds.h>

#include <gtest/gtest.h>

#include <objbase.h>

using namespace vixahost;
using namespace vixahost::browse;
using namespace vixahost::test;

namespace {

TEST(BrowserClip, SeeksPlaysAndIsSavedOrCancelled)
{
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    {
        const ScratchFolder folder;
        ClipRecipe recipe;
        recipe.frames = 40;
        const auto file = folder / L"clip.avi";
        WriteBytes(file, MakeClip(recipe));
        Session session([] {});
        session.OpenFile(file);
        ASSERT_TRUE(session.Open().IsClip());
        for (const int frame : {0, 17, 39, 3}) {
            session.Seek(frame);
            for (int i = 0; i < 300 && session.Busy(); ++i)
                Sleep(10);
            EXPECT_EQ(*session.Latest().before, ClipFrame(recipe, frame)) << "frame " << frame;
        }
        session.Play(0);
        EXPECT_TRUE(session.Advance(500));
        EXPECT_EQ(session.Player().Position(), 3 + 14) << "half a second at 29.97 frames a second";

        SaveOrder order;
        order.source = file;
        order.stack = {{vixavideofx::CLSID_InvertColor, "Invert color", {7}}};
        order.target = folder / L"out.avi";
        SaveJob job(order, [] {});
        EXPECT_EQ(job.Wait(), "");
        EXPECT_EQ(job.Done(), 40);
        EXPECT_EQ(media::ClipReader(order.target).FrameCount(), 40);

        order.target = folder / L"cancelled.avi";
        // On a busy machine a job may be done before it is cancelled, but not every time.
        std::string said;
        for (int i = 0; i < 20 && said.empty(); ++i) {
            DeleteFileW(order.target.c_str());
            SaveJob stopped(order, [] {});
            stopped.Cancel();
            said = stopped.Wait();
        }
        EXPECT_TRUE(said.starts_with("Stopped before the end")) << said;
        EXPECT_EQ(folder.Names(), (std::vector<std::wstring>{L"clip.avi", L"out.avi"})) << "nothing is left over";
        order.target = file;
        EXPECT_ANY_THROW(SaveJob(order, [] {}));
    }
    CoUninitialize();
}

// Chosen colours are seen where the clip stands, are in what is saved, and end with the clip.
TEST(BrowserClip, ColoursOfYuvAreChosenAndSaved)
{
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    {
        const ScratchFolder folder;
        const auto file = folder / L"clip.y4m", copy = folder / L"copy%d.png";
        std::string clip = "YUV4MPEG2 W2 H1 F25:1 C444\n";
        for (const char* const frame : {"\x10\x20\x80\x80\x80\x80", "\x30\x40\x80\x80\x80\x80"})
            clip += "FRAME\n" + std::string(frame);
        WriteBytes(file, Bytes(clip.begin(), clip.end()));
        Session session([] {});
        const auto firstByte = [&] {
            for (int i = 0; i < 300 && session.Busy(); ++i)
                Sleep(10);
            return int(session.Latest().before->at(0));
        };
        session.OpenFile(file);
        ASSERT_EQ(session.Open().FrameCount(), 2);
        session.Seek(1);
        EXPECT_EQ(firstByte(), 37) << "0x30 in the limited range";
        session.SetColours({media::YuvMatrix::Bt709, media::YuvRange::Full});
        EXPECT_EQ(firstByte(), 0x30);
        EXPECT_EQ(session.Player().Position(), 1);
        SaveOrder order;
        order.source = file;
        order.choice = session.Choice();
        order.stack = {{vixavideofx::CLSID_InvertColor, "Invert color", {7}}};
        order.target = copy;
        EXPECT_EQ(SaveJob(order, [] {}).Wait(), "");
        EXPECT_EQ(OneOf({folder / L"copy2.png", folder / L"copy1.png"}), copy);
        EXPECT_EQ(OneOf({folder / L"copy.png", file}), folder / L"copy.png");
        session.OpenFile(copy);
        EXPECT_EQ(session.Open().FrameCount(), 2);
        EXPECT_EQ(firstByte(), 255 - 0x10);
        EXPECT_FALSE(session.Open().Yuv() || session.Choice().colours.matrix);
    }
    CoUninitialize();
}

} // namespace
