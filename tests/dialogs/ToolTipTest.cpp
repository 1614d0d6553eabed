// A tooltip appears, with title and text, when the user's pointer rests on a control of a panel.
#include "host/validate/EmbeddedPanel.h"
#include "tests/dialogs/PanelFixture.h"

#include <gtest/gtest.h>

namespace {

// What the panel answers when its tooltip asks, and what title the tooltip is given.
struct Spoken
{
    static inline std::wstring text, title;
    static inline WNDPROC panelProcedure, tipProcedure;

    static LRESULT CALLBACK OnPanel(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
    {
        const LRESULT result = CallWindowProcW(panelProcedure, window, message, wParam, lParam);
        const auto* header = reinterpret_cast<const NMHDR*>(lParam);
        if (message == WM_NOTIFY && header->code == TTN_GETDISPINFOW)
            if (const wchar_t* answer = reinterpret_cast<const NMTTDISPINFOW*>(header)->lpszText)
                text = answer;
        return result;
    }
    static LRESULT CALLBACK OnTip(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
    {
        if (message == TTM_SETTITLEW)
            title = reinterpret_cast<const wchar_t*>(lParam);
        return CallWindowProcW(tipProcedure, window, message, wParam, lParam);
    }
    static WNDPROC Replace(HWND window, WNDPROC procedure)
    {
        return reinterpret_cast<WNDPROC>(
            SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(procedure)));
    }
};

template <typename Panel>
void ExpectToolTip(HostWindow& host, const Block& block, int id, const wchar_t* title, const wchar_t* text)
{
    Panel panel(host, block);
    const auto tips = vixahost::validate::ToolTips();
    ASSERT_EQ(tips.size(), 1u);
    const HWND tip = tips.front();
    Spoken::text.clear();
    Spoken::title.clear();
    Spoken::panelProcedure = Spoken::Replace(panel.window, Spoken::OnPanel);
    Spoken::tipProcedure = Spoken::Replace(tip, Spoken::OnTip);
    SendMessageW(tip, TTM_SETDELAYTIME, TTDT_INITIAL, MAKELPARAM(30, 0)); // a user's half second is long here
    panel.MoveTo(host.hwnd, 400, 300);
    EXPECT_FALSE(IsWindowVisible(tip));
    RECT area;
    // Near the right end: the list's text field is a window of its own, its button belongs to the list.
    GetClientRect(panel.Control(id), &area);
    const int x = area.right - 9;
    panel.MoveTo(panel.Control(id), x, 6);
    panel.MoveTo(panel.Control(id), x + 2, 7);
    EXPECT_TRUE(HostWindow::PumpUntil([&] { return IsWindowVisible(tip) != FALSE; }, 5000, panel.window)) << id;
    EXPECT_EQ(Spoken::title, title) << id;
    EXPECT_EQ(Spoken::text, text) << id;
    GetWindowRect(tip, &area);
    EXPECT_GT(area.right - area.left, 50);
    EXPECT_GT(area.bottom - area.top, 20) << "title and text stand below each other";

    // A click puts it away.
    panel.Press(panel.Control(id), x, 7);
    EXPECT_FALSE(IsWindowVisible(tip)) << id;
    panel.Release();
}

TEST(ToolTips, AppearWhereThePointerRests)
{
    const TestModule module;
    HostWindow host;
    constexpr const wchar_t* slide = L"Move the slider thumb to adjust value ";
    ExpectToolTip<ColourPanel>(host, {0, 0}, 1005, L"Select intensity", slide);
    ExpectToolTip<ColourPanel>(host, {0, 0}, 1003, L"Select color", L"Select the color to be transformed");
    ExpectToolTip<AddPanel>(host, {0, 0, 0, 0}, 1008, L"Select intensity", slide);
    ExpectToolTip<AddPanel>(host, {0, 0, 0, 0}, 1040, L"Select this to move all sliders at the same time",
                            L"Select this to move all sliders at the same time");
    ExpectToolTip<InvertPanel>(host, {0}, 1021, L"Perform inversion to the green", L"Perform inversion to the green");
    ExpectToolTip<MultiplyPanel>(host, {0}, 1029, L"Select intensity", slide);
    ExpectToolTip<GammaPanel>(host, {0}, 1034, L"Select intensity", slide);
    ExpectToolTip<ShiftPanel>(host, {7}, 1039, L"Perform shift edges on vertical", L"Perform shift edges on vertical");
}

} // namespace
