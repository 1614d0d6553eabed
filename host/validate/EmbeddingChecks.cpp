// Group "embedding": panels in hosts with several threads, that let go early and look after their messages themselves.
#include "host/validate/EmbeddedPanel.h"
#include "host/validate/Threads.h"

#include <vixavideofx/ClassIds.h>

#include <optional>

namespace vixahost::validate {

namespace {

using namespace vixavideofx;

const std::vector<std::int32_t> anyBlock = {1, 2, 3, 0};

void OtherThreads(Subject& library)
{
    Embedded panel(library, CLSID_GammaCorrection, anyBlock), empty(library, CLSID_Emboss, {});
    const ComPtr<IClassFactory> factories[] = {library.Factory(CLSID_InvertColor), library.Factory(CLSID_InvertColor),
                                               library.Factory(CLSID_InvertColor)};
    const Meanwhile others(3, [&](int i) {
        ComPtr<IEffectInfo> info;
        ULONG key = 0;
        if (SUCCEEDED(factories[i].As(&info)))
            info->GetSortKey(&key);
    });
    constexpr int rounds = 60;
    for (int i = 0; i < rounds; ++i) {
        DestroyWindow(empty.panel);
        empty.Open();
        PostMessageW(panel.Item(1034), WM_MOUSEMOVE, 0, MAKELPARAM(5, 5));
        effects::PanelWindow::Pump();
        SendMessageW(panel.panel, WM_HSCROLL, SB_ENDSCROLL, 0);
    }
    RequireNumber(panel.notifications, rounds, "the number of notifications");
}

void TwoThreads(Subject& library)
{
    library.Module();
    OnTwoThreads([&](int thread) {
        Embedded panel(library, thread == 0 ? CLSID_MultiplyPixel : CLSID_InvertColor, anyBlock);
        Embedded empty(library, CLSID_Emboss, {});
        constexpr int rounds = 60;
        for (int i = 0; i < rounds; ++i) {
            DestroyWindow(empty.panel);
            empty.Open();
            panel.Use();
            if (i % 10 == 9) {
                panel.Disturb();
                effects::PanelWindow::Pump();
                DestroyWindow(panel.panel);
                panel.Open();
            }
        }
        Require(panel.set.writes >= rounds, "changes were lost: " + panel.name);
        RequireNumber(panel.notifications, panel.set.writes, panel.name + ": the number of notifications");
    });
}

// Lets go of a panel's catalogue object, and notices whether the library would let itself be unloaded under its own
// call. Is called by the library, so it throws nothing.
struct LastReference
{
    void LetGo(Subject& library, Embedded& panel)
    {
        if (!panel.info)
            return;
        panel.info.Reset();
        stays = stays && library.CanUnload() == S_FALSE;
    }
    void RequireStay(const std::string& when) const
    {
        Require(stays, when + ": DllCanUnloadNow lets the library go under its own call");
    }
    bool stays = true;
};

void LetsGoInWrite(Subject& library)
{
    for (const Promise& effect : Promises()) {
        LastReference last;
        for (const bool defaults : {false, true}) {
            Embedded panel(library, *effect.classId, anyBlock);
            panel.set.onWrite = [&] { last.LetGo(library, panel); };
            if (defaults)
                RequireResult(panel.info.Get()->SetDefaults(&panel.set), S_OK, "SetDefaults");
            else
                panel.Use();
            last.RequireStay(panel.name);
            RequireNumber(panel.notifications, 0, panel.name + ": notifications by an object that has gone");
            Require(panel.set.writes <= 1, panel.name + ": an object that has gone writes");
        }
        RequireResult(library.CanUnload(), S_OK, std::string(effect.name) + ": DllCanUnloadNow afterwards");
    }
}

// A host that does something when a window is made in its own.
struct NotifiedWindow final : effects::PanelWindow
{
    explicit NotifiedWindow(std::function<void()> whenMade) : PanelWindow(300, 220), onChild(std::move(whenMade)) {}
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override
    {
        if (message == WM_PARENTNOTIFY)
            onChild();
        return PanelWindow::OnMessage(message, wParam, lParam);
    }
    std::function<void()> onChild;
};

void LetsGoWhileMade(Subject& library)
{
    for (const Promise& effect : Promises()) {
        LastReference last;
        for (const bool reading : {false, true}) {
            Embedded panel(library, *effect.classId, anyBlock);
            DestroyWindow(panel.panel);
            const NotifiedWindow host([&] {
                if (!reading)
                    last.LetGo(library, panel);
            });
            panel.set.onRead = [&] { last.LetGo(library, panel); };
            const HRESULT result = host.ShowPanel(*panel.info.Get(), &panel.set, &panel.panel);
            RequireResult(result, panel.panel ? S_OK : E_FAIL, panel.name + ": ShowSettingsDialog");
            last.RequireStay(panel.name);
            panel.info.Reset(); // it may have had nothing to read
            panel.Use();
            RequireNumber(panel.set.writes, 0, panel.name + ": writes by an object that has gone");
        }
        RequireResult(library.CanUnload(), S_OK, std::string(effect.name) + ": DllCanUnloadNow afterwards");
    }
}

void WindowGone(Subject& library)
{
    Embedded panel(library, CLSID_GammaCorrection, anyBlock);
    panel.set.onRead = [&] { DestroyWindow(GetWindow(panel.host.Handle(), GW_CHILD)); };
    for (const bool made : {false, true}) {
        RequireResult(panel.host.ShowPanel(*panel.info.Get(), &panel.set, &panel.panel), E_FAIL,
                      made ? "ShowSettingsDialog with a window that GetData destroyed"
                           : "ShowSettingsDialog again, with a window that GetData destroyed");
        Require(!panel.panel, "a window that has gone is handed out");
    }
    panel.set.onRead = nullptr;
    panel.Open();
}

void ReleasedElsewhere(Subject& library)
{
    for (int i = 0; i < 10; ++i) {
        Embedded panel(library, CLSID_InvertColor, anyBlock);
        ShowWindow(panel.panel, SW_SHOW);
        std::thread([&] { panel.info.Reset(); }).join(); // while this thread does not look after its messages
        effects::PanelWindow::Pump();
        panel.Use();
        RequireNumber(panel.set.writes, 0, "writes by an object that has gone");
        Require((GetWindowLongW(panel.panel, GWL_STYLE) & WS_VISIBLE) == 0,
                "the panel of an object that has gone shows");
    }
    RequireResult(library.CanUnload(), S_OK, "DllCanUnloadNow afterwards");
}

thread_local int seen;

LRESULT CALLBACK CountMessage(int code, WPARAM wParam, LPARAM lParam)
{
    if (code >= 0 && wParam == PM_REMOVE && reinterpret_cast<const MSG*>(lParam)->message == WM_APP + 5)
        ++seen;
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

void HostsHook(Subject& library)
{
    const effects::PanelWindow host(100, 100);
    const std::unique_ptr<HHOOK__, decltype(&UnhookWindowsHookEx)> hook(
        SetWindowsHookExW(WH_GETMESSAGE, CountMessage, nullptr, GetCurrentThreadId()), UnhookWindowsHookEx);
    const auto requireAll = [&](const char* when) {
        seen = 0;
        for (int i = 0; i < 10; ++i)
            PostMessageW(host.Handle(), WM_APP + 5, 0, 0);
        effects::PanelWindow::Pump();
        RequireNumber(seen, 10, std::string("of ten messages those that the host's own hook sees ") + when);
    };
    {
        std::optional<Embedded> first(std::in_place, library, CLSID_GammaCorrection, anyBlock);
        requireAll("with a panel");
        const Embedded second(library, CLSID_InvertColor, anyBlock);
        requireAll("with two");
        first.reset();
        requireAll("when one has gone");
        DestroyWindow(second.panel);
        requireAll("when no panel is left");
    }
    requireAll("when no object is left");
}

void SetUpOnce(Subject& library)
{
    const Embedded panel(library, CLSID_FilterColor, anyBlock);
    const HWND list = panel.Item(1003);
    for (const HWND focus : {list, static_cast<HWND>(nullptr), panel.host.Handle()})
        SendMessageW(panel.panel, WM_INITDIALOG, reinterpret_cast<WPARAM>(focus), 0);
    RequireNumber(static_cast<long long>(ToolTips().size()), 1, "the number of tooltips");
    RequireNumber(SendMessageW(list, CB_GETCOUNT, 0, 0), 3, "the entries of the list");
    panel.Choose(1003, 1);
    RequireNumber(panel.set.writes, 1, "writes by a panel that was told again to set itself up");
}

constexpr Check embeddingChecks[] = {
    {"embedding", "other-threads", "Objects made and released on other threads do not disturb an open panel.",
     OtherThreads},
    {"embedding", "two-threads", "Two threads have panels of their own.", TwoThreads},
    {"embedding", "lets-go-in-write", "A host may let go of the last reference inside SetData; nobody is told then.",
     LetsGoInWrite},
    {"embedding", "lets-go-while-made", "A host may let go while a panel is made and while it reads.", LetsGoWhileMade},
    {"embedding", "window-gone", "A window that GetData destroyed is not handed out.", WindowGone},
    {"embedding", "released-elsewhere", "Another thread may release an object; its panel then hides and is silent.",
     ReleasedElsewhere},
    {"embedding", "hosts-hook", "A host's own message hook sees all its messages, with panels and after them.",
     HostsHook},
    {"embedding", "set-up-once", "A panel is set up once, however often it is told to.", SetUpOnce},
};

} // namespace

std::span<const Check> EmbeddingChecks()
{
    return embeddingChecks;
}

} // namespace vixahost::validate
