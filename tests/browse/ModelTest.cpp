// The browser's plain parts: the stack with its history, the player's clock, and the drawing of a fitted frame.
#include "host/browse/Medium.h"
#include "host/browse/Menu.h"
#include "host/browse/Resample.h"
#include "host/browse/StackModel.h"
#include "host/browse/UserFiles.h"
#include "tests/host/TestFiles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <numeric>

using namespace vixahost;
using namespace vixahost::browse;

namespace {

constexpr GUID one = {1, 0, 0, {}}, two = {2, 0, 0, {}}, three = {3, 0, 0, {}};

std::vector<unsigned long> Row(const StackModel& stack)
{
    std::vector<unsigned long> row;
    for (const effects::EffectStep& item : stack.Items())
        row.push_back(item.classId.Data1);
    return row;
}

using Numbers = std::vector<unsigned long>;

TEST(StackModel, AddsAfterTheSelectionAndMovesItAlong)
{
    StackModel stack;
    EXPECT_EQ(stack.Current(), nullptr);
    stack.Add({one, "", {1}});
    stack.Add({two, "", {2}});
    stack.Select(0);
    stack.Add({three, "", {3}});
    EXPECT_EQ(Row(stack), (Numbers{1, 3, 2}));
    EXPECT_EQ(stack.Selected(), 1u);
    EXPECT_TRUE(stack.Move(1, 1));
    EXPECT_EQ(Row(stack), (Numbers{1, 2, 3}));
    EXPECT_EQ(stack.Selected(), 2u);
    EXPECT_FALSE(stack.Move(2, 1)) << "beyond the end";
    EXPECT_FALSE(stack.Move(0, -1)) << "before the beginning";
    stack.Remove(2);
    EXPECT_EQ(stack.Selected(), 1u) << "the last one is gone, so the one before it is selected";
    stack.Remove(0);
    EXPECT_EQ(stack.Current()->classId.Data1, 2u) << "the selected step stays selected when one before it goes";
    stack.Remove(7);
    stack.Select(7);
    EXPECT_EQ(Row(stack), (Numbers{2}));
    stack.Remove(0);
    EXPECT_EQ(stack.Selected(), StackModel::none);
}

TEST(StackModel, AnEffectThatComesBackHasItsLastParameters)
{
    StackModel stack;
    EXPECT_TRUE(stack.Choose({one, "", {100}}));
    EXPECT_FALSE(stack.Choose({one, "", {100}})) << "it is there already";
    stack.SetBlock(0, {150}, 0);
    EXPECT_TRUE(stack.Choose({two, "", {0}}));
    EXPECT_EQ(stack.Current()->block, std::vector<std::int32_t>{0});
    EXPECT_TRUE(stack.Choose({one, "", {100}}));
    EXPECT_EQ(stack.Current()->block, std::vector<std::int32_t>{150});
    EXPECT_EQ(stack.Items().size(), 1u) << "choosing takes the place of the selected step";
}

TEST(StackModel, UndoesAndRedoesEveryChange)
{
    StackModel stack({{one, "", {100}}});
    EXPECT_FALSE(stack.CanUndo());
    const auto before = stack.Items();
    stack.SetBlock(0, {120}, 1000);
    stack.Add({two, "", {2}});
    stack.Switch(0, false);
    stack.Move(0, 1);
    stack.Replace({{three, "", {3}}});
    const auto after = stack.Items();
    EXPECT_FALSE(stack.SetBlock(0, {3}, 2000)) << "the same block again is no change";
    int steps = 0;
    while (stack.Undo())
        ++steps;
    EXPECT_EQ(steps, 5);
    EXPECT_EQ(stack.Items(), before);
    while (stack.Redo())
        --steps;
    EXPECT_EQ(steps, 0);
    EXPECT_EQ(stack.Items(), after);
    stack.Undo();
    stack.Switch(1, true);
    EXPECT_FALSE(stack.CanRedo()) << "a new change takes the place of what was undone";
}

TEST(StackModel, MergesWhatAHeldKeyDoesToOneStep)
{
    StackModel stack({{one, "", {0}}, {two, "", {0}}});
    for (int i = 1; i <= 20; ++i)
        stack.SetBlock(0, {i}, 1000 + 30 * static_cast<std::uint64_t>(i));
    stack.SetBlock(1, {5}, 1610);  // another step: a change of its own
    stack.SetBlock(1, {6}, 60000); // much later: another
    stack.Undo();
    EXPECT_EQ(stack.Items()[1].block[0], 5);
    stack.Undo();
    EXPECT_EQ(stack.Items()[1].block[0], 0);
    EXPECT_EQ(stack.Items()[0].block[0], 20);
    stack.Undo();
    EXPECT_EQ(stack.Items()[0].block[0], 0);
    EXPECT_FALSE(stack.CanUndo());
}

TEST(Player, ShowsTheFrameThatIsDue)
{
    const media::FrameFormat film = {4, 4, 24, 1};
    Player player(film, 48);
    EXPECT_EQ(player.Advance(500), 0) << "it stands still until it is played";
    player.Play(1000);
    EXPECT_EQ(player.Advance(1041), 0);
    EXPECT_EQ(player.Advance(1042), 1);
    EXPECT_EQ(player.Advance(2000), 24) << "frames are left out rather than shown late";
    player.Pause();
    EXPECT_EQ(player.Advance(9000), 24);
    player.Seek(1000);
    EXPECT_EQ(player.Position(), 47);
    player.Play(10'000);
    EXPECT_EQ(player.Position(), 0) << "from the end it begins anew";
    EXPECT_EQ(player.Advance(60'000), 47);
    EXPECT_FALSE(player.Playing());
    player.Seek(-5);
    EXPECT_EQ(player.Position(), 0);
    EXPECT_EQ(TimeText(film, 36, 1800), "0:01.50 / 1:15.00");

    Player picture;
    picture.Play(0);
    EXPECT_FALSE(picture.Playing()) << "one frame is no clip";
}

TEST(Texts, EveryLanguageHasThemAll)
{
    const auto places = [](const std::wstring& text) { return std::ranges::count(text, L'%'); };
    for (const effects::LanguageCode& language : effects::LanguageCodes()) {
        int english = 0;
        for (UINT id = IDT_FILE; id < IDT_END; ++id) {
            const std::wstring text = Texts::Find(id, language.id), master = Texts::Find(id, 0x0409);
            EXPECT_FALSE(text.empty()) << language.code << ", text " << id;
            EXPECT_EQ(places(text), places(master)) << language.code << ", text " << id;
            EXPECT_EQ(text.ends_with(L"..."), master.ends_with(L"...")) << language.code << ", text " << id;
            english += text == master;
        }
        EXPECT_TRUE(english < 12 || language.id == 0x0409) << language.code << ": " << english << " texts are English";
    }
    EXPECT_EQ(Texts()(IDT_PROGRESS, {L"3", L"%2"}), L"3 of %2") << "what is put in isn't looked at again";
}

TEST(Menu, GivesEveryEntryAKeyOfItsOwn)
{
    std::wstring used;
    EXPECT_EQ(WithAccessKey(L"Save", L"Save", used), L"&Save");
    EXPECT_EQ(WithAccessKey(L"save as...", L"", used), L"s&ave as...");
    EXPECT_EQ(WithAccessKey(L"\u958b\u304f...", L"Open", used), L"\u958b\u304f(&O)...");
    EXPECT_EQ(WithAccessKey(L"SAVO", L"", used), L"SA&VO");
    EXPECT_EQ(WithAccessKey(L"SAV", L"", used), L"SAV") << "none is left";
}

TEST(UserFiles, RememberWhatWasOpenedAndSuggestNewNames)
{
    const test::ScratchFolder folder;
    const auto kept = folder / L"kept";
    RecentFiles recent(kept);
    for (int i = 0; i < 10; ++i)
        recent.Enter(folder / (std::to_wstring(i) + L"\u00e4.png"));
    recent.Enter(folder / L"5\u00c4.PNG");
    ASSERT_EQ(RecentFiles(kept).List().size(), 8u);
    EXPECT_EQ(RecentFiles(kept).List()[0], folder / L"5\u00c4.PNG") << "the same file again is first, not twice";
    EXPECT_EQ(RecentFiles(kept).List()[1], folder / L"9\u00e4.png");

    EXPECT_EQ(SuggestedName(folder / L"a.jpg", L"emboss", L".png"), folder / L"a-emboss.png");
    test::WriteBytes(folder / L"a-emboss.png", {});
    EXPECT_EQ(SuggestedName(folder / L"a.jpg", L"emboss", L".png"), folder / L"a-emboss-2.png");

    const auto program = folder / L"build" / L"bin";
    std::filesystem::create_directories(folder / L"docs/effects");
    for (const wchar_t* const page : {L"README.md", L"docs/effects/README.md", L"docs/effects/emboss.md"}) {
        test::WriteBytes(folder / page, {});
        EXPECT_TRUE(std::filesystem::equivalent(HelpPage(program, "emboss"), folder / page)) << "the best that exists";
    }
}

TEST(Resample, FitsAPictureIntoItsPane)
{
    const auto wide = Fit(1920, 1080, 800, 800, 64);
    EXPECT_EQ(wide.width, 800);
    EXPECT_EQ(wide.height, 450);
    EXPECT_EQ(wide.top, 175);
    const auto small = Fit(100, 50, 800, 800, 1);
    EXPECT_EQ(small.width, 100);
    EXPECT_EQ(small.left, 350);
    EXPECT_EQ(Fit(30000, 1, 100, 100, 64).height, 1) << "nothing is fitted away";
    EXPECT_EQ(Fit(0, 10, 100, 100, 64).width, 0);
    const auto zoomed = Zoomed(400, 50, 200, 100, {2, 0.25, 0.5});
    EXPECT_EQ(zoomed.left, 100 - 200) << "the point at a quarter is in the middle";
    EXPECT_EQ(zoomed.width, 800);
    EXPECT_EQ(zoomed.top, 0);
    EXPECT_EQ(Zoomed(400, 50, 200, 100, {2, 1, 0.5}).left, 200 - 800) << "no farther than the edge";
    EXPECT_EQ(Zoomed(400, 50, 200, 100, {0.25, 1, 1}).left, 50) << "what fits is centred";
}

struct Pane
{
    std::vector<std::uint32_t> pixels;
    PaneView view;
    Pane(int width, int height)
        : pixels(static_cast<std::size_t>(width * height), 0xDEADBEEF), view{pixels.data(), width, height}
    {
    }
    std::uint32_t At(int x, int y) const { return pixels[static_cast<std::size_t>(y * view.width + x)]; }
};

std::vector<std::uint8_t> Bytes(const std::vector<std::uint32_t>& pixels)
{
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(pixels.data());
    return {bytes, bytes + pixels.size() * 4};
}

TEST(Resample, InItsOwnSizeEveryPixelStays)
{
    std::vector<std::uint32_t> frame(12);
    std::iota(frame.begin(), frame.end(), 0x00102030u);
    const auto bytes = Bytes(frame);
    Pane pane(6, 5);
    DrawFrame({bytes, 4, 3}, {1, 1, 4, 3}, 0, 6, pane.view);
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 4; ++x)
            EXPECT_EQ(pane.At(1 + x, 1 + y), frame[static_cast<std::size_t>((2 - y) * 4 + x)])
                << "the last row of the frame is the topmost: " << x << ", " << y;
    EXPECT_EQ(pane.At(0, 1), 0xDEADBEEF) << "beside the picture nothing is drawn";
    EXPECT_EQ(pane.At(5, 1), 0xDEADBEEF);
    EXPECT_EQ(pane.At(1, 4), 0xDEADBEEF);
}

TEST(Resample, ReducedAWhiteFrameStaysWhiteAndAChequerBecomesGrey)
{
    for (const int across : {2, 3, 5})
        for (const int down : {1, 2, 3, 7}) {
            const int width = 6 * across, height = 4 * down;
            const auto white = Bytes(std::vector<std::uint32_t>(static_cast<std::size_t>(width * height), 0x00FFFFFF));
            Pane pane(6, 4);
            DrawFrame({white, width, height}, {0, 0, 6, 4}, 0, 6, pane.view);
            for (const std::uint32_t pixel : pane.pixels)
                ASSERT_EQ(pixel, 0x00FFFFFFu) << across << " by " << down;
        }
    std::vector<std::uint32_t> chequer(64);
    for (std::size_t i = 0; i < 64; ++i)
        chequer[i] = (i + i / 8) % 2 ? 0x00FEFEFE : 0;
    const auto bytes = Bytes(chequer);
    Pane pane(4, 4);
    DrawFrame({bytes, 8, 8}, {0, 0, 4, 4}, 1, 3, pane.view);
    EXPECT_EQ(pane.At(1, 2), 0x007F7F7Fu);
    EXPECT_EQ(pane.At(0, 0), 0xDEADBEEF) << "only the columns asked for";
    EXPECT_EQ(pane.At(3, 0), 0xDEADBEEF);
}

TEST(Resample, StaysInsideThePaneAndTheFrame)
{
    const auto bytes = Bytes(std::vector<std::uint32_t>(16, 0x00FFFFFF));
    Pane pane(4, 4);
    DrawFrame({bytes, 4, 4}, {-6, -6, 16, 16}, -100, 100, pane.view); // enlarged beyond every edge
    for (const std::uint32_t pixel : pane.pixels)
        EXPECT_EQ(pixel, 0x00FFFFFFu);
    Pane untouched(4, 4);
    DrawFrame({bytes, 5, 4}, {0, 0, 4, 4}, 0, 4, untouched.view); // fewer bytes than the frame claims
    DrawFrame({bytes, 4, 4}, {0, 0, 4, 4}, 3, 1, untouched.view);
    DrawFrame({bytes, 4, 4}, {}, 0, 4, untouched.view);
    for (const std::uint32_t pixel : untouched.pixels)
        EXPECT_EQ(pixel, 0xDEADBEEF);
}

} // namespace
