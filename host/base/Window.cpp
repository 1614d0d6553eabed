#include "host/base/Window.h"

#include "host/base/HostError.h"
#include "host/base/ResultCode.h"
#include "host/base/Text.h"

#include <new>

namespace vixahost {

Window::~Window()
{
    if (hwnd)
        DestroyWindow(hwnd);
}

void Window::Create(const Kind& kind, const wchar_t* title, DWORD style, DWORD exStyle, HWND parent, HMENU menu,
                    SIZE size)
{
    WNDCLASSEXW windowClass = {};
    windowClass.cbSize = sizeof windowClass;
    windowClass.style = kind.style;
    windowClass.lpfnWndProc = Procedure;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.hCursor = LoadCursorW(nullptr, kind.cursor);
    windowClass.hbrBackground = kind.background;
    windowClass.lpszClassName = kind.className;
    if (!RegisterClassExW(&windowClass) && GetLastError() != ERROR_CLASS_ALREADY_EXISTS)
        throw FailedJob("The window can't be made (" + ExplainError(GetLastError()) + ").");
    const int place = (style & WS_CHILD) ? 0 : CW_USEDEFAULT;
    if (!CreateWindowExW(exStyle, kind.className, title, style, place, place, size.cx, size.cy, parent, menu,
                         windowClass.hInstance, this))
        throw FailedJob("The window can't be made (" + ExplainError(GetLastError()) + ").");
}

LRESULT Window::OnMessage(UINT message, WPARAM wParam, LPARAM lParam)
{
    return DefWindowProcW(hwnd, message, wParam, lParam);
}

void Window::OnFault(const char* message) noexcept
{
    const HWND above = hwnd ? GetParent(hwnd) : nullptr;
    if (above && GetWindowLongPtrW(above, GWLP_WNDPROC) == reinterpret_cast<LONG_PTR>(&Window::Procedure))
        if (auto* const parent = reinterpret_cast<Window*>(GetWindowLongPtrW(above, GWLP_USERDATA)))
            return parent->OnFault(message);
    Complain(std::string(message) + "\n");
}

LRESULT CALLBACK Window::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept
{
    auto* self = reinterpret_cast<Window*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (message == WM_NCCREATE) {
        self = static_cast<Window*>(reinterpret_cast<const CREATESTRUCTW*>(lParam)->lpCreateParams);
        self->hwnd = window;
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(self));
    }
    if (!self)
        return DefWindowProcW(window, message, wParam, lParam);
    if (message == WM_NCDESTROY) {
        SetWindowLongPtrW(window, GWLP_USERDATA, 0);
        self->hwnd = nullptr;
        return DefWindowProcW(window, message, wParam, lParam);
    }
    try {
        return self->OnMessage(message, wParam, lParam);
    } catch (const std::bad_alloc&) {
        self->OnFault("There is not enough memory for this; close something, or take a smaller picture.");
    } catch (const std::exception& fault) {
        self->OnFault(fault.what());
    }
    return 0;
}

} // namespace vixahost
