// What hosts are made of in tests of panels.
#pragma once

#include <windows.h>

#include <cstdlib>
#include <functional>

// How often a test of endurance repeats: the full count with VIXA_FULL_COUNTS set, which takes minutes.
inline int Repetitions(int full, int usual)
{
    return std::getenv("VIXA_FULL_COUNTS") ? full : usual;
}

// A host's window as a program that embeds panels has it: visible, counts one notification message, runs the message
// loop.
class HostWindow
{
public:
    static constexpr UINT changed = WM_APP + 77;

    HostWindow()
    {
        static const ATOM registered = [] {
            WNDCLASSW windowClass{};
            windowClass.lpfnWndProc = Procedure;
            windowClass.hInstance = GetModuleHandleW(nullptr);
            windowClass.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
            windowClass.lpszClassName = L"PanelHost";
            return RegisterClassW(&windowClass);
        }();
        (void)registered;
        hwnd = CreateWindowExW(0, L"PanelHost", L"Host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 500, 400, nullptr,
                               nullptr, GetModuleHandleW(nullptr), this);
        SetForegroundWindow(hwnd);
    }
    ~HostWindow() { Destroy(); }
    HostWindow(const HostWindow&) = delete;
    HostWindow& operator=(const HostWindow&) = delete;

    void Destroy()
    {
        if (hwnd)
            DestroyWindow(hwnd);
        hwnd = nullptr;
    }

    // Dispatches what is queued; with a panel, its dialog keys (tab and the like) too.
    static void Pump(HWND panel = nullptr)
    {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            if (panel && IsWindow(panel) && IsDialogMessageW(panel, &message))
                continue;
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }

    // Pumps until `done` or the time is over.
    static bool PumpUntil(const std::function<bool()>& done, DWORD milliseconds, HWND panel = nullptr)
    {
        for (const DWORD start = GetTickCount(); GetTickCount() - start < milliseconds; Sleep(5)) {
            Pump(panel);
            if (done())
                return true;
        }
        return done();
    }

    HWND hwnd = nullptr;
    int notifications = 0;
    bool dataless = true;                       // every notification had both parameters 0
    std::function<void()> onChange;             // runs inside each notification
    std::function<void(WPARAM)> onParentNotify; // runs inside each WM_PARENTNOTIFY

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
    {
        if (message == WM_NCCREATE)
            SetWindowLongPtrW(window, GWLP_USERDATA,
                              reinterpret_cast<LONG_PTR>(reinterpret_cast<CREATESTRUCTW*>(lParam)->lpCreateParams));
        auto* host = reinterpret_cast<HostWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
        if (host && message == changed) {
            ++host->notifications;
            host->dataless = host->dataless && wParam == 0 && lParam == 0;
            if (const auto run = host->onChange) // a copy: it may replace itself
                run();
            return 0;
        }
        if (host && message == WM_PARENTNOTIFY)
            if (const auto run = host->onParentNotify)
                run(wParam);
        return DefWindowProcW(window, message, wParam, lParam);
    }
};
