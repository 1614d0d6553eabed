#include "host/effects/PanelWindow.h"

#include "host/base/HostError.h"

namespace vixahost::effects {

PanelWindow::PanelWindow(int width, int height)
{
    static const ATOM registered = [] {
        WNDCLASSW type = {};
        type.lpfnWndProc = Procedure;
        type.hInstance = GetModuleHandleW(nullptr);
        type.hCursor = LoadCursorW(nullptr, IDC_ARROW);
        type.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
        type.lpszClassName = L"VixaPanelHost";
        return RegisterClassW(&type);
    }();
    window = CreateWindowExW(0, MAKEINTATOM(registered), L"vixahost", WS_POPUP | WS_CLIPCHILDREN, 0, 0, width, height,
                             nullptr, nullptr, GetModuleHandleW(nullptr), this);
    if (!window)
        throw FailedJob("The system makes no window (system error " + std::to_string(GetLastError()) + ").");
}

PanelWindow::~PanelWindow()
{
    DestroyWindow(window);
}

void PanelWindow::Pump()
{
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

LRESULT CALLBACK PanelWindow::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_NCCREATE)
        SetWindowLongPtrW(window, GWLP_USERDATA,
                          reinterpret_cast<LONG_PTR>(reinterpret_cast<CREATESTRUCTW*>(lParam)->lpCreateParams));
    auto* const host = reinterpret_cast<PanelWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (host && message == changed) {
        if (host->onChange)
            host->onChange(wParam, lParam);
        return 0;
    }
    if (host && message >= WM_APP && message <= 0xBFFF)
        ++host->otherMessages;
    return DefWindowProcW(window, message, wParam, lParam);
}

} // namespace vixahost::effects
