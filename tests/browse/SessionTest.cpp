// The browser without its window: the held graph, the stack that steers it, and saving.
#include "host/browse/Session.h"
#include "host/base/HostError.h"
#include "host/browse/Presets.h"
#include "host/browse/SaveJob.h"
#include "host/effects/StackFile.h"
#include "host/media/PictureFile.h"

#include <vixavideofx/ClassIds.h>
#include <vixavideofx/DataBlocks.h>

#include <gtest/gtest.h>

#include <objbase.h>

#include <set>

using namespace vixahost;
using namespace vixahost::browse;
using vixavideofx::CLSID_AddPixel;
using vixavideofx::CLSID_Emboss;
using vixavideofx::CLSID_InvertColor;
using vixavideofx::CLSID_SoftenFilter;

namespace {

class SessionTest : public testing::Test
{
protected:
    SessionTest() { CoInitializeEx(nullptr, COINIT_MULTITHREADED); }
    ~SessionTest() override { CoUninitialize(); }

    static LiveResult Settled(Session& session)
    {
        for (int i = 0; i < 500 && (session.Busy() || !session.Latest().after); ++i)
            Sleep(10);
        EXPECT_FALSE(session.Busy());
        return session.Latest();
    }

    static void Choose(Session& session, const GUID& effect)
    {
        const effects::CatalogueEntry& entry = *effects::FindEntry(session.Catalogue(), effect);
        session.Change([&](StackModel& stack) { stack.Choose(effects::StepOf(entry)); });
    }

    static void Set(Session& session, const std::vector<std::int32_t>& block)
    {
        session.Change([&](StackModel& stack) { stack.SetBlock(stack.Selected(), block, 0); });
    }
};

TEST_F(SessionTest, APictureFollowsItsParameters)
{
    std::atomic<int> results = 0;
    Session session([&] { ++results; });
    Choose(session, CLSID_InvertColor);
    const LiveResult untouched = Settled(session);
    EXPECT_EQ(*untouched.after, *untouched.before) << "with no colour chosen nothing changes";
    Set(session, {7});
    const LiveResult inverted = Settled(session);
    ASSERT_EQ(inverted.before->size(), inverted.after->size());
    for (std::size_t i = 0; i < inverted.before->size(); ++i) {
        if (i % 4 != 3) {
            ASSERT_EQ((*inverted.after)[i], 255 - (*inverted.before)[i]) << "byte " << i;
        }
    }
    EXPECT_GT(results, 1);

    // Twice inverted is the picture again; one of the two switched off is not.
    session.Change([](StackModel& stack) { stack.Add({CLSID_InvertColor, "", {7}}); });
    EXPECT_EQ(*Settled(session).after, *untouched.before);
    session.Change([](StackModel& stack) { stack.Switch(0, false); });
    EXPECT_EQ(*Settled(session).after, *inverted.after);
    session.Change([](StackModel& stack) { stack.Undo(); });
    EXPECT_EQ(*Settled(session).after, *untouched.before);
    session.Change([](StackModel& stack) {
        stack.Remove(0);
        stack.Remove(0);
    });
    EXPECT_EQ(*Settled(session).after, *untouched.before) << "an empty stack shows the picture as it is";
}

TEST_F(SessionTest, WhatCantBeShownChangesNothing)
{
    Session session([] {});
    Choose(session, CLSID_InvertColor);
    Set(session, {7});
    const LiveResult shown = Settled(session);
    EXPECT_THROW(session.Change([](StackModel& stack) { stack.Add({IID_IUnknown, "of no library", {}}); }), HostError);
    EXPECT_EQ(session.Stack().Items().size(), 1u);
    session.Push();
    EXPECT_EQ(*Settled(session).after, *shown.after);
}

TEST_F(SessionTest, AFailureIsSaidAndTheNextChangeShowsAgain)
{
    std::atomic<bool> fails = true;
    Session session([&] {
        if (fails)
            throw FailedJob("The sink gave up.");
    });
    for (int i = 0; i < 300 && session.Latest().failure.empty(); ++i)
        Sleep(10);
    const LiveResult failed = session.Latest();
    EXPECT_TRUE(failed.failure.starts_with("The sink gave up.")) << failed.failure;
    EXPECT_FALSE(session.Busy());
    fails = false;
    Choose(session, CLSID_InvertColor);
    Set(session, {7});
    EXPECT_EQ(Settled(session).failure, "");
}

TEST_F(SessionTest, AFrameInBandsIsTheSameFrame)
{
    const effects::EffectLibrary library;
    const media::FrameFormat format = {17, 41, 25, 1};
    const effects::EffectStack stack = {{CLSID_Emboss, "", {2}}, {CLSID_InvertColor, "", {7}}};
    SharedFrame results[2];
    for (const std::size_t bytes : {format.FrameBytes() / 5, format.FrameBytes()}) {
        LiveGraph graph(
            library, format, stack, 0, [] {}, bytes);
        for (const unsigned first : {0u, 1u}) { // the buffers of a frame before hold nothing back
            FrameBytes frame(format.FrameBytes());
            for (std::size_t i = 0; i < frame.size(); ++i)
                frame[i] = i % 4 == 3 ? std::uint8_t{0} : static_cast<std::uint8_t>(first + i * 7 + i / 68 * i);
            graph.Push(std::make_shared<const FrameBytes>(frame));
            for (int i = 0; i < 500 && graph.Busy(); ++i)
                Sleep(10);
        }
        results[bytes == format.FrameBytes()] = graph.Latest().after;
    }
    ASSERT_TRUE(results[0] && results[1]);
    EXPECT_TRUE(*results[0] == *results[1]);
}

TEST_F(SessionTest, OrderCounts)
{
    Session session([] {});
    session.Change([](StackModel& stack) {
        stack.Replace({{CLSID_AddPixel, "", {100, 100, 100, 0}}, {CLSID_InvertColor, "", {7}}});
    });
    const FrameBytes addedFirst = *Settled(session).after;
    session.Change([](StackModel& stack) { stack.Move(0, 1); });
    EXPECT_NE(*Settled(session).after, addedFirst);
}

TEST_F(SessionTest, EveryEffectRunsAndTheNamesFollowTheLanguage)
{
    Session session([] {});
    for (const effects::CatalogueEntry& entry : session.Catalogue()) {
        Choose(session, entry.classId);
        EXPECT_TRUE(Settled(session).after) << entry.englishName;
    }
    const std::wstring english = effects::FindEntry(session.Catalogue(), CLSID_SoftenFilter)->name;
    session.SetLanguage(MAKELANGID(LANG_GERMAN, SUBLANG_GERMAN));
    EXPECT_NE(effects::FindEntry(session.Catalogue(), CLSID_SoftenFilter)->name, english);
    EXPECT_GT(effects::InstalledLanguages(session.LibraryFile()).size(), 20u);
    EXPECT_THROW(session.OpenFile(L"no such picture.png"), FailedJob);
    EXPECT_TRUE(Settled(session).after) << "what was open stays open";
}

TEST_F(SessionTest, TheCatalogueStandsInGroupsAndOrder)
{
    const effects::EffectLibrary library;
    const auto catalogue = effects::ReadCatalogue(library);
    ASSERT_EQ(catalogue.size(), 13u);
    for (std::size_t i = 1; i < catalogue.size(); ++i) {
        EXPECT_LE(catalogue[i - 1].groupId, catalogue[i].groupId);
        if (catalogue[i - 1].groupId == catalogue[i].groupId) {
            EXPECT_LE(catalogue[i - 1].sortKey, catalogue[i].sortKey);
        }
    }
    for (const effects::CatalogueEntry& entry : catalogue) {
        EXPECT_FALSE(entry.name.empty() || entry.group.empty() || entry.icon.empty() || entry.defaults.empty());
        EXPECT_EQ(effects::FindEntry(catalogue, entry.englishName), &entry);
    }
    std::set<std::string> presets;
    for (const ShippedPreset& preset : ShippedPresets())
        presets.insert(effects::WriteStack(LoadPreset(preset, catalogue)));
    EXPECT_EQ(presets.size(), 12u) << "each preset is a stack of its own";
}

TEST_F(SessionTest, SavesWhatItShowsOrNothing)
{
    Session session([] {});
    Choose(session, CLSID_InvertColor);
    Set(session, {7});
    const LiveResult shown = Settled(session);
    SaveOrder order;
    order.still = session.Open().Still();
    order.stack = effects::SwitchedOn(session.Stack().Items());
    order.target = L"browse-saved.png";
    bool ended = false;
    SaveJob job(order, [&] { ended = true; });
    ASSERT_EQ(job.Wait(), "");
    EXPECT_TRUE(ended);
    EXPECT_EQ(job.Done(), job.Total());
    const media::Picture saved = media::ReadPicture(order.target);
    ASSERT_EQ(saved.pixels.size(), shown.after->size());
    for (int y = 0; y < saved.height; ++y)
        for (int x = 0; x < saved.width; ++x)
            for (int channel = 0; channel < 3; ++channel)
                ASSERT_EQ(
                    saved.Row(y)[x * 4 + channel],
                    (*shown.after)[static_cast<std::size_t>(((saved.height - 1 - y) * saved.width + x) * 4 + channel)]);
    DeleteFileW(order.target.c_str());

    order.target = L"no such folder/x.png";
    EXPECT_NE(SaveJob(order, [] {}).Wait(), "");
    order.target = L"x.gif";
    EXPECT_THROW(SaveJob(order, [] {}), WrongWords);
}

} // namespace
