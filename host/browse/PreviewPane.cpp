#include "host/browse/PreviewPane.h"

#include "host/base/HostError.h"
#include "host/base/Text.h"

#include <windowsx.h>

#include <algorithm>
#include <cmath>
#include <cwchar>

namespace vixahost::browse {

namespace {

// Whatever goes wrong meanwhile: the window counts as painted, or it would ask for it for ever.
struct Painting
{
    explicit Painting(HWND handle) : window(handle), dc(BeginPaint(window, &paint)) {}
    ~Painting() { EndPaint(window, &paint); }
    Painting(const Painting&) = delete;
    Painting& operator=(const Painting&) = delete;

    HWND window;
    PAINTSTRUCT paint = {};
    HDC dc;
};

} // namespace

PreviewPane::PreviewPane(HWND parent, int id, const Style& look) : style(look)
{
    Create({L"VixaPreviewPane", CS_DBLCLKS | CS_HREDRAW | CS_VREDRAW, IDC_SIZEWE, nullptr}, L"Preview",
           WS_CHILD | WS_VISIBLE | WS_TABSTOP | WS_CLIPSIBLINGS, 0, parent,
           reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), {10, 10});
}

void PreviewPane::Show(const media::FrameFormat& newFormat, const LiveResult& newResult)
{
    format = newFormat;
    result = newResult;
    InvalidateRect(hwnd, nullptr, FALSE);
    UpdateWindow(hwnd);
}

void PreviewPane::SetDivider(double position)
{
    divider = std::clamp(position, 0.0, 1.0);
    InvalidateRect(hwnd, nullptr, FALSE);
}

void PreviewPane::SetEnlarge(bool enlarges)
{
    enlarge = enlarges;
    InvalidateRect(hwnd, nullptr, FALSE);
}

Placement PreviewPane::PicturePlace() const
{
    RECT client = {};
    GetClientRect(hwnd, &client);
    return Fit(format.width, format.height, client.right, client.bottom, enlarge ? 64.0 : 1.0);
}

int PreviewPane::DividerX(const Placement& place) const
{
    return place.left + static_cast<int>(std::floor(place.width * divider + 0.5));
}

LRESULT PreviewPane::OnMessage(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_ERASEBKGND:
        return 1;
    case WM_PAINT:
        Paint(Painting(hwnd).dc);
        return 0;
    case WM_PRINTCLIENT:
        Paint(reinterpret_cast<HDC>(wParam));
        return 0;
    case WM_LBUTTONDOWN:
        SetFocus(hwnd);
        SetCapture(hwnd);
        drags = true;
        DragTo(GET_X_LPARAM(lParam));
        return 0;
    case WM_MOUSEMOVE:
        if (drags)
            DragTo(GET_X_LPARAM(lParam));
        return 0;
    case WM_LBUTTONUP:
        if (drags)
            ReleaseCapture();
        return 0;
    case WM_CAPTURECHANGED:
        drags = false;
        return 0;
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
        InvalidateRect(hwnd, nullptr, FALSE);
        return 0;
    case WM_GETDLGCODE:
        return DLGC_WANTARROWS;
    case WM_KEYDOWN:
        if (OnKey(wParam))
            return 0;
        break;
    default:
        break;
    }
    return Window::OnMessage(message, wParam, lParam);
}

bool PreviewPane::OnKey(WPARAM key)
{
    switch (key) {
    case VK_LEFT:
        SetDivider(divider - 0.02);
        return true;
    case VK_RIGHT:
        SetDivider(divider + 0.02);
        return true;
    case VK_HOME:
        SetDivider(0);
        return true;
    case VK_END:
        SetDivider(1);
        return true;
    default:
        return false;
    }
}

void PreviewPane::DragTo(int x)
{
    const Placement place = PicturePlace();
    if (place.width > 0)
        SetDivider(static_cast<double>(x - place.left) / place.width);
}

void PreviewPane::MakeBuffer(int width, int height)
{
    if (bufferBitmap && buffer.width == width && buffer.height == height)
        return;
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* bits = nullptr;
    bufferDC.reset(CreateCompatibleDC(nullptr));
    bufferBitmap.reset(CreateDIBSection(bufferDC.get(), &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    if (!bufferBitmap)
        throw FailedJob("There is no room to draw the picture; make the window smaller.");
    SelectObject(bufferDC.get(), bufferBitmap.get());
    buffer = {static_cast<std::uint32_t*>(bits), width, height};
}

void PreviewPane::Paint(HDC target)
{
    RECT client = {};
    GetClientRect(hwnd, &client);
    if (client.right <= 0 || client.bottom <= 0)
        return;
    MakeBuffer(client.right, client.bottom);
    const HDC dc = bufferDC.get();
    const Placement place = PicturePlace();
    // Only around the picture: the picture itself is drawn over everything.
    const HBRUSH ground = GetSysColorBrush(COLOR_APPWORKSPACE);
    const RECT margins[] = {{0, 0, client.right, place.top},
                            {0, place.top + place.height, client.right, client.bottom},
                            {0, place.top, place.left, place.top + place.height},
                            {place.left + place.width, place.top, client.right, place.top + place.height}};
    for (const RECT& margin : margins)
        FillRect(dc, &margin, ground);
    if (!result.failure.empty()) {
        DrawFailure(client);
    } else if (result.before && result.after && place.width > 0) {
        const int x = DividerX(place);
        GdiFlush();
        DrawFrame({*result.before, format.width, format.height}, place, place.left, x, buffer);
        DrawFrame({*result.after, format.width, format.height}, place, x, place.left + place.width, buffer);
        const RECT dark = {x - style.Scale(1) - 1, place.top, x + style.Scale(1) + 1, place.top + place.height};
        FillRect(dc, &dark, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
        const RECT light = {x - style.Scale(1), place.top, x + style.Scale(1), place.top + place.height};
        FillRect(dc, &light,
                 GetFocus() == hwnd ? GetSysColorBrush(COLOR_HIGHLIGHT)
                                    : static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
        const int gap = style.Scale(8);
        DrawLabel(L"Before", x - gap, place.top + gap, true);
        DrawLabel(L"After", x + gap, place.top + gap, false);
    }
    BitBlt(target, 0, 0, client.right, client.bottom, dc, 0, 0, SRCCOPY);
}

// In the picture's place.
void PreviewPane::DrawFailure(RECT area)
{
    const HDC dc = bufferDC.get();
    const HGDIOBJ old = SelectObject(dc, style.Font());
    FillRect(dc, &area, GetSysColorBrush(COLOR_WINDOW));
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, GetSysColor(COLOR_WINDOWTEXT));
    InflateRect(&area, -style.Scale(16), -style.Scale(16));
    DrawTextW(dc, Wide(result.failure).c_str(), -1, &area, DT_CENTER | DT_WORDBREAK | DT_NOPREFIX);
    SelectObject(dc, old);
}

// White on black beside the divider, left away where the picture has no room for it.
void PreviewPane::DrawLabel(const wchar_t* text, int x, int y, bool toTheLeft)
{
    const HDC dc = bufferDC.get();
    const HGDIOBJ old = SelectObject(dc, style.Font());
    SIZE size = {};
    const int length = static_cast<int>(std::wcslen(text));
    GetTextExtentPoint32W(dc, text, length, &size);
    const int pad = style.Scale(4);
    RECT box = {toTheLeft ? x - size.cx - 2 * pad : x, y, 0, y + size.cy + pad};
    box.right = box.left + size.cx + 2 * pad;
    const Placement place = PicturePlace();
    if (box.left >= place.left && box.right <= place.left + place.width && box.bottom <= place.top + place.height) {
        FillRect(dc, &box, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
        SetBkMode(dc, TRANSPARENT);
        SetTextColor(dc, RGB(255, 255, 255));
        DrawTextW(dc, text, length, &box, DT_CENTER | DT_VCENTER | DT_SINGLELINE);
    }
    SelectObject(dc, old);
}

} // namespace vixahost::browse
