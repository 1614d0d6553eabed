#include "host/media/WindowPicture.h"

#include "host/base/Handles.h"
#include "host/base/HostError.h"
#include "host/base/ResultCode.h"

#include <cstring>

namespace vixahost::media {

namespace {

// `area` of what a device context shows.
Picture ReadBack(HDC source, const RECT& area)
{
    Picture picture(area.right - area.left, area.bottom - area.top);
    if (picture.pixels.empty())
        throw FailedJob("There is no area to take a picture of.");
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = picture.width;
    info.bmiHeader.biHeight = -picture.height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* bits = nullptr;
    const UniqueMemoryDC dc(CreateCompatibleDC(nullptr));
    const UniqueBitmap bitmap(CreateDIBSection(dc.get(), &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    if (!bitmap)
        throw FailedJob("There is no room for a picture of what is seen.");
    const HGDIOBJ old = SelectObject(dc.get(), bitmap.get());
    const bool done =
        BitBlt(dc.get(), 0, 0, picture.width, picture.height, source, area.left, area.top, SRCCOPY) != FALSE;
    const DWORD error = GetLastError();
    GdiFlush();
    std::memcpy(picture.pixels.data(), bits, picture.pixels.size());
    SelectObject(dc.get(), old);
    if (!done)
        throw FailedJob("What is seen can't be read back (" + ExplainError(error) + ").");
    for (std::size_t i = 3; i < picture.pixels.size(); i += 4)
        picture.pixels[i] = 255;
    return picture;
}

} // namespace

Picture PictureOfWindow(HWND window)
{
    RECT outer = {}, area = {};
    GetWindowRect(window, &outer);
    GetClientRect(window, &area);
    MapWindowPoints(window, nullptr, reinterpret_cast<POINT*>(&area), 2);
    MENUBARINFO menu = {};
    menu.cbSize = sizeof menu;
    if (GetMenuBarInfo(window, OBJID_MENU, 0, &menu) && menu.rcBar.bottom > menu.rcBar.top)
        area.top = menu.rcBar.top;
    OffsetRect(&area, -outer.left, -outer.top);
    return ReadBack(UniqueWindowDC(GetWindowDC(window), {window}).get(), area);
}

Picture PictureOfScreen(const RECT& area)
{
    return ReadBack(UniqueScreenDC(GetDC(nullptr)).get(), area);
}

} // namespace vixahost::media
