// The base class of the settings panels: a modeless dialog made from a template as a child of the host's window, whose
// messages reach virtual handlers through a message map, with a tooltip whose texts come from string resources on
// demand.
//
// Threads: everything runs on the thread that creates the dialogs and runs their message loop. The list of live windows
// and the current window are process-wide and unguarded.
//
// Lifetime: the object does not own the dialog window, which goes with the host's window. Either may go first. When the
// object goes first, its window stays behind hidden and inert: it no longer calls into this module, so the module may
// be unloaded. When the window goes first, the object is ready for another Create. Both may happen inside a handler.
//
// No operation reports an error.
#pragma once

#include "framework/Handles.h"
#include "ui/MessageMapEntry.h"
#include "ui/ResourceContext.h"
#include "ui/ToolTipInfo.h"

#include <windows.h>

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

struct IDataPropertySet;

class CBaseWnd
{
public:
    CBaseWnd() = default;
    // A null context leaves the window without one.
    explicit CBaseWnd(ResourceContext* resources) { CBaseWnd::SetContext(resources); }
    CBaseWnd(const CBaseWnd&) = delete;
    CBaseWnd& operator=(const CBaseWnd&) = delete;

    // Ends the dialog and cuts its window off from this module; the window itself stays the host's.
    virtual ~CBaseWnd();

    // The context is not owned and must outlive its use here. Null keeps the one in force.
    virtual void SetContext(ResourceContext* context);
    // Null without a context.
    virtual HINSTANCE GetInstance();
    // The property set is not owned and no reference is taken: the host keeps it alive while the dialog may use it.
    virtual void SetParams(IDataPropertySet* params);
    virtual IDataPropertySet* GetParams();
    // The message that NotifyParent sends.
    virtual void SetNotifyMessage(std::uint32_t message);
    // Tells the host of a change. The host may do anything in answer, also destroy this window or this object: call it
    // last.
    virtual void NotifyParent();
    // The class's rows, ended by endOfMap; null for none.
    virtual const MessageMapEntry* GetMessageMap();
    // Runs every row of the map that answers the message, until one of them destroys this object.
    virtual void OnMessage(UINT message, WPARAM wParam, LPARAM lParam);
    // Makes the dialog from template `templateId` (its low 16 bits) of the context's module, as a child of
    // `hostWindow`. Without a context or a host window nothing is made. GetHwnd tells whether it succeeded.
    virtual void Create(HWND hostWindow, std::uint32_t templateId);
    virtual void Show(int ignored);
    // Null before Create, after OnDestroy and while the template is being created.
    virtual HWND GetHwnd();
    virtual void CreateToolTip(HWND dialog);
    // Hooks this thread's message queue, so that the tooltip sees the mouse over the dialog's controls. The hook lives
    // until the dialog ends.
    virtual void InstallMessageHook();
    // wParam of WM_INITDIALOG: the control that would receive the focus, a child of the dialog.
    virtual void OnInitDialog(WPARAM focusControl);
    virtual void OnOK();
    virtual void OnCancel();
    // Ends the dialog: its window is cut off as in the destructor and forgotten.
    virtual void OnDestroy();
    virtual void DefaultHandler(LPARAM lParam, WPARAM wParam);
    // Answers the tooltip's request for a text; `notifyHeader` points to an NMHDR.
    virtual void OnNotify(LPARAM notifyHeader, WPARAM wParam);
    // The window that exists already is handed out again.
    virtual void OnReuse();

protected:
    // Registers a tooltip for a control: a tool of the tooltip window and its record.
    void AddToolTip(HWND dialog, std::uint32_t controlId, std::uint32_t textId, std::uint32_t titleId);

    HWND hwnd = nullptr;
    HWND parent = nullptr;
    HWND toolTip = nullptr;
    vixa::UniqueHook hook;
    std::vector<std::unique_ptr<ToolTipInfo>> toolTips;
    ResourceContext* context = nullptr;
    IDataPropertySet* params = nullptr;
    std::uint32_t notifyMessage = 0;

private:
    struct Process;
    class Watch;

    void EndWindow(HWND dialog) noexcept;
    static INT_PTR CALLBACK DialogProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) noexcept;
    static LRESULT CALLBACK HookProcedure(int code, WPARAM wParam, LPARAM lParam) noexcept;

    // The tooltip reads its text from here after OnNotify has returned, so the text lives as long as the window.
    std::array<wchar_t, 255> toolTipText{};
};
