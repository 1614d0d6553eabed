// What hosts are made of in tests of panels.
#pragma once

#include "host/effects/PanelWindow.h"

#include <cstdlib>

// How often a test of endurance repeats: the full count with VIXA_FULL_COUNTS set, which takes minutes.
inline int Repetitions(int full, int usual)
{
    return std::getenv("VIXA_FULL_COUNTS") ? full : usual;
}

// A host's window as a program that embeds panels has it: visible, counts what panels notify, runs the message loop.
class HostWindow final : public vixahost::effects::PanelWindow
{
public:
    HostWindow() : PanelWindow(500, 400)
    {
        ShowWindow(hwnd, SW_SHOW);
        SetForegroundWindow(hwnd);
    }
    using PanelWindow::hwnd;

    void Destroy() const { DestroyWindow(hwnd); }

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

    int notifications = 0;
    bool dataless = true;                       // every notification had both parameters 0
    std::function<void()> onNotified;           // runs inside each notification
    std::function<void(WPARAM)> onParentNotify; // runs inside each WM_PARENTNOTIFY

private:
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override
    {
        if (message == changed) {
            ++notifications;
            dataless = dataless && wParam == 0 && lParam == 0;
            if (const auto run = onNotified) // a copy: it may replace itself
                run();
            return 0;
        }
        if (message == WM_PARENTNOTIFY)
            if (const auto run = onParentNotify)
                run(wParam);
        return PanelWindow::OnMessage(message, wParam, lParam);
    }
};
