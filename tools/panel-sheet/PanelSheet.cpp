// panel_sheet FILE.png: a picture of all panels in five languages, taken from the display.
#include "host/media/PictureFile.h"
#include "host/media/WindowPicture.h"
#include "tests/dialogs/PanelFixture.h"

#include <exception>
#include <iostream>
#include <list>

namespace {

constexpr int margin = 14, labelHeight = 18, gap = 12;

// All panels in one language, side by side, and the labels above them.
class Row
{
public:
    Row(HostWindow& host, LANGID language, const wchar_t* name, int top)
        : colour(host, {-120, 1}), add(host, {-255, 100, 8, 1}), invert(host, {5}), multiply(host, {150}),
          gamma(host, {140}), shift(host, {9}), empty(host, {})
    {
        (void)language;
        const struct
        {
            HWND window;
            const wchar_t* effect;
        } panels[] = {{colour.window, L"Filter color"},        {add.window, L"Add pixel"},
                      {invert.window, L"Invert color"},        {multiply.window, L"Multiply pixel"},
                      {gamma.window, L"Gamma correction"},     {shift.window, L"Shift edges"},
                      {empty.window, L"Emboss and the others"}};
        int left = margin;
        for (const auto& panel : panels) {
            RECT area;
            GetWindowRect(panel.window, &area);
            const std::wstring label = std::wstring(panel.effect) + (left == margin ? std::wstring(L", ") + name : L"");
            const HWND heading = CreateWindowExW(0, L"Static", label.c_str(), WS_CHILD | WS_VISIBLE | SS_NOPREFIX, left,
                                                 top, 190, labelHeight, host.hwnd, nullptr, nullptr, nullptr);
            SendMessageW(heading, WM_SETFONT, reinterpret_cast<WPARAM>(GetStockObject(DEFAULT_GUI_FONT)), TRUE);
            CreateWindowExW(0, L"Static", nullptr, WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | SS_GRAYFRAME, left - 2,
                            top + labelHeight - 2, area.right - area.left + 4, area.bottom - area.top + 4, host.hwnd,
                            nullptr, nullptr, nullptr);
            SetWindowPos(panel.window, HWND_TOP, left, top + labelHeight, 0, 0, SWP_NOSIZE);
            left += static_cast<int>(area.right - area.left) + gap;
            width = left;
            height = std::max(height, static_cast<int>(area.bottom - area.top) + labelHeight + gap);
        }
    }
    ColourPanel colour;
    AddPanel add;
    InvertPanel invert;
    MultiplyPanel multiply;
    GammaPanel gamma;
    ShiftPanel shift;
    EmptyPanel empty;
    int width = 0, height = 0;
};

void DrawSheet(const std::filesystem::path& file)
{
    // The font that the panels have on Windows.
    AddFontResourceExW(LR"(Z:\usr\share\wine\fonts\tahoma.ttf)", FR_PRIVATE, nullptr);
    const TestModule module;
    HostWindow host;
    SetWindowLongW(host.hwnd, GWL_STYLE, static_cast<LONG>(WS_POPUP | WS_VISIBLE));
    SetWindowPos(host.hwnd, HWND_TOP, 0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN),
                 SWP_FRAMECHANGED);
    std::list<Row> rows;
    int top = margin, width = 0;
    for (auto [language, name] : {std::pair<LANGID, const wchar_t*>{1033, L"English"},
                                  {1031, L"German"},
                                  {1032, L"Greek"},
                                  {1049, L"Russian"},
                                  {1041, L"Japanese"}}) {
        ModuleBase::SetLanguage(language);
        const Row& row = rows.emplace_back(host, language, name, top);
        top += row.height;
        width = row.width;
    }
    // The panels opened on top of each other.
    RedrawWindow(host.hwnd, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
    HostWindow::Pump();
    // The pointer rests on a slider, so that a tooltip is on the sheet.
    const auto& first = rows.front().multiply;
    first.MoveTo(first.Control(1029), 60, 8);
    first.MoveTo(first.Control(1029), 62, 9);
    HostWindow::PumpUntil([] { return false; }, 2500);
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    vixahost::media::WritePicture(file, vixahost::media::PictureFormat::Png,
                                  vixahost::media::PictureOfScreen({0, 0, width, top}));
    CoUninitialize();
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::cerr << "panel_sheet FILE.png\n";
        return 2;
    }
    try {
        DrawSheet(argv[1]);
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << "\n";
        return 1;
    }
    return 0;
}
