// window_sheet FOLDER WIDTHxHEIGHT CODE|all...: pictures of the browser's window in the given languages, one a file,
// each with all menus, the question before closing and "About"; "dark" before the languages shows them under dark
// system colours.
#include "host/base/Text.h"
#include "host/browse/BrowseWindow.h"
#include "host/browse/Ids.h"
#include "host/media/PictureFile.h"
#include "host/media/WindowPicture.h"

#include <cstdio>
#include <cstring>
#include <exception>
#include <functional>
#include <iostream>
#include <string_view>

using namespace vixahost;

namespace {

constexpr int sheetWidth = 1900, gap = 8;

void PumpFor(DWORD milliseconds, browse::BrowseWindow& window)
{
    for (const ULONGLONG end = GetTickCount64() + milliseconds; GetTickCount64() < end; Sleep(5))
        for (MSG message = {}; PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);)
            if (!window.Translate(message)) {
                TranslateMessage(&message);
                DispatchMessageW(&message);
            }
}

media::Picture PictureOfPopup(HWND popup)
{
    RECT area = {};
    GetWindowRect(popup, &area);
    return media::PictureOfScreen(area);
}

// What is seen while a call doesn't come back: taken and ended by a timer.
std::function<void()> meanwhile;

void CALLBACK OnTimer(HWND, UINT, UINT_PTR timer, DWORD)
{
    KillTimer(nullptr, timer);
    meanwhile();
}

void During(const std::function<void()>& call, std::function<void()> look)
{
    meanwhile = std::move(look);
    SetTimer(nullptr, 0, 250, OnTimer);
    call();
}

// Puts pictures side by side, in as many rows as they need.
media::Picture Packed(const std::vector<media::Picture>& parts)
{
    int x = 0, y = 0, row = 0;
    std::vector<POINT> places;
    for (const media::Picture& part : parts) {
        if (x > 0 && x + part.width > sheetWidth)
            x = 0, y += row + gap, row = 0;
        places.push_back({x, y});
        x += part.width + gap;
        row = std::max(row, part.height);
    }
    media::Picture sheet(std::max(sheetWidth, parts.front().width), y + row);
    for (std::size_t i = 0; i < sheet.pixels.size(); ++i)
        sheet.pixels[i] = i % 4 == 3 ? 255 : 160;
    for (std::size_t i = 0; i < parts.size(); ++i)
        for (int line = 0; line < parts[i].height; ++line)
            std::memcpy(sheet.Row(places[i].y + line) + std::size_t(places[i].x) * 4, parts[i].Row(line),
                        std::min(parts[i].RowBytes(), sheet.RowBytes() - std::size_t(places[i].x) * 4));
    return sheet;
}

// Gives what to call to have the system's own colours again.
std::function<void()> UseDarkColours()
{
    const struct
    {
        int element;
        COLORREF colour;
    } scheme[] = {{COLOR_WINDOW, RGB(32, 32, 32)},       {COLOR_WINDOWTEXT, RGB(240, 240, 240)},
                  {COLOR_BTNFACE, RGB(45, 45, 48)},      {COLOR_BTNTEXT, RGB(240, 240, 240)},
                  {COLOR_MENU, RGB(45, 45, 48)},         {COLOR_MENUBAR, RGB(45, 45, 48)},
                  {COLOR_MENUTEXT, RGB(240, 240, 240)},  {COLOR_MENUHILIGHT, RGB(0, 90, 158)},
                  {COLOR_HIGHLIGHT, RGB(0, 90, 158)},    {COLOR_HIGHLIGHTTEXT, RGB(255, 255, 255)},
                  {COLOR_GRAYTEXT, RGB(140, 140, 140)},  {COLOR_BTNSHADOW, RGB(90, 90, 90)},
                  {COLOR_BTNHIGHLIGHT, RGB(80, 80, 84)}, {COLOR_3DLIGHT, RGB(60, 60, 64)},
                  {COLOR_3DDKSHADOW, RGB(10, 10, 10)},   {COLOR_APPWORKSPACE, RGB(25, 25, 25)},
                  {COLOR_INFOBK, RGB(60, 60, 60)},       {COLOR_INFOTEXT, RGB(240, 240, 240)}};
    std::vector<int> elements;
    std::vector<COLORREF> colours, before;
    for (const auto& part : scheme) {
        elements.push_back(part.element);
        before.push_back(GetSysColor(part.element));
        colours.push_back(part.colour);
    }
    const auto set = [elements](const std::vector<COLORREF>& values) {
        SetSysColors(static_cast<int>(elements.size()), elements.data(), values.data());
    };
    set(colours);
    return [set, before] { set(before); };
}

void DrawSheet(browse::BrowseWindow& window, const effects::Language& language, const std::filesystem::path& folder)
{
    window.SetLanguage(language.id);
    const HWND frame = window.Handle(), tree = GetDlgItem(frame, IDC_TREE);
    // An effect with many settings, and what choosing it says.
    auto* const second = TreeView_GetNextItem(tree, TreeView_GetChild(tree, TreeView_GetRoot(tree)), TVGN_NEXT);
    TreeView_SelectItem(tree, TreeView_GetNextItem(tree, second, TVGN_NEXT));
    TreeView_SelectItem(tree, second);
    PumpFor(600, window);
    std::vector<media::Picture> parts = {media::PictureOfWindow(frame)};
    const HMENU menu = GetMenu(frame);
    for (int i = 0; i < GetMenuItemCount(menu); ++i)
        During([&] { TrackPopupMenu(GetSubMenu(menu, i), TPM_RETURNCMD, 0, 0, 0, frame, nullptr); },
               [&] {
                   parts.push_back(PictureOfPopup(FindWindowW(L"#32768", nullptr)));
                   EndMenu();
               });
    for (const auto& [message, wParam] : {std::pair<UINT, WPARAM>{WM_COMMAND, IDM_ABOUT}, {WM_CLOSE, 0}})
        During([&, message = message, wParam = wParam] { SendMessageW(frame, message, wParam, 0); },
               [&] {
                   const HWND dialog = GetForegroundWindow();
                   if (dialog == frame)
                       return;
                   parts.push_back(PictureOfPopup(dialog));
                   PostMessageW(dialog, WM_CLOSE, 0, 0);
               });
    media::WritePicture(folder / (language.code + ".png"), media::PictureFormat::Png, Packed(parts));
}

void Run(const std::filesystem::path& folder, SIZE size, std::vector<std::string_view> wanted)
{
    browse::BrowseWindow window(size);
    ShowWindow(window.Handle(), SW_SHOW);
    SetForegroundWindow(window.Handle());
    std::function<void()> restore = [] {};
    if (wanted.front() == "dark") {
        restore = UseDarkColours();
        wanted.erase(wanted.begin());
    }
    for (const effects::Language& language : effects::InstalledLanguages(window.Work().LibraryFile()))
        for (const std::string_view code : wanted)
            if (code == "all" || language.code == code)
                DrawSheet(window, language, folder);
    restore();
}

} // namespace

int main(int argc, char** argv)
{
    SIZE size = {};
    int width = 0, height = 0;
    if (argc < 4 || std::sscanf(argv[2], "%dx%d", &width, &height) != 2) {
        std::cerr << "window_sheet FOLDER WIDTHxHEIGHT [dark] CODE|all...\n";
        return 2;
    }
    size = {width, height};
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    try {
        Run(argv[1], size, {argv + 3, argv + argc});
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << "\n";
        return 1;
    }
    CoUninitialize();
    return 0;
}
