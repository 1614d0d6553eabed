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

bool IsOfClass(HWND control, const wchar_t* name)
{
    std::array<wchar_t, 32> found{};
    GetClassNameW(control, found.data(), static_cast<int>(found.size()));
    return lstrcmpiW(found.data(), name) == 0;
}

// The pixels that a check box draws before its text, where it does not tell itself what it needs: the box, which grows
// with the resolution, and half a digit and a little.
int CheckBoxWidth(HDC dc)
{
    SIZE digit{};
    GetTextExtentPoint32W(dc, L"0", 1, &digit);
    return MulDiv(13, GetDeviceCaps(dc, LOGPIXELSX), 96) + static_cast<int>(digit.cx) / 2 + 3;
}

// The pixels that a control needs for its text.
int WidthForText(HWND control, bool isCheckBox)
{
    if (SIZE ideal{}; isCheckBox && SendMessageW(control, BCM_GETIDEALSIZE, 0, reinterpret_cast<LPARAM>(&ideal)))
        return static_cast<int>(ideal.cx);
    const std::size_t capacity = static_cast<std::size_t>(GetWindowTextLengthW(control)) + 1;
    std::wstring text(capacity, L'\0');
    const int length = GetWindowTextW(control, text.data(), static_cast<int>(capacity));
    int width = 0;
    if (const HDC dc = GetDC(control)) {
        const HGDIOBJ old = SelectObject(dc, reinterpret_cast<HGDIOBJ>(SendMessageW(control, WM_GETFONT, 0, 0)));
        SIZE size{};
        GetTextExtentPoint32W(dc, text.data(), length, &size);
        width = static_cast<int>(size.cx) + (isCheckBox ? CheckBoxWidth(dc) : 0);
        SelectObject(dc, old);
        ReleaseDC(control, dc);
    }
    return width;
}

// The pixels that a trackbar needs from its top to the end of its thumb.
int HeightForThumb(HWND trackbar)
{
    RECT thumb{};
    SendMessageW(trackbar, TBM_GETTHUMBRECT, 0, reinterpret_cast<LPARAM>(&thumb));
    return static_cast<int>(thumb.bottom) + 1;
}

// How far a control may reach: to the panel's edges, and to whatever begins right of it or below.
POINT LimitOf(HWND dialog, const RECT& place)
{
    RECT panel;
    GetClientRect(dialog, &panel);
    POINT limit{panel.right, panel.bottom};
    for (HWND other = GetWindow(dialog, GW_CHILD); other; other = GetWindow(other, GW_HWNDNEXT)) {
        const RECT beside = PlaceOf(other);
        if (beside.left >= place.right && beside.top < place.bottom && beside.bottom > place.top)
            limit.x = std::min(limit.x, beside.left);
        if (beside.top >= place.bottom && beside.left < place.right && beside.right > place.left)
            limit.y = std::min(limit.y, beside.top);
    }
    return limit;
}

} // namespace

void FitControls(HWND dialog)
{
    for (HWND control = GetWindow(dialog, GW_CHILD); control; control = GetWindow(control, GW_HWNDNEXT)) {
        const RECT place = PlaceOf(control);
        const POINT limit = LimitOf(dialog, place);
        LONG right = place.right, bottom = place.bottom;
        const auto grow = [&](LONG width, LONG height) {
            const LONG newRight = std::max(right, std::min(limit.x, place.left + width));
            const LONG newBottom = std::max(bottom, std::min(limit.y, place.top + height));
            if (newRight == right && newBottom == bottom)
                return false;
            right = newRight;
            bottom = newBottom;
            return SetWindowPos(control, nullptr, 0, 0, right - place.left, bottom - place.top,
                                SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE) != FALSE;
        };
        const bool isCheckBox =
            IsOfClass(control, L"Button") && (GetWindowLongW(control, GWL_STYLE) & BS_TYPEMASK) == BS_AUTOCHECKBOX;
        // A label that ends at a slider's right end keeps its place there.
        const bool isText = IsOfClass(control, L"Static") && !(GetWindowLongW(control, GWL_EXSTYLE) & WS_EX_RIGHT);
        if (isCheckBox || isText)
            grow(WidthForText(control, isCheckBox), 0);
        // A trackbar that has more room draws a larger thumb, up to a point.
        if (IsOfClass(control, TRACKBAR_CLASSW))
            while (grow(0, HeightForThumb(control))) {
            }
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
