#include "dialogs/Panel.h"

#include "localisation/Texts.h"

#include <commctrl.h>

#include <algorithm>
#include <array>

namespace vixa {

namespace {

RECT PlaceOf(HWND control)
{
    RECT place{};
    GetWindowRect(control, &place);
    MapWindowPoints(nullptr, GetParent(control), reinterpret_cast<POINT*>(&place), 2);
    return place;
}

// The pixels that a control needs for its text.
int WidthForText(HWND control, bool isCheckBox)
{
    const std::size_t capacity = static_cast<std::size_t>(GetWindowTextLengthW(control)) + 1;
    std::wstring text(capacity, L'\0');
    const int length = GetWindowTextW(control, text.data(), static_cast<int>(capacity));
    SIZE size{};
    if (const HDC dc = GetDC(control)) {
        const HGDIOBJ old = SelectObject(dc, reinterpret_cast<HGDIOBJ>(SendMessageW(control, WM_GETFONT, 0, 0)));
        GetTextExtentPoint32W(dc, text.data(), length, &size);
        SelectObject(dc, old);
        ReleaseDC(control, dc);
    }
    // The box and the gap behind it.
    return static_cast<int>(size.cx) + (isCheckBox ? GetSystemMetrics(SM_CXMENUCHECK) + 4 : 0);
}

} // namespace

void WidenToTexts(HWND dialog)
{
    RECT panel;
    GetClientRect(dialog, &panel);
    for (HWND control = GetWindow(dialog, GW_CHILD); control; control = GetWindow(control, GW_HWNDNEXT)) {
        const LRESULT code = SendMessageW(control, WM_GETDLGCODE, 0, 0);
        const bool isCheckBox =
            (code & DLGC_BUTTON) && (GetWindowLongW(control, GWL_STYLE) & BS_TYPEMASK) == BS_AUTOCHECKBOX;
        const bool isLeftLabel = (code & DLGC_STATIC) && !(code & DLGC_BUTTON) &&
                                 (GetWindowLongW(control, GWL_STYLE) & SS_TYPEMASK) == SS_LEFT &&
                                 !(GetWindowLongW(control, GWL_EXSTYLE) & WS_EX_RIGHT);
        if (!isCheckBox && !isLeftLabel)
            continue;
        const RECT place = PlaceOf(control);
        LONG limit = panel.right;
        for (HWND other = GetWindow(dialog, GW_CHILD); other; other = GetWindow(other, GW_HWNDNEXT)) {
            const RECT beside = PlaceOf(other);
            if (beside.left >= place.right && beside.top < place.bottom && beside.bottom > place.top)
                limit = std::min(limit, beside.left);
        }
        const LONG right = std::min(limit, place.left + WidthForText(control, isCheckBox));
        if (right > place.right)
            SetWindowPos(control, nullptr, 0, 0, right - place.left, place.bottom - place.top,
                         SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    }
}

std::wstring OwnText(HINSTANCE library, UINT id)
{
    std::array<wchar_t, 255> buffer{};
    const int length = LoadStringW(library, id, buffer.data(), static_cast<int>(buffer.size()));
    return {buffer.data(), static_cast<std::size_t>(length)};
}

std::wstring PanelText(HINSTANCE library, UINT id)
{
    std::wstring text = LoadResString(id);
    return text.empty() ? OwnText(library, id) : text;
}

std::wstring PositionText(int position)
{
    return std::to_wstring(position);
}

bool SettlesValue(WPARAM scrollRequest)
{
    const WORD request = LOWORD(scrollRequest);
    return request != TB_THUMBPOSITION && request != TB_THUMBTRACK;
}

} // namespace vixa
