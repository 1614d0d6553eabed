// The built library's panels in hosts that let go early, have several threads, watch their own messages, or unload. The
// program itself uses no common controls: what a panel's windows need is the library's business.
#include "host/fixtures/RecordedSet.h"
#include "tests/support/LibraryTest.h"
#include "tests/ui/HostWindow.h"

#include <atomic>
#include <functional>
#include <optional>
#include <thread>
#include <vector>

using namespace test;
using namespace vixahost::fixtures;
using namespace vixavideofx;
using vixahost::effects::EffectLibrary;

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

// What a control tells its panel when it is used.
BOOL CALLBACK UseControl(HWND control, LPARAM)
{
    const auto from = reinterpret_cast<LPARAM>(control);
    SendMessageW(GetParent(control), WM_HSCROLL, SB_ENDSCROLL, from);
    SendMessageW(GetParent(control), WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(control), CBN_SELENDOK), from);
    return TRUE;
}

// One effect's panel in a host's window, the catalogue object and all.
struct Embedded
{
    Embedded(const EffectLibrary& library, REFCLSID effect, HostWindow& inHost)
        : host(inHost), info(library.CatalogueOf(effect))
    {
    }
    HRESULT Show()
    {
        const auto shown = info; // the host may let go of its own on the way
        return ShowUnguarded(shown.Get());
    }
    HRESULT ShowUnguarded(IEffectInfo* shown)
    {
        const HRESULT result = host.ShowPanel(*shown, &set, &panel);
        ShowWindow(panel, SW_SHOW);
        return result;
    }
    void Use() const { EnumChildWindows(panel, UseControl, 0); }

    HostWindow& host;
    ComPtr<IEffectInfo> info;
    RecordedSet set{1, 2, 3, 0};
    HWND panel = nullptr;
};

using Embedding = LibraryTest;

TEST_F(Embedding, ObjectsOfOtherThreadsDoNotDisturbAPanel)
{
    HostWindow host;
    std::atomic<bool> stop = false;
    std::vector<std::thread> workers;
    for (int i = 0; i < 3; ++i)
        workers.emplace_back([&] {
            ComPtr<IClassFactory> factory;
            library.CatalogueOf(CLSID_InvertColor).As(&factory);
            while (!stop) {
                ComPtr<IEffectInfo> info;
                ULONG key = 0;
                factory.As(&info);
                info->GetSortKey(&key);
            }
        });
    {
        Embedded panel(library, CLSID_GammaCorrection, host), empty(library, CLSID_Emboss, host);
        EXPECT_EQ(panel.Show(), S_OK);
        const int rounds = Repetitions(3000, 100);
        int closed = 0;
        for (int i = 0; i < rounds; ++i) {
            EXPECT_EQ(empty.Show(), S_OK);
            closed += DestroyWindow(empty.panel);
            PostMessageW(GetDlgItem(panel.panel, 1034), WM_MOUSEMOVE, 0, MAKELPARAM(5, 5));
            HostWindow::Pump();
            SendMessageW(panel.panel, WM_HSCROLL, SB_ENDSCROLL, 0);
        }
        EXPECT_EQ(closed, rounds) << "a window that had gone was handed out";
        EXPECT_EQ(host.notifications, rounds);
    }
    stop = true;
    for (std::thread& worker : workers)
        worker.join();
}

TEST_F(Embedding, TwoThreadsHaveTheirOwnPanels)
{
    const auto work = [this](REFCLSID effect) {
        HostWindow host;
        Embedded panel(library, effect, host), empty(library, CLSID_Emboss, host);
        constexpr int rounds = 150;
        for (int i = 0; i < rounds; ++i) {
            EXPECT_EQ(empty.Show(), S_OK);
            EXPECT_EQ(panel.Show(), S_OK);
            panel.Use();
            DestroyWindow(empty.panel);
            if (i % 10 == 9) {
                Disturb(host.hwnd);
                HostWindow::Pump();
                DestroyWindow(panel.panel);
            }
        }
        EXPECT_GE(panel.set.writes, 3 * rounds);
        EXPECT_EQ(host.notifications, panel.set.writes);
    };
    std::thread second(work, CLSID_InvertColor);
    work(CLSID_MultiplyPixel);
    second.join();
}

TEST_F(Embedding, AHostMayLetGoInsideItsOwnCalls)
{
    for (const Promise& effect : Promises()) {
        // When its property set is written, by a panel and by the defaults.
        HostWindow host;
        {
            Embedded panel(library, *effect.classId, host);
            ASSERT_EQ(panel.Show(), S_OK);
            panel.set.onWrite = [&] {
                if (panel.info) {
                    panel.info.Reset();
                    EXPECT_FALSE(library.CanUnload()) << effect.name << ": the panel is still at work";
                }
            };
            panel.Use();
            EXPECT_EQ(host.notifications, 0) << effect.name << ": nobody is told by an object that is gone";
            EXPECT_LE(panel.set.writes, 1) << effect.name;
        }
        {
            Embedded panel(library, *effect.classId, host);
            ASSERT_EQ(panel.Show(), S_OK);
            panel.set.onWrite = [&] {
                panel.info.Reset();
                EXPECT_FALSE(library.CanUnload()) << effect.name;
            };
            EXPECT_EQ(panel.info->SetDefaults(&panel.set), S_OK);
        }
        // While the panel is made, and while it reads.
        for (const bool whileMade : {true, false}) {
            Embedded panel(library, *effect.classId, host);
            const auto letGo = [&] {
                if (panel.info) {
                    panel.info.Reset();
                    EXPECT_FALSE(library.CanUnload()) << effect.name;
                }
            };
            if (whileMade)
                host.onParentNotify = [&](WPARAM) { letGo(); };
            else
                panel.set.onRead = letGo;
            const HRESULT result = panel.ShowUnguarded(panel.info.Get());
            EXPECT_EQ(result, panel.panel ? S_OK : E_FAIL) << effect.name;
            host.onParentNotify = nullptr;
            panel.info.Reset();
            const int written = panel.set.writes;
            panel.Use();
            EXPECT_EQ(panel.set.writes, written) << effect.name;
        }
        EXPECT_TRUE(library.CanUnload()) << effect.name;
    }
}

TEST_F(Embedding, AWindowThatIsGoneIsNotHandedOut)
{
    HostWindow host;
    Embedded panel(library, CLSID_GammaCorrection, host);
    panel.set.onRead = [&] { DestroyWindow(GetWindow(host.hwnd, GW_CHILD)); };
    EXPECT_EQ(panel.Show(), E_FAIL) << "made";
    EXPECT_EQ(panel.panel, nullptr);
    panel.set.onRead = nullptr;
    EXPECT_EQ(panel.Show(), S_OK);
    panel.set.onRead = [&] {
        EXPECT_EQ(panel.panel, GetWindow(host.hwnd, GW_CHILD)) << "handed over before the values are read";
        DestroyWindow(panel.panel);
    };
    EXPECT_EQ(panel.Show(), E_FAIL) << "shown again";
    EXPECT_EQ(panel.panel, nullptr);
}

TEST_F(Embedding, AnObjectMayBeReleasedByAnotherThread)
{
    HostWindow host;
    for (int i = 0; i < 10; ++i) {
        Embedded panel(library, CLSID_InvertColor, host);
        ASSERT_EQ(panel.Show(), S_OK);
        std::thread([&] { panel.info.Reset(); }).join(); // while this thread does not look after its messages
        HostWindow::Pump();
        panel.Use();
        EXPECT_EQ(panel.set.writes, 0);
        EXPECT_FALSE(IsWindowVisible(panel.panel));
    }
    std::thread([&] { EXPECT_TRUE(library.CanUnload()); }).join();
}

int seen;

LRESULT CALLBACK CountMessage(int code, WPARAM wParam, LPARAM lParam)
{
    if (code >= 0 && wParam == PM_REMOVE && reinterpret_cast<const MSG*>(lParam)->message == WM_APP + 5)
        ++seen;
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

TEST_F(Embedding, AHostsOwnHookSeesAllItsMessages)
{
    HostWindow host;
    const HHOOK hook = SetWindowsHookExW(WH_GETMESSAGE, CountMessage, nullptr, GetCurrentThreadId());
    const auto postTen = [&] {
        seen = 0;
        for (int i = 0; i < 10; ++i)
            PostMessageW(host.hwnd, WM_APP + 5, 0, 0);
        HostWindow::Pump();
        return seen;
    };
    {
        std::optional<Embedded> first(std::in_place, library, CLSID_GammaCorrection, host);
        Embedded second(library, CLSID_InvertColor, host);
        ASSERT_EQ(first->Show(), S_OK);
        EXPECT_EQ(postTen(), 10) << "with a panel";
        ASSERT_EQ(second.Show(), S_OK);
        EXPECT_EQ(postTen(), 10) << "with two";
        first.reset();
        EXPECT_EQ(postTen(), 10) << "when one object is gone";
        first.emplace(library, CLSID_Emboss, host);
        first.reset();
        EXPECT_EQ(postTen(), 10) << "when an object without a panel is gone";
        DestroyWindow(second.panel);
        EXPECT_EQ(postTen(), 10) << "when no panel is left";
    }
    EXPECT_EQ(postTen(), 10) << "when no object is left";
    UnhookWindowsHookEx(hook);
}

BOOL CALLBACK CountToolTip(HWND window, LPARAM sum)
{
    wchar_t name[32];
    GetClassNameW(window, name, 32);
    *reinterpret_cast<int*>(sum) += lstrcmpiW(name, L"tooltips_class32") == 0;
    return TRUE;
}

TEST_F(Embedding, ADialogIsSetUpOnce)
{
    HostWindow host;
    Embedded panel(library, CLSID_FilterColor, host);
    ASSERT_EQ(panel.Show(), S_OK);
    const HWND list = GetDlgItem(panel.panel, 1003);
    for (const HWND focus : {list, list, HWND{}, host.hwnd})
        SendMessageW(panel.panel, WM_INITDIALOG, reinterpret_cast<WPARAM>(focus), 0);
    int toolTips = 0;
    EnumThreadWindows(GetCurrentThreadId(), CountToolTip, reinterpret_cast<LPARAM>(&toolTips));
    EXPECT_EQ(toolTips, 1);
    EXPECT_EQ(SendMessageW(list, CB_GETCOUNT, 0, 0), 3);
    panel.Use();
    EXPECT_GT(host.notifications, 0) << "the panel still knows its controls";
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
        {
            const EffectLibrary library;
            std::vector<std::unique_ptr<Embedded>> panels;
            for (const Promise& effect : Promises()) {
                panels.push_back(std::make_unique<Embedded>(library, *effect.classId, host));
                ASSERT_EQ(panels.back()->Show(), S_OK);
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
                    static_cast<void>(panel->info.Detach());
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
