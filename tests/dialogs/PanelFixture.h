// A panel in a host's window: opened as a host does it, driven with the user's keys and mouse, its property set and its
// notifications on record.
#pragma once

#include "dialogs/CDialogInvert.h"
#include "dialogs/CDialogMultiply.h"
#include "dialogs/CDialogNoPropreties.h"
#include "dialogs/CDialogSelectAddPixel.h"
#include "dialogs/CDialogSelectColor.h"
#include "dialogs/CDialogSelectGamma.h"
#include "dialogs/CDialogShiftEdges.h"
#include "host/fixtures/RecordedSet.h"
#include "localisation/LanguageFiles.h"
#include "localisation/ModuleBase.h"
#include "tests/ui/HostWindow.h"

#include <commctrl.h>

#include <cstdint>
#include <memory>
#include <string>

using vixahost::fixtures::RecordedSet;
using Block = std::vector<std::int32_t>;

// The program itself as the library: it has the library's resources, and the language files stand beside it.
class TestModule final : public ModuleBase
{
public:
    TestModule() { Attach(GetModuleHandleW(nullptr)); }
    ~TestModule() override { Detach(); }
    bool GetLanguageFileName(LANGID language, std::wstring& path) override
    {
        path.resize(path.find_last_of(L'\\') + 1);
        path += L"VixaVideoFX.dll";
        vixa::MakeLanguageFileName(language, path);
        return true;
    }
};

template <typename Dialog>
class Panel
{
public:
    explicit Panel(HostWindow& inHost, const Block& initial) : host(inHost), set(initial)
    {
        window = Show(&set);
        ShowWindow(window, SW_SHOW);
        HostWindow::Pump(window);
    }

    // Asks for the panel, as a host does whenever it wants to see it.
    HWND Show(IDataPropertySet* values)
    {
        HWND shown = nullptr;
        owner.Show(vixa::MakePanel<Dialog>, GetModuleHandleW(nullptr), host.hwnd, HostWindow::changed, values, &shown);
        return shown;
    }
    void Reload() { Show(&set); }
    void Reload(const Block& block)
    {
        set.Store(block);
        Reload();
    }

    HWND Control(int id) const { return GetDlgItem(window, id); }
    std::wstring Text(int id) const
    {
        wchar_t buffer[256];
        return {buffer, static_cast<std::size_t>(GetWindowTextW(Control(id), buffer, 256))};
    }
    bool Checked(int id) const { return SendMessageW(Control(id), BM_GETCHECK, 0, 0) == BST_CHECKED; }
    int Position(int id) const { return static_cast<int>(SendMessageW(Control(id), TBM_GETPOS, 0, 0)); }
    bool Shown(int id) const { return (GetWindowLongW(Control(id), GWL_STYLE) & WS_VISIBLE) != 0; }

    // The user's key on a control that has the focus.
    void Key(int id, WORD virtualKey) const
    {
        SetFocus(Control(id));
        INPUT input[2]{};
        input[0].type = input[1].type = INPUT_KEYBOARD;
        input[0].ki.wVk = input[1].ki.wVk = virtualKey;
        input[1].ki.dwFlags = KEYEVENTF_KEYUP;
        for (INPUT& each : input)
            each.ki.dwFlags |= IsExtended(virtualKey) ? KEYEVENTF_EXTENDEDKEY : 0u;
        SendInput(2, input, sizeof *input);
        HostWindow::Pump(window);
    }

    // The user's mouse button on a point of a control's client area.
    void Press(HWND target, int x, int y) const
    {
        PointAt(target, x, y);
        Button(MOUSEEVENTF_LEFTDOWN);
    }
    void MoveTo(HWND target, int x, int y) const { PointAt(target, x, y); }
    void Release() const { Button(MOUSEEVENTF_LEFTUP); }
    void Click(int id) const
    {
        RECT area;
        GetClientRect(Control(id), &area);
        Press(Control(id), 6, area.bottom / 2);
        Release();
    }

    // The middle of a slider's thumb.
    POINT Thumb(int id) const
    {
        RECT area;
        SendMessageW(Control(id), TBM_GETTHUMBRECT, 0, reinterpret_cast<LPARAM>(&area));
        return {(area.left + area.right) / 2, (area.top + area.bottom) / 2};
    }
    // A trackbar's message without the trackbar: what a host or an assistive program sends.
    void Scroll(int id, int request) const
    {
        SendMessageW(window, WM_HSCROLL, MAKEWPARAM(request, 0), reinterpret_cast<LPARAM>(Control(id)));
    }
    void Put(int id, int value) const { SendMessageW(Control(id), TBM_SETPOS, TRUE, value); }

    HostWindow& host;
    RecordedSet set;
    vixa::PanelOwner owner;
    HWND window = nullptr;

private:
    static bool IsExtended(WORD key) { return key >= VK_PRIOR && key <= VK_DOWN; }
    void Button(DWORD flag) const
    {
        INPUT input{};
        input.type = INPUT_MOUSE;
        input.mi.dwFlags = flag;
        SendInput(1, &input, sizeof input);
        HostWindow::Pump(window);
    }
    void PointAt(HWND target, int x, int y) const
    {
        POINT point{x, y};
        ClientToScreen(target, &point);
        INPUT input{};
        input.type = INPUT_MOUSE;
        input.mi.dx = (point.x * 65536 + 32768) / GetSystemMetrics(SM_CXSCREEN);
        input.mi.dy = (point.y * 65536 + 32768) / GetSystemMetrics(SM_CYSCREEN);
        input.mi.dwFlags = MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE;
        SendInput(1, &input, sizeof input);
        HostWindow::Pump(window);
    }
};

using ColourPanel = Panel<CDialogSelectColor>;
using AddPanel = Panel<CDialogSelectAddPixel>;
using InvertPanel = Panel<CDialogInvert>;
using MultiplyPanel = Panel<CDialogMultiply>;
using GammaPanel = Panel<CDialogSelectGamma>;
using ShiftPanel = Panel<CDialogShiftEdges>;
using EmptyPanel = Panel<CDialogNoPropreties>;
