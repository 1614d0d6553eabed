#include "host/browse/Style.h"

#include "host/base/HostError.h"
#include "host/base/ResultCode.h"

#include <commctrl.h>
#include <uxtheme.h>

#include <cwchar>
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

int Style::Width(const std::wstring& text) const
{
    const UniqueScreenDC screen(GetDC(nullptr));
    const HGDIOBJ old = SelectObject(screen.get(), font.get());
    SIZE size = {};
    GetTextExtentPoint32W(screen.get(), text.c_str(), static_cast<int>(text.size()), &size);
    SelectObject(screen.get(), old);
    return size.cx;
}

std::wstring Style::Shortened(std::wstring text, int width) const
{
    const UniqueScreenDC screen(GetDC(nullptr));
    const HGDIOBJ old = SelectObject(screen.get(), font.get());
    RECT box = {0, 0, width, lineHeight};
    const auto length = static_cast<int>(text.size());
    text.resize(text.size() + 4); // as many letters as the marks of what is left out may take
    DrawTextW(screen.get(), text.data(), length, &box,
              DT_SINGLELINE | DT_NOPREFIX | DT_CALCRECT | DT_PATH_ELLIPSIS | DT_END_ELLIPSIS | DT_MODIFYSTRING);
    SelectObject(screen.get(), old);
    text.resize(std::wcslen(text.c_str()));
    return text;
}

namespace {

BOOL CALLBACK DrawPlainly(HWND control, LPARAM dark)
{
    // Of a list of classes that has none, no style is found; not every system takes an empty text for such a list.
    const wchar_t* const classes = dark ? L" " : nullptr;
    SetWindowTheme(control, classes, classes);
    wchar_t name[30] = {};
    GetClassNameW(control, name, 30);
    // Lists keep the colours that they were made with.
    if (_wcsicmp(name, WC_LISTVIEWW) == 0) {
        ListView_SetBkColor(control, GetSysColor(COLOR_WINDOW));
        ListView_SetTextBkColor(control, GetSysColor(COLOR_WINDOW));
        ListView_SetTextColor(control, GetSysColor(COLOR_WINDOWTEXT));
    }
    return TRUE;
}

} // namespace

BOOL CALLBACK GiveFont(HWND window, LPARAM font)
{
    SendMessageW(window, WM_SETFONT, static_cast<WPARAM>(font), TRUE);
    return TRUE;
}

bool DarkColours()
{
    const COLORREF ground = GetSysColor(COLOR_WINDOW);
    return 2 * GetRValue(ground) + 5 * GetGValue(ground) + GetBValue(ground) < 8 * 128;
}

void FollowColours(HWND window)
{
    EnumChildWindows(window, DrawPlainly, DarkColours());
    RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
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
