// A window in which the host embeds an effect's settings panel.
#pragma once

#include <windows.h>

#include <functional>

namespace vixahost::effects {

// Belongs to the thread that makes it.
class PanelWindow
{
public:
    static constexpr UINT changed = WM_APP + 1; // what a panel sends on each change

    // Hidden, without frame, of that many pixels. Throws FailedJob when the system makes no window.
    PanelWindow(int width, int height);
    ~PanelWindow();
    PanelWindow(const PanelWindow&) = delete;
    PanelWindow& operator=(const PanelWindow&) = delete;

    HWND Handle() const noexcept { return window; }
    // Dispatches what is queued for the thread's windows.
    static void Pump();

    std::function<void(WPARAM, LPARAM)> onChange;
    int otherMessages = 0; // in the range of a program's own messages

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    HWND window = nullptr;
};

} // namespace vixahost::effects
