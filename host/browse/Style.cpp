#include "host/browse/Style.h"

#include "host/base/HostError.h"
#include "host/base/ResultCode.h"

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

HWND CreateControl(const wchar_t* className, const wchar_t* text, DWORD style, HWND parent, int id, const Style& look,
                   DWORD exStyle)
{
    const HWND control =
        CreateWindowExW(exStyle, className, text, style | WS_CHILD, 0, 0, 10, 10, parent,
                        reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), GetModuleHandleW(nullptr), nullptr);
    if (!control)
        throw FailedJob("The window can't be made (" + ExplainError(GetLastError()) + ").");
    SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(look.Font()), FALSE);
    return control;
}

} // namespace vixahost::browse
