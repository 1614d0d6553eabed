// The built library's panels in hosts that unload it. The program itself uses no common controls: what a panel's
// windows need is the library's business.
#include "host/fixtures/RecordedSet.h"
#include "tests/support/LibraryTest.h"
#include "tests/ui/HostWindow.h"

#include <vector>

using namespace test;
using vixahost::effects::EffectLibrary;
using vixahost::fixtures::RecordedSet;

namespace {

// Queues what a user's hand leaves behind: mouse and key messages to a control, and its own to its panel.
BOOL CALLBACK DisturbControl(HWND control, LPARAM)
{
    for (UINT message : {WM_MOUSEMOVE, WM_LBUTTONDOWN, WM_LBUTTONUP})
        PostMessageW(control, message, 0, MAKELPARAM(9, 4));
    PostMessageW(control, WM_KEYDOWN, VK_RIGHT, 0);
    PostMessageW(control, WM_KEYUP, VK_RIGHT, 0);
    const HWND panel = GetParent(control);
    PostMessageW(panel, WM_HSCROLL, SB_ENDSCROLL, reinterpret_cast<LPARAM>(control));
    PostMessageW(panel, WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(control), CBN_SELENDOK), reinterpret_cast<LPARAM>(control));
    return TRUE;
}

void Disturb(HWND host)
{
    EnumChildWindows(host, DisturbControl, 0);
    PostThreadMessageW(GetCurrentThreadId(), WM_USER, 0, 0);
}

// A library that held panels is unloaded while messages still arrive at the host's thread.
TEST(Unloading, IsSafeWhileMessagesArrive)
{
    enum Way
    {
        ObjectsFirst, // objects released, windows of the host left
        WindowsFirst, // windows destroyed, then the objects
        HostFirst,    // the host's window destroyed, then the objects
        Leaked,       // nothing released at all
        Ways,
    };
    for (int i = 0; i < 3 * Ways; ++i) {
        HostWindow host;
        RecordedSet set{1, 2, 3, 0};
        {
            const EffectLibrary library;
            std::vector<ComPtr<IEffectInfo>> panels;
            for (const Promise& effect : Promises()) {
                HWND panel = nullptr;
                panels.push_back(library.CatalogueOf(*effect.classId));
                ASSERT_EQ(host.ShowPanel(*panels.back().Get(), &set, &panel), S_OK);
                ShowWindow(panel, SW_SHOW);
            }
            Disturb(host.hwnd);
            HostWindow::Pump();
            ASSERT_GT(host.notifications, 10);
            Disturb(host.hwnd);
            switch (i % Ways) {
            case ObjectsFirst:
                break;
            case WindowsFirst:
                while (const HWND child = GetWindow(host.hwnd, GW_CHILD))
                    DestroyWindow(child);
                break;
            case HostFirst:
                host.Destroy();
                break;
            default:
                for (auto& panel : panels)
                    static_cast<void>(panel.Detach());
            }
            if (i % Ways != Leaked) {
                panels.clear();
                EXPECT_TRUE(library.CanUnload());
            }
        }
        ASSERT_EQ(GetModuleHandleW(L"VixaVideoFX.dll"), nullptr);
        host.notifications = 0;
        HostWindow::Pump();
        Disturb(host.hwnd);
        HostWindow::Pump();
        EXPECT_EQ(host.notifications, 0);
    }
}

} // namespace
