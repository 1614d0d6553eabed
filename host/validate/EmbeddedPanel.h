// An effect's panel in a window of the host's, on record.
#pragma once

#include "host/effects/PanelWindow.h"
#include "host/fixtures/RecordedSet.h"
#include "host/validate/Contract.h"
#include "host/validate/Subject.h"

#include <commctrl.h>

#include <vector>

namespace vixahost::validate {

// Used on the thread that makes it.
struct Embedded
{
    Embedded(Subject& library, const GUID& effect, std::span<const std::int32_t> block)
        : name(PromiseOf(effect).name), info(library.Info(effect)), set(block), host(300, 220)
    {
        host.onChange = [this](WPARAM wParam, LPARAM lParam) {
            ++notifications;
            writesBefore = set.writes;
            bare = bare && wParam == 0 && lParam == 0;
        };
        Open();
    }
    ~Embedded()
    {
        if (IsWindow(panel))
            DestroyWindow(panel);
    }
    Embedded(const Embedded&) = delete;
    Embedded& operator=(const Embedded&) = delete;

    void Open()
    {
        panel = nullptr;
        RequireResult(host.ShowPanel(*info.Get(), &set, &panel), S_OK, name + ": ShowSettingsDialog");
        Require(panel && IsWindow(panel), name + ": ShowSettingsDialog answers no window");
    }
    HWND Item(int id) const
    {
        const HWND item = GetDlgItem(panel, id);
        Require(item != nullptr, name + ": the panel has no control " + std::to_string(id));
        return item;
    }
    int Position(int id) const { return static_cast<int>(SendMessageW(Item(id), TBM_GETPOS, 0, 0)); }
    bool Checked(int id) const { return SendMessageW(Item(id), BM_GETCHECK, 0, 0) == BST_CHECKED; }

    // What the system's controls tell a dialog when the user has moved, ticked or chosen.
    void Scroll(int id, int position, int request) const
    {
        SendMessageW(Item(id), TBM_SETPOS, TRUE, position);
        const int place = request == TB_THUMBTRACK || request == TB_THUMBPOSITION ? position : 0;
        SendMessageW(panel, WM_HSCROLL, MAKEWPARAM(request, place), reinterpret_cast<LPARAM>(Item(id)));
    }
    void Tick(int id, bool on) const
    {
        SendMessageW(Item(id), BM_SETCHECK, on ? BST_CHECKED : BST_UNCHECKED, 0);
        SendMessageW(panel, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), reinterpret_cast<LPARAM>(Item(id)));
    }
    void Choose(int id, int entry) const
    {
        SendMessageW(Item(id), CB_SETCURSEL, static_cast<WPARAM>(entry), 0);
        SendMessageW(panel, WM_COMMAND, MAKEWPARAM(id, CBN_SELENDOK), reinterpret_cast<LPARAM>(Item(id)));
    }

    // What every control tells its dialog when it is used, whichever it is.
    void Use() const
    {
        if (panel)
            EnumChildWindows(panel, UseControl, 0);
    }
    // Queues what a user's hand leaves behind: mouse and key messages to each control, and its own to the panel.
    void Disturb() const
    {
        if (host.Handle())
            EnumChildWindows(host.Handle(), DisturbControl, 0);
    }

    std::string name;
    ComPtr<IEffectInfo> info;
    fixtures::RecordedSet set;
    effects::PanelWindow host;
    HWND panel = nullptr;
    int notifications = 0;
    int writesBefore = -1; // how often the block had been written when the last notification came
    bool bare = true;

private:
    static BOOL CALLBACK UseControl(HWND control, LPARAM)
    {
        const auto from = reinterpret_cast<LPARAM>(control);
        SendMessageW(GetParent(control), WM_HSCROLL, SB_ENDSCROLL, from);
        SendMessageW(GetParent(control), WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(control), CBN_SELENDOK), from);
        return TRUE;
    }
    static BOOL CALLBACK DisturbControl(HWND control, LPARAM)
    {
        for (const UINT message : std::initializer_list<UINT>{WM_MOUSEMOVE, WM_LBUTTONDOWN, WM_LBUTTONUP})
            PostMessageW(control, message, 0, MAKELPARAM(9, 4));
        PostMessageW(control, WM_KEYDOWN, VK_RIGHT, 0);
        PostMessageW(control, WM_KEYUP, VK_RIGHT, 0);
        const auto from = reinterpret_cast<LPARAM>(control);
        PostMessageW(GetParent(control), WM_HSCROLL, SB_ENDSCROLL, from);
        PostMessageW(GetParent(control), WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(control), CBN_SELENDOK), from);
        return TRUE;
    }
};

inline BOOL CALLBACK AddToolTip(HWND window, LPARAM list)
{
    wchar_t name[32];
    GetClassNameW(window, name, 32);
    if (lstrcmpiW(name, TOOLTIPS_CLASSW) == 0)
        reinterpret_cast<std::vector<HWND>*>(list)->push_back(window);
    return TRUE;
}

// The tooltip windows of this thread: a panel has one.
inline std::vector<HWND> ToolTips()
{
    std::vector<HWND> found;
    EnumThreadWindows(GetCurrentThreadId(), AddToolTip, reinterpret_cast<LPARAM>(&found));
    return found;
}

} // namespace vixahost::validate
