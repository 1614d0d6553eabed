// A library that held panels is unloaded while messages still arrive at the host's thread.
#include "tests/dialogs/PanelFixture.h"
#include "tests/support/Library.h"

#include <vixavideofx/IEffectInfo.h>

#include <gtest/gtest.h>

namespace {

// Queues what a user's hand leaves behind: mouse and key messages to a control, and its own to its panel.
BOOL CALLBACK DisturbControl(HWND control, LPARAM)
{
    for (UINT message : {WM_MOUSEMOVE, WM_LBUTTONDOWN, WM_LBUTTONUP})
        PostMessageW(control, message, 0, MAKELPARAM(9, 4));
    PostMessageW(control, WM_KEYDOWN, VK_RIGHT, 0);
    PostMessageW(control, WM_KEYUP, VK_RIGHT, 0);
    const HWND panel = GetParent(control);
    PostMessageW(panel, WM_HSCROLL, TB_ENDTRACK, reinterpret_cast<LPARAM>(control));
    PostMessageW(panel, WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(control), CBN_SELENDOK), reinterpret_cast<LPARAM>(control));
    return TRUE;
}

void Disturb(HWND host)
{
    EnumChildWindows(host, DisturbControl, 0);
    PostThreadMessageW(GetCurrentThreadId(), WM_USER, 0, 0);
}

TEST(Unload, IsSafeWhileMessagesArrive)
{
    enum Way
    {
        ObjectsFirst, // objects released, windows of the host left
        WindowsFirst, // windows destroyed, then the objects
        HostFirst,    // the host's window destroyed, then the objects
        Leaked,       // nothing released at all
        Ways,
    };
    const int loads = Repetitions(200, 24);
    for (int i = 0; i < loads; ++i) {
        HostWindow host;
        RecordingSet set({1, 2, 3, 0});
        std::vector<test::ComPtr<IEffectInfo>> panels;
        {
            const test::Library library;
            for (const test::Effect& effect : test::effects) {
                ASSERT_EQ(library.Factory(effect.clsid).As(&panels.emplace_back()), S_OK);
                HWND panel = nullptr;
                ASSERT_EQ(panels.back()->ShowSettingsDialog(0, host.hwnd, HostWindow::changed, &set, &panel), S_OK);
                ShowWindow(panel, SW_SHOW);
            }
            Disturb(host.hwnd);
            HostWindow::Pump();
            ASSERT_GT(host.notifications, 10);
            Disturb(host.hwnd);
            switch (i % Ways) {
            case ObjectsFirst:
                panels.clear();
                break;
            case WindowsFirst:
                while (const HWND child = GetWindow(host.hwnd, GW_CHILD))
                    DestroyWindow(child);
                panels.clear();
                break;
            case HostFirst:
                host.Destroy();
                panels.clear();
                break;
            default:
                for (auto& panel : panels)
                    static_cast<void>(panel.Detach());
            }
        }
        ASSERT_EQ(GetModuleHandleW(L"VixaVideoFX.dll"), nullptr);
        set.writes.clear();
        host.notifications = 0;
        HostWindow::Pump();
        Disturb(host.hwnd);
        HostWindow::Pump();
        EXPECT_EQ(set.writes.size(), 0u);
        EXPECT_EQ(host.notifications, 0);
    }
}

} // namespace
