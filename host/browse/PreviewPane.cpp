#include "host/browse/PreviewPane.h"

#include "host/base/HostError.h"
#include "host/base/Text.h"

#include <windowsx.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cwchar>

namespace vixahost::browse {

namespace {

constexpr double smallestZoom = 1.0 / 64, largestZoom = 32;

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

PreviewPane::PreviewPane(HWND parent, int id, const Style& look, const Texts& language) : style(look), texts(language)
{
    Create({L"VixaPreviewPane", CS_DBLCLKS | CS_HREDRAW | CS_VREDRAW, IDC_SIZEWE, nullptr}, texts(IDT_PREVIEW).c_str(),
           WS_CHILD | WS_VISIBLE | WS_TABSTOP | WS_CLIPSIBLINGS, 0, parent,
           reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), {10, 10});
}

void PreviewPane::Show(const media::FrameFormat& newFormat, const LiveResult& newResult)
{
    // Another picture is seen whole at first.
    if (newFormat.width != format.width || newFormat.height != format.height)
        zoom = 0;
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

SIZE PreviewPane::PaneSize() const
{
    RECT client = {};
    GetClientRect(hwnd, &client);
    return {client.right, client.bottom};
}

Placement PreviewPane::PicturePlace() const
{
    const SIZE pane = PaneSize();
    return zoom == 0 ? Fit(format.width, format.height, pane.cx, pane.cy, enlarge ? largestZoom : 1.0)
                     : Zoomed(format.width, format.height, pane.cx, pane.cy, {zoom, centreX, centreY});
}

double PreviewPane::Scale() const
{
    const Placement place = PicturePlace();
    return format.width > 0 ? static_cast<double>(place.width) / format.width : 1;
}

void PreviewPane::SetZoom(double factor, const POINT* fixed)
{
    const SIZE pane = PaneSize();
    const Placement before = PicturePlace();
    if (factor != 0 && before.width > 0) {
        const double x = fixed ? fixed->x : pane.cx / 2.0, y = fixed ? fixed->y : pane.cy / 2.0;
        // The share of the picture at that place, and where the pane's middle then is.
        const double shareX = (x - before.left) / before.width, shareY = (y - before.top) / before.height;
        zoom = std::clamp(factor, smallestZoom, largestZoom);
        centreX = shareX + (pane.cx / 2.0 - x) / (format.width * zoom);
        centreY = shareY + (pane.cy / 2.0 - y) / (format.height * zoom);
        MoveBy(0, 0);
    } else {
        zoom = 0;
    }
    InvalidateRect(hwnd, nullptr, FALSE);
}

void PreviewPane::ZoomBy(double factor, const POINT* fixed)
{
    SetZoom(Scale() * factor, fixed);
}

// Some of the picture stays in the pane.
void PreviewPane::MoveBy(int x, int y)
{
    if (zoom == 0)
        return;
    centreX = std::clamp(centreX - x / (format.width * zoom), 0.0, 1.0);
    centreY = std::clamp(centreY - y / (format.height * zoom), 0.0, 1.0);
    InvalidateRect(hwnd, nullptr, FALSE);
}

// The columns of the pane that show the picture.
PreviewPane::Span PreviewPane::Seen(const Placement& place) const
{
    const int begin = std::max(place.left, 0);
    return {begin, std::max(std::min<int>(place.left + place.width, PaneSize().cx), begin)};
}

int PreviewPane::DividerX(const Placement& place) const
{
    const Span seen = Seen(place);
    return seen.begin + static_cast<int>(std::floor((seen.end - seen.begin) * divider + 0.5));
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
    case WM_LBUTTONDOWN: {
        SetFocus(hwnd);
        SetCapture(hwnd);
        draggedFrom = {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
        const bool onDivider = std::abs(draggedFrom.x - DividerX(PicturePlace())) <= style.Scale(8);
        drag = zoom == 0 || onDivider ? Drag::Divider : Drag::Picture;
        DragTo(draggedFrom);
        return 0;
    }
    case WM_MOUSEMOVE:
        DragTo({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)});
        return 0;
    case WM_LBUTTONUP:
        if (drag != Drag::None)
            ReleaseCapture();
        return 0;
    case WM_CAPTURECHANGED:
        drag = Drag::None;
        return 0;
    case WM_MOUSEWHEEL: {
        POINT at = {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
        ScreenToClient(hwnd, &at);
        ZoomBy(std::pow(1.25, GET_WHEEL_DELTA_WPARAM(wParam) / static_cast<double>(WHEEL_DELTA)), &at);
        return 0;
    }
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
    const int step = style.Scale(32);
    if (GetKeyState(VK_SHIFT) < 0 && key >= VK_LEFT && key <= VK_DOWN) {
        MoveBy(key == VK_LEFT ? step : key == VK_RIGHT ? -step : 0, key == VK_UP ? step : key == VK_DOWN ? -step : 0);
        return true;
    }
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

void PreviewPane::DragTo(POINT at)
{
    const Span seen = Seen(PicturePlace());
    if (drag == Drag::Divider && seen.end > seen.begin)
        SetDivider(static_cast<double>(at.x - seen.begin) / (seen.end - seen.begin));
    else if (drag == Drag::Picture)
        MoveBy(at.x - draggedFrom.x, at.y - draggedFrom.y);
    draggedFrom = at;
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
        DrawLabel(texts(IDT_BEFORE).c_str(), x - gap, std::max(place.top, 0) + gap, true);
        DrawLabel(texts(IDT_AFTER).c_str(), x + gap, std::max(place.top, 0) + gap, false);
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
