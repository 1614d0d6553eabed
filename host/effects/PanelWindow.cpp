#include "host/effects/PanelWindow.h"

namespace vixahost::effects {

PanelWindow::PanelWindow(int width, int height, HWND parent)
{
    const Kind kind = {L"VixaPanelHost", 0, IDC_ARROW, reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1)};
    Create(kind, L"vixahost", (parent ? WS_CHILD | WS_VISIBLE : WS_POPUP) | WS_CLIPCHILDREN,
           parent ? WS_EX_CONTROLPARENT : 0, parent, nullptr, {width, height});
}

void PanelWindow::Pump()
{
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

LRESULT PanelWindow::OnMessage(UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == changed) {
        if (onChange)
            onChange(wParam, lParam);
        return 0;
    }
    if (message >= WM_APP && message <= 0xBFFF)
        ++otherMessages;
    return Window::OnMessage(message, wParam, lParam);
}

} // namespace vixahost::effects
