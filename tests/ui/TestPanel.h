// A panel that records what reaches it and runs what a test tells it to, and whose memory becomes inaccessible when it
// is destroyed, so that any later use of the object is a crash rather than luck.
#pragma once

#include "ui/CBaseWnd.h"

#include <commctrl.h>

#include <functional>
#include <string>
#include <vector>

class TestContext final : public ResourceContext
{
public:
    HINSTANCE GetInstance() override { return GetModuleHandleW(nullptr); }
};

class TestPanel final : public CBaseWnd
{
public:
    static constexpr int slider = 10, list = 1003, box = 12, label = 13, edit = 14;

    explicit TestPanel(ResourceContext* resources) : CBaseWnd(resources) {}

    static void* operator new(std::size_t size)
    {
        return VirtualAlloc(nullptr, size, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE);
    }
    static void operator delete(void* memory) { VirtualFree(memory, 0, MEM_DECOMMIT); }

    const MessageMapEntry* GetMessageMap() override;

    void OnInitDialog(WPARAM focus) override
    {
        ++inits;
        dialog = ::GetParent(reinterpret_cast<HWND>(focus));
        handleDuringInit = GetHwnd();
        CreateToolTip(dialog);
        AddToolTip(dialog, slider, 501, 500);
        AddToolTip(dialog, box, 502, 502);
        InstallMessageHook();
        if (whileCreated)
            whileCreated();
    }
    void OnDestroy() override
    {
        ++destroys;
        CBaseWnd::OnDestroy();
    }
    virtual void OnScroll(LPARAM control, WPARAM request)
    {
        scrolls.push_back({reinterpret_cast<HWND>(control), LOWORD(request)});
        NotifyParent();
    }
    virtual void OnChosen() { ++choices; }
    virtual void OnBox()
    {
        ++boxes;
        NotifyParent();
    }

    virtual void OnBoxAgain() { ++boxesAgain; }

    HWND Control(int id) const { return GetDlgItem(dialog, id); }
    HWND Tip() const { return toolTip; }
    HHOOK MessageHook() const { return hook.get(); }
    std::size_t ToolTipCount() const { return toolTips.size(); }

    struct Scroll
    {
        HWND control;
        int request;
    };
    int inits = 0, destroys = 0, choices = 0, boxes = 0, boxesAgain = 0;
    std::vector<Scroll> scrolls;
    HWND dialog = nullptr;
    HWND handleDuringInit = nullptr;
    std::function<void()> whileCreated;
};

inline const MessageMapEntry* TestPanel::GetMessageMap()
{
    static const MessageMapEntry map[] = {
        MessageRow(WM_INITDIALOG, &TestPanel::OnInitDialog),
        MessageRow(WM_HSCROLL, &TestPanel::OnScroll),
        CommandRow(WM_COMMAND, list, CBN_SELENDOK, &TestPanel::OnChosen),
        CommandRow(WM_COMMAND, box, 0, &TestPanel::OnBox),
        CommandRow(WM_COMMAND, box, BN_CLICKED, &TestPanel::OnBoxAgain),
        MessageRow(WM_NOTIFY, &TestPanel::OnNotify),
        CommandRow(WM_DESTROY, 0, 0, &TestPanel::OnDestroy),
        endOfMap,
    };
    return map;
}
