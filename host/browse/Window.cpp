#include "host/browse/Window.h"

#include "host/base/HostError.h"
#include "host/base/Text.h"

#include <new>
#include <utility>

namespace vixahost::browse {

Style::Style()
{
    const UniqueScreenDC screen(GetDC(nullptr));
    dpi = GetDeviceCaps(screen.get(), LOGPIXELSY);
    NONCLIENTMETRICSW metrics = {};
    metrics.cbSize = sizeof metrics;
    SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
    font.reset(CreateFontIndirectW(&metrics.lfMessageFont));
    const HGDIOBJ old = SelectObject(screen.get(), font.get());
    TEXTMETRICW text = {};
    if (GetTextMetricsW(screen.get(), &text))
        lineHeight = text.tmHeight;
    SelectObject(screen.get(), old);
}

void Style::Swap(Style& other) noexcept
{
    std::swap(font, other.font);
    std::swap(dpi, other.dpi);
    std::swap(lineHeight, other.lineHeight);
}

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
        throw FailedJob("The window can't be made (system error " + std::to_string(GetLastError()) + ").");
    const int place = (style & WS_CHILD) ? 0 : CW_USEDEFAULT;
    if (!CreateWindowExW(exStyle, kind.className, title, style, place, place, size.cx, size.cy, parent, menu,
                         windowClass.hInstance, this))
        throw FailedJob("The window can't be made (system error " + std::to_string(GetLastError()) + ").");
}

LRESULT Window::OnMessage(UINT message, WPARAM wParam, LPARAM lParam)
{
    return DefWindowProcW(hwnd, message, wParam, lParam);
}

void Window::OnFault(const char* message) noexcept
{
    Complain(message);
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

HWND CreateControl(const wchar_t* className, const wchar_t* text, DWORD style, HWND parent, int id, const Style& look,
                   DWORD exStyle)
{
    const HWND control =
        CreateWindowExW(exStyle, className, text, style | WS_CHILD, 0, 0, 10, 10, parent,
                        reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), GetModuleHandleW(nullptr), nullptr);
    if (!control)
        throw FailedJob("The window can't be made (system error " + std::to_string(GetLastError()) + ").");
    SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(look.Font()), FALSE);
    return control;
}

} // namespace vixahost::browse
