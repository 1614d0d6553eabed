// The base class of the settings panels: a modeless dialog made from a template as a child of the host's window, whose
// messages reach virtual handlers through a message map, with a tooltip whose texts come from string resources on
// demand.
//
// Threads: a panel is used on the thread that creates its dialog and runs its message loop; each thread may have panels
// of its own. Only Retire and the last reference may come from any thread.
//
// Lifetime: an object is made with std::make_shared, and a message on its way holds a reference, so whatever a
// handler's caller or a host lets go of, the object lives until the handler is done. Who calls Create holds a reference
// meanwhile. The object does not own the dialog window, which goes with the host's window. Either may go first. When
// the object goes first, its window stays behind hidden and inert: it no longer calls into this module, so the module
// may be unloaded. When the window goes first, the object is ready for another Create. Both may happen inside a
// handler.
//
// No operation reports an error; Create throws std::bad_alloc.
#pragma once

#include "ui/MessageMapEntry.h"
#include "ui/ResourceContext.h"
#include "ui/ToolTipInfo.h"

#include <unknwn.h>
#include <windows.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

class CBaseWnd : public std::enable_shared_from_this<CBaseWnd>
{
public:
    CBaseWnd() = default;
    // A null context leaves the window without one.
    explicit CBaseWnd(ResourceContext* resources) { CBaseWnd::SetContext(resources); }
    CBaseWnd(const CBaseWnd&) = delete;
    CBaseWnd& operator=(const CBaseWnd&) = delete;

    // Retires it.
    virtual ~CBaseWnd();

    // What the owner does before it lets go: ends the dialog and cuts its window off from this module; the window
    // itself stays the host's. No message reaches the object any more, and a handler that is still at work tells
    // nobody. From another thread the window is hidden when its thread next looks after its messages.
    void Retire() noexcept;

    // The context is not owned and must outlive its use here. Null keeps the one in force.
    virtual void SetContext(ResourceContext* context);
    // Null without a context.
    virtual HINSTANCE GetInstance();
    // The host's parameter object, stored and returned only. It is not owned and no reference is taken: the host keeps
    // it alive while the dialog may use it.
    virtual void SetParams(IUnknown* params);
    virtual IUnknown* GetParams();
    // The message that NotifyParent sends.
    virtual void SetNotifyMessage(std::uint32_t message);
    // Tells the host of a change, unless the object is retired. The host may do anything in answer, also destroy this
    // window or release this object: call it last.
    virtual void NotifyParent();
    // The class's rows, ended by endOfMap; null for none.
    virtual const MessageMapEntry* GetMessageMap();
    // Runs every row of the map that answers the message, until one of them retires this object.
    virtual void OnMessage(UINT message, WPARAM wParam, LPARAM lParam);
    // Makes the dialog from template `templateId` (its low 16 bits) of the context's module, as a child of
    // `hostWindow`. Without a context or a host window nothing is made. GetHwnd tells whether it succeeded.
    virtual void Create(HWND hostWindow, std::uint32_t templateId);
    virtual void Show(int ignored);
    // Null before Create, after OnDestroy and while the template is being created.
    virtual HWND GetHwnd();
    // Makes the tooltip window; one that was made before goes, with its records.
    virtual void CreateToolTip(HWND dialog);
    // Hooks this thread's message queue, so that the tooltip sees the mouse over the dialog's controls. The panels of a
    // thread share one hook, which lives until the last of their dialogs ends.
    virtual void InstallMessageHook();
    // wParam of WM_INITDIALOG: the control that would receive the focus, a child of the dialog.
    virtual void OnInitDialog(WPARAM focusControl);
    virtual void OnOK();
    virtual void OnCancel();
    // Ends the dialog: its window is cut off as by Retire and forgotten.
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
    std::shared_ptr<HHOOK__> hook;
    std::vector<std::unique_ptr<ToolTipInfo>> toolTips;
    ResourceContext* context = nullptr;
    IUnknown* params = nullptr;
    std::uint32_t notifyMessage = 0;

private:
    class Registry;
    static Registry registry;

    void EndToolTip() noexcept;
    static void CutOff(HWND dialog) noexcept;
    static INT_PTR CALLBACK DialogProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) noexcept;
    static LRESULT CALLBACK HookProcedure(int code, WPARAM wParam, LPARAM lParam) noexcept;

    std::atomic<bool> retired = false;
    // The tooltip reads its text from here after OnNotify has returned, so the text lives as long as the window.
    std::array<wchar_t, 255> toolTipText{};
};
