#include "host/browse/Style.h"

#include "host/base/HostError.h"
#include "host/base/ResultCode.h"

#include <utility>

namespace vixahost::browse {

LOGFONTW FontFor(LOGFONTW font, LANGID language)
{
    if (PRIMARYLANGID(language) != LANG_THAI)
        return font;
    const UniqueScreenDC screen(GetDC(nullptr));
    const UniqueFont own(CreateFontIndirectW(&font));
    const HGDIOBJ old = SelectObject(screen.get(), own.get());
    WORD glyph = 0;
    constexpr WORD none = 0xFFFF;
    if (GetGlyphIndicesW(screen.get(), L"\u0E01", 1, &glyph, GGI_MARK_NONEXISTING_GLYPHS) == 1 && glyph == none)
        font.lfCharSet = THAI_CHARSET;
    SelectObject(screen.get(), old);
    return font;
}

Style::Style(LANGID language)
{
    const UniqueScreenDC screen(GetDC(nullptr));
    dpi = GetDeviceCaps(screen.get(), LOGPIXELSY);
    NONCLIENTMETRICSW metrics = {};
    metrics.cbSize = sizeof metrics;
    SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
    const LOGFONTW chosen = FontFor(metrics.lfMessageFont, language);
    replaces = chosen.lfCharSet != metrics.lfMessageFont.lfCharSet;
    font.reset(CreateFontIndirectW(&chosen));
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
    std::swap(replaces, other.replaces);
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
