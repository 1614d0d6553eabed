// The dialog base on real windows: which object a message reaches, tooltips, the message hook, and every order in which
// windows and objects can end.
#include "tests/support/Meanwhile.h"
#include "tests/ui/HostWindow.h"
#include "tests/ui/TestPanel.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

class Panels : public testing::Test
{
protected:
    std::shared_ptr<TestPanel> Make()
    {
        // NOLINTNEXTLINE(modernize-make-shared): the panel's own operator new is meant
        return std::shared_ptr<TestPanel>(new TestPanel(&context));
    }
    std::shared_ptr<TestPanel> Open(int templateId = 100)
    {
        auto panel = Make();
        panel->Create(host.hwnd, static_cast<std::uint32_t>(templateId));
        panel->SetNotifyMessage(HostWindow::changed);
        panel->Show(0);
        return panel;
    }
    static void Press(HWND control, WPARAM key)
    {
        SendMessageW(control, WM_KEYDOWN, key, 0);
        SendMessageW(control, WM_KEYUP, key, 0);
    }

    TestContext context;
    HostWindow host;
};

TEST_F(Panels, CreationReachesTheObjectBeforeItsHandleIsKnown)
{
    auto panel = Open(0xABC0000 + 100); // only the low 16 bits count
    ASSERT_NE(panel->GetHwnd(), nullptr);
    EXPECT_EQ(panel->inits, 1);
    EXPECT_EQ(panel->handleDuringInit, nullptr);
    EXPECT_EQ(panel->dialog, panel->GetHwnd());
    EXPECT_EQ(GetParent(panel->GetHwnd()), host.hwnd);
    EXPECT_TRUE(IsWindowVisible(panel->GetHwnd()));
    EXPECT_NE(panel->Control(TestPanel::slider), nullptr);
}

TEST_F(Panels, NothingIsMadeWithoutContextHostOrTemplate)
{
    TestPanel bare(nullptr);
    bare.Create(host.hwnd, 100);
    bare.CreateToolTip(host.hwnd);
    EXPECT_EQ(bare.GetInstance(), nullptr);
    EXPECT_EQ(bare.Tip(), nullptr);
    bare.SetContext(&context);
    bare.SetContext(nullptr);
    EXPECT_EQ(bare.GetInstance(), GetModuleHandleW(nullptr)) << "null keeps the old context";
    bare.Create(nullptr, 100);
    EXPECT_EQ(bare.GetHwnd(), nullptr);

    auto panel = Open(4711);
    EXPECT_EQ(panel->GetHwnd(), nullptr);
    panel->Create(host.hwnd, 101); // fails after the dialog and its first control exist
    EXPECT_EQ(panel->GetHwnd(), nullptr);
    EXPECT_EQ(panel->destroys, 1);
    panel->Create(host.hwnd, 100);
    EXPECT_NE(panel->GetHwnd(), nullptr);
    panel.reset();
    auto after = Open(); // walks the list: the failed attempts left nothing behind in it
    EXPECT_EQ(after->inits, 1);
}

TEST_F(Panels, ControlsReachTheirHandlers)
{
    auto panel = Open();
    const HWND slider = panel->Control(TestPanel::slider), list = panel->Control(TestPanel::list);
    Press(slider, VK_RIGHT);
    ASSERT_EQ(panel->scrolls.size(), 2u);
    EXPECT_EQ(panel->scrolls[0].control, slider);
    EXPECT_EQ(panel->scrolls[0].request, TB_LINEDOWN);
    EXPECT_EQ(panel->scrolls[1].request, TB_ENDTRACK);
    EXPECT_EQ(host.notifications, 2);
    EXPECT_TRUE(host.dataless);

    SendMessageW(panel->Control(TestPanel::box), BM_CLICK, 0, 0);
    EXPECT_EQ(panel->boxes, 1);

    for (const wchar_t* text : {L"a", L"b"})
        SendMessageW(list, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text));
    SendMessageW(list, WM_SETFOCUS, 0, 0);
    SendMessageW(list, WM_KILLFOCUS, 0, 0);
    EXPECT_EQ(panel->choices, 0);
    Press(list, VK_DOWN);
    EXPECT_EQ(panel->choices, 1);
}

TEST_F(Panels, EachPanelGetsItsOwnMessages)
{
    auto first = Open(), second = Open();
    for (TestPanel* panel : {first.get(), second.get(), first.get()})
        Press(panel->Control(TestPanel::slider), VK_RIGHT);
    EXPECT_EQ(first->scrolls.size(), 4u);
    EXPECT_EQ(second->scrolls.size(), 2u);
    EXPECT_EQ(second->scrolls[0].control, second->Control(TestPanel::slider));
}

TEST_F(Panels, PanelsOpenedWhileOthersAreBusyGetTheirOwnMessages)
{
    auto first = Open();
    std::shared_ptr<TestPanel> second, third;
    // The second is opened inside a notification of the first; while it is made, the first receives messages, and a
    // third is opened.
    host.onNotified = [&] {
        host.onNotified = nullptr;
        host.onParentNotify = [&](WPARAM) { Press(first->Control(TestPanel::slider), VK_RIGHT); };
        second = Make();
        second->whileCreated = [&] {
            third = Open();
            Press(first->Control(TestPanel::slider), VK_RIGHT);
        };
        second->Create(host.hwnd, 100);
        host.onParentNotify = nullptr;
    };
    Press(first->Control(TestPanel::slider), VK_RIGHT);
    EXPECT_EQ(first->inits, 1);
    ASSERT_TRUE(second && third);
    EXPECT_EQ(second->inits, 1);
    EXPECT_EQ(third->inits, 1);
    EXPECT_NE(second->GetHwnd(), nullptr);
    EXPECT_NE(third->GetHwnd(), second->GetHwnd());
    EXPECT_EQ(second->dialog, second->GetHwnd());
    EXPECT_EQ(third->dialog, third->GetHwnd());
    Press(second->Control(TestPanel::slider), VK_RIGHT);
    EXPECT_EQ(second->scrolls.size(), 2u);
    EXPECT_EQ(third->scrolls.size(), 0u);
}

TEST_F(Panels, AnEndedWindowGivesBackHookTooltipAndRecords)
{
    auto panel = Open();
    for (int round = 0; round < 3; ++round) {
        const HWND tip = panel->Tip(), dialog = panel->GetHwnd();
        const HHOOK hook = panel->MessageHook();
        EXPECT_EQ(panel->ToolTipCount(), 2u);
        ASSERT_TRUE(IsWindow(tip));
        ASSERT_NE(hook, nullptr);
        DestroyWindow(dialog);
        EXPECT_EQ(panel->destroys, round + 1) << "the handler runs once";
        EXPECT_EQ(panel->GetHwnd(), nullptr);
        EXPECT_FALSE(IsWindow(tip));
        EXPECT_FALSE(UnhookWindowsHookEx(hook)) << "the hook is removed already";
        HostWindow::Pump();
        panel->Create(host.hwnd, 100);
    }
    EXPECT_EQ(panel->inits, 4);

    // The panels of a thread share one hook, to the last of them.
    auto other = Open();
    const HHOOK hook = other->MessageHook();
    EXPECT_EQ(hook, panel->MessageHook());
    panel.reset();
    other->InstallMessageHook();
    EXPECT_EQ(other->MessageHook(), hook);
    DestroyWindow(other->GetHwnd());
    EXPECT_FALSE(UnhookWindowsHookEx(hook));
}

// The list of windows is shared: one that another thread takes out of it must not move what is being looked at.
TEST_F(Panels, AnotherThreadMayLetGoWhileAPanelIsMade)
{
    auto gone = Open(), panel = Make();
    test::OnAnotherThread other;
    {
        const test::Meanwhile<IsWindow> completing(L"user32.dll", "IsWindow",
                                                   [&] { other.Run([&] { gone.reset(); }); });
        panel->Create(host.hwnd, 100);
    }
    other.Join();
    SendMessageW(panel->GetHwnd(), WM_INITDIALOG, 0, 0);
    EXPECT_EQ(panel->inits, 1) << "its entry says that it is complete";
}

TEST_F(Panels, TheHostWindowMayGoFirst)
{
    auto first = Open(), second = Open();
    host.Destroy();
    EXPECT_EQ(first->GetHwnd(), nullptr);
    EXPECT_EQ(second->GetHwnd(), nullptr);
    EXPECT_EQ(first->destroys + second->destroys, 2);
    HostWindow::Pump();
    first->NotifyParent();
    first->Show(1);
    first->OnOK();
    first->OnCancel();
}

TEST_F(Panels, TheObjectMayGoFirst)
{
    auto other = Open(), panel = Open();
    const HWND orphan = panel->GetHwnd(), slider = panel->Control(TestPanel::slider), tip = panel->Tip();
    panel.reset();
    EXPECT_TRUE(IsWindow(orphan)) << "the window is the host's";
    EXPECT_FALSE(IsWindowVisible(orphan));
    EXPECT_FALSE(IsWindow(tip));

    // Nothing of the orphan reaches the freed object (that would crash) or the panel that is left.
    Press(slider, VK_RIGHT);
    PostMessageW(slider, WM_MOUSEMOVE, 0, MAKELPARAM(5, 5));
    HostWindow::Pump();
    Press(other->Control(TestPanel::slider), VK_RIGHT); // the other is the current window
    const int notified = host.notifications;
    Press(slider, VK_LEFT);
    DestroyWindow(orphan);
    EXPECT_EQ(other->scrolls.size(), 2u);
    EXPECT_EQ(other->destroys, 0);
    EXPECT_EQ(host.notifications, notified);
    EXPECT_TRUE(IsWindow(other->GetHwnd()));
}

TEST_F(Panels, APanelMayEndInsideItsOwnNotification)
{
    // Its window is destroyed.
    auto panel = Open();
    host.onNotified = [&] { DestroyWindow(panel->GetHwnd()); };
    SendMessageW(panel->Control(TestPanel::box), BM_CLICK, 0, 0);
    EXPECT_EQ(panel->boxes, 1);
    EXPECT_EQ(panel->GetHwnd(), nullptr);

    // The object is retired: rows behind the handler's do not run, and nobody is told.
    auto next = Open();
    const HWND orphan = next->GetHwnd();
    host.notifications = 0;
    host.onNotified = [&] {
        next->Retire();
        next->NotifyParent();
    };
    SendMessageW(next->Control(TestPanel::box), BM_CLICK, 0, 0);
    EXPECT_EQ(next->boxesAgain, 0);
    EXPECT_EQ(host.notifications, 1);
    EXPECT_TRUE(IsWindow(orphan));

    // The object is released and the host window destroyed: it lives until its handler is done.
    auto last = Open();
    const std::weak_ptr<TestPanel> life = last;
    host.onNotified = [&] {
        last.reset();
        EXPECT_FALSE(life.expired());
        host.Destroy();
    };
    SendMessageW(last->Control(TestPanel::box), BM_CLICK, 0, 0);
    EXPECT_TRUE(life.expired());
    EXPECT_FALSE(IsWindow(orphan));
}

TEST_F(Panels, APanelMayEndWhileItIsMade)
{
    auto released = Make();
    released->whileCreated = [&] { released->Retire(); };
    released->Create(host.hwnd, 100);
    EXPECT_EQ(released->GetHwnd(), nullptr);
    const HWND orphan = GetWindow(host.hwnd, GW_CHILD);
    ASSERT_NE(orphan, nullptr);
    Press(GetDlgItem(orphan, TestPanel::slider), VK_RIGHT);
    EXPECT_EQ(released->scrolls.size(), 0u);
    DestroyWindow(orphan);

    auto destroyed = Make();
    destroyed->whileCreated = [&] { DestroyWindow(destroyed->dialog); };
    destroyed->Create(host.hwnd, 100);
    EXPECT_EQ(destroyed->destroys, 1);
    EXPECT_EQ(destroyed->GetHwnd(), nullptr);
    destroyed->whileCreated = nullptr;
    destroyed->Create(host.hwnd, 100);
    EXPECT_NE(destroyed->GetHwnd(), nullptr);
}

// Sees what a tooltip window is sent: relayed messages and titles.
struct ToolTipSpy
{
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
    {
        if (message == TTM_RELAYEVENT) {
            relayed.push_back(*reinterpret_cast<const MSG*>(lParam));
            return 0;
        }
        if (message == TTM_SETTITLEW)
            titles.emplace_back(static_cast<int>(wParam), reinterpret_cast<const wchar_t*>(lParam));
        return CallWindowProcW(original, window, message, wParam, lParam);
    }
    explicit ToolTipSpy(HWND tip)
    {
        relayed.clear();
        titles.clear();
        original =
            reinterpret_cast<WNDPROC>(SetWindowLongPtrW(tip, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(Procedure)));
    }
    static inline std::vector<MSG> relayed;
    static inline std::vector<std::pair<int, std::wstring>> titles;
    static inline WNDPROC original;
};

TEST_F(Panels, TheTooltipAsksForItsTextsOnDemand)
{
    auto panel = Open(), other = Open();
    const ToolTipSpy spy(panel->Tip());
    const auto ask = [](TestPanel& asked, int control, UINT code = TTN_GETDISPINFOW) {
        static wchar_t untouched[] = L"untouched";
        NMTTDISPINFOW request{};
        request.hdr = {asked.Tip(), reinterpret_cast<UINT_PTR>(asked.Control(control)), code};
        request.lpszText = untouched;
        SendMessageW(asked.GetHwnd(), WM_NOTIFY, request.hdr.idFrom, reinterpret_cast<LPARAM>(&request));
        return request.lpszText;
    };
    const wchar_t* text = ask(*panel, TestPanel::slider);
    EXPECT_STREQ(text, L"Text one");
    EXPECT_STREQ(ask(*other, TestPanel::box), L"Text two");
    EXPECT_STREQ(text, L"Text one") << "the text stays until its own window is asked again";
    EXPECT_STREQ(ask(*panel, TestPanel::edit), L"untouched");
    EXPECT_STREQ(ask(*panel, TestPanel::slider, TTN_SHOW), L"untouched");

    EXPECT_EQ(spy.titles, (std::vector<std::pair<int, std::wstring>>{{TTI_INFO, L"Title one"}}));
    panel->OnNotify(0, 0);
}

std::shared_ptr<TestPanel> victim;

// A tooltip whose panel ends when it hears of a mouse message.
LRESULT CALLBACK EndVictim(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == TTM_RELAYEVENT && victim)
        victim.reset();
    return DefWindowProcW(window, message, wParam, lParam);
}

TEST_F(Panels, TheHookRelaysMovesAndSingleClicks)
{
    auto panel = Open();
    const ToolTipSpy spy(panel->Tip());
    const HWND control = panel->Control(TestPanel::label);
    std::vector<UINT> numbers;
    for (UINT message = WM_MOUSEFIRST; message <= WM_MOUSELAST; ++message)
        PostMessageW(control, message, 3, MAKELPARAM(7, 9));
    PostMessageW(panel->GetHwnd(), WM_MOUSEMOVE, 0, MAKELPARAM(1, 1)); // not a control of it
    PostMessageW(host.hwnd, WM_MOUSEMOVE, 0, MAKELPARAM(1, 1));
    HostWindow::Pump();
    for (const MSG& message : ToolTipSpy::relayed) {
        if (message.hwnd != control || message.lParam != MAKELPARAM(7, 9))
            continue; // the system's own moves under the pointer
        EXPECT_EQ(message.wParam, 3u);
        numbers.push_back(message.message);
    }
    EXPECT_EQ(numbers, (std::vector<UINT>{WM_MOUSEMOVE, WM_LBUTTONDOWN, WM_LBUTTONUP, WM_RBUTTONDOWN, WM_RBUTTONUP}));
    for (const MSG& message : ToolTipSpy::relayed)
        EXPECT_TRUE(IsChild(panel->GetHwnd(), message.hwnd));

    // The panel may end while a message is relayed.
    victim = Open();
    SetWindowLongPtrW(victim->Tip(), GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(EndVictim));
    PostMessageW(victim->Control(TestPanel::slider), WM_MOUSEMOVE, 0, 0);
    HostWindow::Pump();
    EXPECT_EQ(victim, nullptr);
}

#ifndef _WIN64
// Calls a dialog procedure as a 32-bit caller may: with a stack that is aligned to 4 bytes only.
INT_PTR CallShifted(DLGPROC procedure, HWND dialog, UINT message, WPARAM wParam, LPARAM lParam, int shift)
{
    INT_PTR result;
    __asm__ volatile("movl %%esp, %%ebx\n\t"
                     "andl $-16, %%esp\n\t"
                     "subl %[shift], %%esp\n\t"
                     "pushl %[lParam]\n\t"
                     "pushl %[wParam]\n\t"
                     "pushl %[message]\n\t"
                     "pushl %[dialog]\n\t"
                     "call *%%eax\n\t"
                     "movl %%ebx, %%esp\n\t"
                     : "=a"(result)
                     : "a"(procedure), [shift] "S"(shift), [lParam] "D"(lParam), [wParam] "c"(wParam),
                       [message] "d"(message), [dialog] "m"(dialog)
                     : "ebx", "memory", "cc");
    return result;
}

TEST_F(Panels, TheProcedureNeedsNoAlignedStack)
{
    auto panel = Open();
    const auto procedure = reinterpret_cast<DLGPROC>(GetWindowLongPtrW(panel->GetHwnd(), DWLP_DLGPROC));
    ASSERT_NE(procedure, nullptr);
    for (int shift = 0; shift < 16; shift += 4)
        EXPECT_EQ(CallShifted(procedure, panel->GetHwnd(), WM_HSCROLL, TB_LINEUP, 0, shift), FALSE);
    EXPECT_EQ(panel->scrolls.size(), 4u);
}
#endif

} // namespace
