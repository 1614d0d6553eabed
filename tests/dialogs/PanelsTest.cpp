// What each panel shows, writes and announces when it is used.
#include "tests/dialogs/PanelFixture.h"

#include <gtest/gtest.h>

#include <cstring>
#include <set>

namespace {

using Blocks = std::vector<Block>;

class Panels : public testing::Test
{
protected:
    // The blocks written since the last call; there must have been a notification for each, without data.
    Blocks Written(RecordedSet& set)
    {
        EXPECT_EQ(static_cast<int>(set.history.size()), std::exchange(host.notifications, 0));
        EXPECT_TRUE(host.dataless);
        return std::exchange(set.history, {});
    }
    TestModule module;
    HostWindow host;
};

TEST_F(Panels, OpeningShowsTheBlockAndWritesNothing)
{
    ColourPanel colour(host, {-37, 1});
    AddPanel add(host, {1, -2, 255, 1});
    InvertPanel invert(host, {5});
    MultiplyPanel multiply(host, {105});
    GammaPanel gamma(host, {220});
    ShiftPanel shift(host, {9});
    EmptyPanel empty(host, {});

    EXPECT_EQ(colour.Position(1005), -37);
    EXPECT_EQ(colour.Text(1014), L"-37");
    EXPECT_EQ(colour.Text(1003), L"Green");
    EXPECT_EQ(add.Position(1007), 1);
    EXPECT_EQ(add.Text(1014), L"-2");
    EXPECT_EQ(add.Text(1015), L"255");
    EXPECT_TRUE(add.Checked(1040));
    EXPECT_TRUE(invert.Checked(1020) && !invert.Checked(1021) && invert.Checked(1022));
    EXPECT_EQ(multiply.Text(1030), L"1.05");
    EXPECT_EQ(gamma.Position(1034), 220);
    EXPECT_TRUE(!shift.Checked(1038) && shift.Checked(1039));
    EXPECT_TRUE(IsWindow(empty.window));
    EXPECT_EQ(GetWindow(empty.window, GW_CHILD), nullptr);
    EXPECT_EQ(empty.set.reads, 0);
    for (HWND window :
         {colour.window, add.window, invert.window, multiply.window, gamma.window, shift.window, empty.window}) {
        EXPECT_EQ(GetParent(window), host.hwnd);
        EXPECT_TRUE(IsWindowVisible(window));
    }
    EXPECT_EQ(colour.set.writes + add.set.writes + invert.set.writes + multiply.set.writes + gamma.set.writes +
                  shift.set.writes,
              0);
    EXPECT_EQ(host.notifications, 0);
}

TEST_F(Panels, TextsComeFromTheLanguageAndTheGammaLabelsFromTheirSides)
{
    ColourPanel colour(host, {0, 0});
    GammaPanel gamma(host, {100});
    EXPECT_EQ(colour.Text(1002), L"Select color");
    EXPECT_EQ(colour.Text(1004), L"Select intensity");
    EXPECT_EQ(gamma.Text(1031), L"Gamma correction");
    EXPECT_EQ(gamma.Text(1032), L"Darker") << "left";
    EXPECT_EQ(gamma.Text(1033), L"Brighter") << "right";
    EXPECT_FALSE(gamma.Shown(1035));
    for (const LANGID language : std::initializer_list<LANGID>{1031, 1032, 1041}) {
        ModuleBase::SetLanguage(language);
        ASSERT_EQ(ModuleBase::GetLanguage(), language) << "is the language file there?";
        const AddPanel add(host, {0, 0, 0, 0});
        const InvertPanel invert(host, {0});
        const MultiplyPanel multiply(host, {0});
        const ShiftPanel shift(host, {7});
        const auto expected = [&](UINT id) { return module.LoadResString(id); };
        EXPECT_EQ(add.Text(1010), expected(700));
        EXPECT_EQ(add.Text(1011), expected(701));
        EXPECT_EQ(add.Text(1012), expected(702));
        EXPECT_EQ(add.Text(1040), expected(708));
        EXPECT_EQ(invert.Text(1016), expected(704));
        EXPECT_EQ(invert.Text(1020), expected(700));
        EXPECT_EQ(invert.Text(1021), expected(701));
        EXPECT_EQ(invert.Text(1022), expected(702));
        EXPECT_EQ(multiply.Text(1028), expected(720));
        EXPECT_EQ(shift.Text(1036), expected(721));
        EXPECT_EQ(shift.Text(1038), expected(713));
        EXPECT_EQ(shift.Text(1039), expected(714));
        EXPECT_NE(expected(704), L"Select color");
    }
    ModuleBase::SetLanguage(1033);
}

// What every template owes its user and its host, whatever it holds.
TEST_F(Panels, TemplatesAreMadeToBeEmbeddedAndUsedByKeys)
{
    const ColourPanel colour(host, {0, 0});
    const AddPanel add(host, {0, 0, 0, 0});
    const InvertPanel invert(host, {0});
    const MultiplyPanel multiply(host, {0});
    const GammaPanel gamma(host, {100});
    const ShiftPanel shift(host, {7});
    const EmptyPanel empty(host, {});
    const auto styleOf = [](HWND window) { return static_cast<DWORD>(GetWindowLongW(window, GWL_STYLE)); };
    for (const HWND panel :
         {colour.window, add.window, invert.window, multiply.window, gamma.window, shift.window, empty.window}) {
        EXPECT_EQ(styleOf(panel) & (WS_CHILD | WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME | DS_CONTROL),
                  WS_CHILD);
        std::set<int> ids;
        for (HWND control = GetWindow(panel, GW_CHILD); control; control = GetWindow(control, GW_HWNDNEXT)) {
            const int id = GetDlgCtrlID(control);
            EXPECT_TRUE(ids.insert(id).second) << "two controls " << id;
            wchar_t windowClass[32];
            GetClassNameW(control, windowClass, 32);
            const DWORD style = styleOf(control), kind = style & 0xF;
            const bool isText = lstrcmpiW(windowClass, L"Static") == 0,
                       isButton = lstrcmpiW(windowClass, L"Button") == 0;
            const bool isFrame = isButton && kind == BS_GROUPBOX;
            EXPECT_EQ((style & WS_TABSTOP) != 0, !isText && !isFrame) << id << ": what is used is reached by keys";
            if (isText) {
                EXPECT_TRUE(style & WS_GROUP) << id << ": arrow keys do not leave a group";
            } else if (isButton) {
                EXPECT_TRUE(kind == BS_AUTOCHECKBOX || isFrame || !IsWindowVisible(control)) << id;
            } else if (lstrcmpiW(windowClass, L"ComboBox") == 0) {
                EXPECT_EQ(style & (CBS_DROPDOWNLIST | CBS_SORT), CBS_DROPDOWN | CBS_SORT);
                RECT list{};
                SendMessageW(control, CB_GETDROPPEDCONTROLRECT, 0, reinterpret_cast<LPARAM>(&list));
                EXPECT_GT(list.bottom - list.top, 3 * SendMessageW(control, CB_GETITEMHEIGHT, 0, 0)) << "three colours";
            }
            RECT area, room;
            GetWindowRect(control, &area);
            GetWindowRect(panel, &room);
            EXPECT_TRUE(PtInRect(&room, {area.left, area.top})) << id;
            EXPECT_LE(area.bottom, room.bottom) << id;
        }
    }
}

TEST_F(Panels, KeysMoveASliderByItsLineAndPage)
{
    ColourPanel colour(host, {0, 2});
    // A key's press moves and writes; letting it go ends the movement and writes again.
    colour.Key(1005, VK_RIGHT);
    EXPECT_EQ(Written(colour.set), (Blocks{{1, 2}, {1, 2}}));
    colour.Key(1005, VK_NEXT);
    EXPECT_EQ(Written(colour.set), (Blocks{{16, 2}, {16, 2}}));
    colour.Key(1005, VK_PRIOR);
    colour.Key(1005, VK_LEFT);
    colour.Key(1005, VK_LEFT);
    EXPECT_EQ(Written(colour.set).back(), (Block{-1, 2}));
    EXPECT_EQ(colour.Text(1014), L"-1");
    colour.Key(1005, VK_END);
    EXPECT_EQ(Written(colour.set).back(), (Block{255, 2}));
    colour.Key(1005, VK_HOME);
    EXPECT_EQ(Written(colour.set).back(), (Block{-255, 2}));
    EXPECT_EQ(colour.Text(1014), L"-255");

    GammaPanel gamma(host, {100});
    gamma.Key(1034, VK_NEXT);
    gamma.Key(1034, VK_RIGHT);
    EXPECT_EQ(Written(gamma.set), (Blocks{{103}, {103}, {104}, {104}}));
    gamma.Key(1034, VK_HOME);
    EXPECT_EQ(Written(gamma.set).back(), (Block{45}));
    gamma.Key(1034, VK_END);
    EXPECT_EQ(Written(gamma.set).back(), (Block{220}));

    MultiplyPanel multiply(host, {100});
    multiply.Key(1029, VK_PRIOR);
    EXPECT_EQ(Written(multiply.set).back(), (Block{85}));
    EXPECT_EQ(multiply.Text(1030), L"0.85");
    multiply.Key(1029, VK_END);
    EXPECT_EQ(multiply.Text(1030), L"2.00");
}

TEST_F(Panels, TabsFollowTheTemplate)
{
    GammaPanel gamma(host, {100});
    InvertPanel invert(host, {0});
    AddPanel add(host, {0, 0, 0, 0});
    const auto order = [](const auto& panel, int first, int steps) {
        std::vector<int> ids;
        SetFocus(panel.Control(first));
        for (int i = 0; i < steps; ++i) {
            panel.Key(GetDlgCtrlID(GetFocus()), VK_TAB);
            ids.push_back(GetDlgCtrlID(GetFocus()));
        }
        return ids;
    };
    EXPECT_EQ(order(add, 1007, 4), (std::vector<int>{1008, 1009, 1040, 1007}));
    EXPECT_EQ(order(invert, 1020, 3), (std::vector<int>{1021, 1022, 1020}));
    EXPECT_EQ(order(gamma, 1034, 1), (std::vector<int>{1034})) << "the hidden button takes no focus";
}

// Counts the ends of drags that trackbars report to a panel: some report the end of one drag twice.
struct DragEnds
{
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
    {
        if (message == WM_HSCROLL && LOWORD(wParam) == TB_ENDTRACK)
            ++count;
        return CallWindowProcW(original, window, message, wParam, lParam);
    }
    explicit DragEnds(HWND panel)
    {
        count = 0;
        original =
            reinterpret_cast<WNDPROC>(SetWindowLongPtrW(panel, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(Procedure)));
    }
    static inline std::size_t count;
    static inline WNDPROC original;
};

TEST_F(Panels, DraggingShowsEveryMoveAndWritesAtItsEnd)
{
    MultiplyPanel panel(host, {100});
    const HWND slider = panel.Control(1029);
    const POINT thumb = panel.Thumb(1029);
    const DragEnds ends(panel.window);
    panel.Press(slider, thumb.x, thumb.y);
    for (int x : {10, 20, 25, 30}) {
        panel.MoveTo(slider, thumb.x + x, thumb.y);
        const int now = panel.Position(1029);
        EXPECT_GT(now, 100);
        EXPECT_EQ(panel.Text(1030), (now < 110 ? L"1.0" : L"1.") + std::to_wstring(now - 100));
        EXPECT_EQ(panel.set.history.size(), 0u) << "nothing is written during the drag";
    }
    panel.Release();
    EXPECT_GE(ends.count, 1u);
    EXPECT_EQ(Written(panel.set), Blocks(ends.count, {panel.Position(1029)}));
}

TEST_F(Panels, EveryScrollRequestButTheThumbsSettles)
{
    ColourPanel colour(host, {7, 0});
    AddPanel add(host, {1, 2, 3, 0});
    MultiplyPanel multiply(host, {5});
    GammaPanel gamma(host, {99});
    const auto each = [&](auto& panel, int slider, int value, const Block& expected) {
        panel.Put(slider, value);
        for (int request = TB_LINEUP; request <= TB_ENDTRACK; ++request) {
            panel.Scroll(slider, request);
            const bool settles = request != TB_THUMBPOSITION && request != TB_THUMBTRACK;
            EXPECT_EQ(Written(panel.set), settles ? Blocks{expected} : Blocks{}) << request;
        }
        // From another control, without an update of the display; the thumb's position rides in the high word.
        SendMessageW(panel.window, WM_HSCROLL, MAKEWPARAM(TB_ENDTRACK, 4), 0);
        EXPECT_EQ(Written(panel.set).size(), 1u);
        SendMessageW(panel.window, WM_HSCROLL, MAKEWPARAM(TB_THUMBTRACK, 4), 0);
        EXPECT_EQ(Written(panel.set).size(), 0u);
    };
    each(colour, 1005, -255, {-255, 0});
    each(add, 1008, 200, {1, 200, 3, 0});
    each(multiply, 1029, 150, {150});
    each(gamma, 1034, 46, {46});
    EXPECT_EQ(colour.Text(1014), L"-255");
    EXPECT_EQ(add.Text(1014), L"200");
    EXPECT_EQ(multiply.Text(1030), L"1.50");

    // Without a property set there is nothing to write; the host still hears of it.
    host.notifications = 0;
    colour.Show(nullptr);
    colour.Scroll(1005, TB_ENDTRACK);
    EXPECT_EQ(host.notifications, 1);
    EXPECT_EQ(colour.set.history.size(), 0u);
}

TEST_F(Panels, FactorsReadAsTwoPlaceDecimals)
{
    MultiplyPanel panel(host, {0});
    for (auto [factor, text] : {std::pair{0, L"0.00"},
                                {5, L"0.05"},
                                {9, L"0.09"},
                                {10, L"0.10"},
                                {99, L"0.99"},
                                {100, L"1.00"},
                                {109, L"1.09"},
                                {150, L"1.50"},
                                {200, L"2.00"}}) {
        panel.Reload({factor});
        EXPECT_EQ(panel.Text(1030), text);
    }
    panel.owner.Reset();
    EXPECT_EQ(panel.Text(1030), L"0");
    EXPECT_EQ(panel.Position(1029), 0);
}

TEST_F(Panels, AColourIsWrittenWhenItIsChosen)
{
    ColourPanel panel(host, {12, 0});
    panel.Key(1003, VK_DOWN); // Blue to Green
    EXPECT_EQ(Written(panel.set), (Blocks{{12, 1}}));
    panel.Key(1003, VK_DOWN);
    EXPECT_EQ(Written(panel.set), (Blocks{{12, 2}}));
    EXPECT_EQ(panel.Text(1003), L"Red");

    // With the mouse: open the list, click its first entry.
    const HWND combo = panel.Control(1003);
    RECT area;
    GetClientRect(combo, &area);
    panel.Press(combo, area.right - 5, area.bottom / 2);
    panel.Release();
    COMBOBOXINFO info{};
    info.cbSize = sizeof info;
    GetComboBoxInfo(combo, &info);
    ASSERT_TRUE(SendMessageW(combo, CB_GETDROPPEDSTATE, 0, 0));
    EXPECT_EQ(Written(panel.set), Blocks{}) << "opening the list chooses nothing";
    panel.MoveTo(info.hwndList, 10, 5);
    panel.Press(info.hwndList, 10, 5);
    panel.Release();
    EXPECT_EQ(Written(panel.set), (Blocks{{12, 0}}));
    EXPECT_EQ(panel.Text(1003), L"Blue");

    // Typing chooses nothing: a typed name would leave no colour selected.
    SendMessageW(info.hwndItem, WM_CHAR, L'R', 0);
    SendMessageW(info.hwndItem, WM_KEYDOWN, VK_DELETE, 0);
    EXPECT_EQ(panel.Text(1003), L"Blue");
    EXPECT_EQ(Written(panel.set), Blocks{});
}

TEST_F(Panels, TheColourStaysWithItsEntryInAnyOrder)
{
    ColourPanel panel(host, {0, 2});
    EXPECT_EQ(panel.Text(1003), L"Red");
    // As a language would have it in which the names sort the other way round.
    const HWND combo = panel.Control(1003);
    SendMessageW(combo, CB_RESETCONTENT, 0, 0);
    for (auto [name, colour] : {std::pair{L"Azul", 0}, {L"Amarelo", 2}, {L"Bege", 1}}) {
        const LRESULT index = SendMessageW(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name));
        SendMessageW(combo, CB_SETITEMDATA, static_cast<WPARAM>(index), colour);
    }
    panel.Reload();
    EXPECT_EQ(panel.Text(1003), L"Amarelo");
    panel.Key(1003, VK_DOWN);
    EXPECT_EQ(Written(panel.set), (Blocks{{0, 0}}));
    panel.Key(1003, VK_DOWN);
    EXPECT_EQ(Written(panel.set), (Blocks{{0, 1}}));
    panel.owner.Reset();
    EXPECT_EQ(panel.Text(1003), L"Azul");
    EXPECT_EQ(panel.Text(1014), L"0");

    panel.Reload({0, 7}); // no such colour
    EXPECT_EQ(SendMessageW(combo, CB_GETCURSEL, 0, 0), CB_ERR);
    panel.Scroll(1005, TB_ENDTRACK);
    EXPECT_EQ(Written(panel.set), (Blocks{{0, -1}}));
}

TEST_F(Panels, InversionFollowsItsBoxes)
{
    InvertPanel panel(host, {0});
    panel.Click(1020);
    EXPECT_EQ(Written(panel.set), (Blocks{{4}}));
    panel.Key(1021, VK_SPACE);
    EXPECT_EQ(Written(panel.set), (Blocks{{6}}));
    SendMessageW(panel.Control(1022), BM_CLICK, 0, 0);
    EXPECT_EQ(Written(panel.set), (Blocks{{7}}));
    panel.Click(1020);
    EXPECT_EQ(Written(panel.set), (Blocks{{3}}));
    SendMessageW(panel.window, WM_COMMAND, 1020, 0); // from no box of it
    EXPECT_EQ(Written(panel.set), Blocks{});
    panel.Reload({-4}); // only the bits count
    EXPECT_TRUE(panel.Checked(1020) && !panel.Checked(1021) && !panel.Checked(1022));
    panel.owner.Reset();
    EXPECT_FALSE(panel.Checked(1020) || panel.Checked(1021) || panel.Checked(1022));
    EXPECT_EQ(Written(panel.set), Blocks{});
}

TEST_F(Panels, ShiftingKeepsADirection)
{
    ShiftPanel panel(host, {7});
    EXPECT_TRUE(panel.Checked(1038) && panel.Checked(1039));
    panel.Click(1039);
    EXPECT_EQ(Written(panel.set), (Blocks{{10}}));
    panel.Click(1038); // the last one
    EXPECT_EQ(Written(panel.set), (Blocks{{7}}));
    EXPECT_TRUE(panel.Checked(1038) && panel.Checked(1039));
    panel.Key(1038, VK_SPACE);
    EXPECT_EQ(Written(panel.set), (Blocks{{9}}));
    panel.Key(1039, VK_SPACE);
    EXPECT_EQ(Written(panel.set), (Blocks{{7}}));
    for (auto [kind, horizontal, vertical] : {std::tuple{10, true, false},
                                              {9, false, true},
                                              {7, true, true},
                                              {0, true, true},
                                              {-1, true, true},
                                              {8, true, true}}) {
        panel.Reload({kind});
        EXPECT_EQ(panel.Checked(1038), horizontal) << kind;
        EXPECT_EQ(panel.Checked(1039), vertical) << kind;
    }
    panel.owner.Reset();
    EXPECT_TRUE(panel.Checked(1038) && panel.Checked(1039)) << "defaults leave it until it is shown again";
}

TEST_F(Panels, AllSlidersMoveTogetherAsFarAsEachCan)
{
    AddPanel panel(host, {0, 200, 0, 0});
    const auto move = [&](int slider, int position) {
        panel.Put(slider, position);
        panel.Scroll(slider, TB_ENDTRACK);
        return Written(panel.set).back();
    };
    EXPECT_EQ(move(1007, 10), (Block{10, 200, 0, 0})) << "one alone while the box is clear";
    EXPECT_EQ(move(1007, 0), (Block{0, 200, 0, 0}));
    panel.Click(1040);
    EXPECT_EQ(Written(panel.set), Blocks{}) << "the box itself is no change of the picture";
    EXPECT_EQ(move(1007, 100), (Block{100, 255, 100, 1}));
    EXPECT_EQ(panel.Text(1013), L"100");
    EXPECT_EQ(panel.Text(1014), L"255");
    EXPECT_EQ(panel.Text(1015), L"100");
    // From the upper end back: the distance that was cut off is lost, as each is measured from where it was last seen.
    EXPECT_EQ(move(1008, 155), (Block{0, 155, 0, 1}));
    EXPECT_EQ(move(1009, -255), (Block{-255, -100, -255, 1}));
    EXPECT_EQ(move(1007, -200), (Block{-200, -45, -200, 1}));
    EXPECT_EQ(move(1008, -255), (Block{-255, -255, -255, 1})) << "the lower end";
    EXPECT_EQ(panel.Text(1013), L"-255");

    // While a thumb is dragged the others follow, and one block is written at its end.
    panel.Put(1007, -250);
    panel.Scroll(1007, TB_THUMBTRACK);
    panel.Put(1007, -240);
    panel.Scroll(1007, TB_THUMBTRACK);
    EXPECT_EQ(panel.Text(1015), L"-240");
    EXPECT_EQ(Written(panel.set), Blocks{});
    panel.Scroll(1007, TB_ENDTRACK);
    EXPECT_EQ(Written(panel.set), (Blocks{{-240, -240, -240, 1}}));

    // Moves are measured from what was loaded, not from what another instance had.
    RecordedSet other({50, 60, 70, 1});
    panel.Show(&other);
    panel.Put(1007, 51);
    panel.Scroll(1007, TB_ENDTRACK);
    EXPECT_EQ(Written(other), (Blocks{{51, 61, 71, 1}}));
    panel.owner.Reset();
    EXPECT_EQ(panel.Text(1014), L"0");
    panel.Put(1009, 3);
    panel.Scroll(1009, TB_ENDTRACK);
    EXPECT_EQ(Written(other), (Blocks{{3, 3, 3, 1}}));
}

TEST_F(Panels, ValuesOutsideTheRangeStopAtItsEnds)
{
    ColourPanel colour(host, {100000, 0});
    EXPECT_EQ(colour.Position(1005), 255);
    EXPECT_EQ(colour.Text(1014), L"255");
    AddPanel add(host, {-256, 256, INT32_MIN, 5});
    EXPECT_EQ(add.Text(1013) + add.Text(1014) + add.Text(1015), L"-255255-255");
    EXPECT_TRUE(add.Checked(1040));
    add.Put(1007, -250);
    add.Scroll(1007, TB_ENDTRACK);
    EXPECT_EQ(Written(add.set), (Blocks{{-250, 255, -250, 1}}));
    MultiplyPanel multiply(host, {-1});
    EXPECT_EQ(multiply.Text(1030), L"0.00");
    GammaPanel gamma(host, {221});
    EXPECT_EQ(gamma.Position(1034), 220);
}

TEST_F(Panels, AReadThatGivesNothingLeavesTheControls)
{
    ColourPanel colour(host, {33, 1});
    AddPanel add(host, {1, 2, 3, 1});
    InvertPanel invert(host, {2});
    MultiplyPanel multiply(host, {50});
    GammaPanel gamma(host, {60});
    const auto failings = [](auto& panel) {
        for (const HRESULT result : {E_FAIL, S_OK}) {
            panel.set.answer = [result](void* buffer, int* size) {
                std::memset(buffer, 0, 4);
                *size = 0;
                return result;
            };
            panel.Reload();
        }
        panel.set.answer = nullptr;
        panel.Show(nullptr);
    };
    failings(colour);
    failings(add);
    failings(invert);
    failings(multiply);
    failings(gamma);
    EXPECT_EQ(colour.Text(1014) + colour.Text(1003), L"33Green");
    EXPECT_EQ(add.Text(1013) + add.Text(1014) + add.Text(1015), L"123");
    EXPECT_TRUE(add.Checked(1040));
    EXPECT_TRUE(invert.Checked(1021));
    EXPECT_EQ(multiply.Text(1030), L"0.50");
    EXPECT_EQ(gamma.Position(1034), 60);
    ShiftPanel shift(host, {9});
    failings(shift);
    EXPECT_FALSE(shift.Checked(1038) || shift.Checked(1039)) << "unknown directions show as none";

    // A block that is longer than the panel's harms nothing, a shorter one reads as 0 at its end.
    multiply.Reload(Block(10000, 7));
    EXPECT_EQ(multiply.Text(1030), L"0.07");
    colour.Reload({9});
    EXPECT_EQ(colour.Text(1014) + colour.Text(1003), L"9Blue");
}

TEST_F(Panels, AReusedPanelBelongsToItsNewPropertySet)
{
    GammaPanel panel(host, {70});
    const HWND window = panel.window;
    RecordedSet other({180});
    EXPECT_EQ(panel.Show(&other), window);
    EXPECT_EQ(panel.Position(1034), 180);
    panel.Key(1034, VK_RIGHT);
    EXPECT_EQ(Written(other), (Blocks{{181}, {181}}));
    EXPECT_EQ(panel.set.history.size(), 0u);
    EXPECT_EQ(panel.set.Block(), (Block{70}));
}

TEST_F(Panels, TwoPanelsKeepApart)
{
    MultiplyPanel first(host, {10}), second(host, {20});
    GammaPanel gamma(host, {100});
    SetWindowPos(second.window, HWND_TOP, 0, 150, 0, 0, SWP_NOSIZE);
    SetWindowPos(gamma.window, HWND_TOP, 0, 250, 0, 0, SWP_NOSIZE);
    for (int i = 0; i < 3; ++i) {
        first.Key(1029, VK_RIGHT);
        gamma.Key(1034, VK_LEFT);
        second.Key(1029, VK_LEFT);
    }
    EXPECT_EQ(first.set.Block(), (Block{13}));
    EXPECT_EQ(second.set.Block(), (Block{17}));
    EXPECT_EQ(gamma.set.Block(), (Block{97}));
    EXPECT_EQ(first.Text(1030) + second.Text(1030), L"0.130.17");
    DestroyWindow(first.window);
    second.Key(1029, VK_LEFT);
    EXPECT_EQ(second.set.Block(), (Block{16}));
    EXPECT_EQ(first.set.Block(), (Block{13}));
}

} // namespace
