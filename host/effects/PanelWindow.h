// A window in which the host embeds an effect's settings panel.
#pragma once

#include "host/base/Window.h"

#include <vixavideofx/IEffectInfo.h>

#include <functional>

namespace vixahost::effects {

// Belongs to the thread that makes it.
class PanelWindow : public Window
{
public:
    static constexpr UINT changed = WM_APP + 1; // what a panel sends on each change

    // Of that many pixels, without frame: hidden, or a visible part of another window. Throws FailedJob when the system
    // makes no window.
    PanelWindow(int width, int height, HWND parent = nullptr);

    // Asks an effect for its panel on a property set; answers what the library answers.
    HRESULT ShowPanel(IEffectInfo& info, IUnknown* set, HWND* panel) const
    {
        return info.ShowSettingsDialog(0, hwnd, changed, set, panel);
    }
    // Dispatches what is queued for the thread's windows.
    static void Pump();

    std::function<void(WPARAM, LPARAM)> onChange;
    int otherMessages = 0; // in the range of a program's own messages

protected:
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
};

} // namespace vixahost::effects
