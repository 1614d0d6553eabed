// Clips in the browser: any frame on demand, playing, saving and cancelling.
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

} // namespace
