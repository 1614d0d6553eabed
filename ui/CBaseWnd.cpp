#include "ui/CBaseWnd.h"

#include <commctrl.h>

#include <algorithm>
#include <exception>
#include <utility>

// A stack frame that works on a window object across calls that may destroy it. While it makes a dialog, it also knows
// which handle the dialog has: the object itself learns it only when the template is complete.
class CBaseWnd::Watch
{
public:
    explicit Watch(CBaseWnd* watched, bool creates = false) noexcept
        : window(watched), creating(creates), outer(innermost)
    {
        innermost = this;
    }
    ~Watch() { innermost = outer; }
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;

    bool alive() const noexcept { return window != nullptr; }

    static void forget(const CBaseWnd* destroyed) noexcept
    {
        for (Watch* watch = innermost; watch; watch = watch->outer)
            if (watch->window == destroyed)
                watch->window = nullptr;
    }

    // The window for which `dialog` is being made. The first handle that nobody knows is that of the dialog whose
    // making began last.
    static Watch* makerOf(HWND dialog) noexcept
    {
        Watch* unbound = nullptr;
        for (Watch* watch = innermost; watch; watch = watch->outer) {
            if (!watch->creating)
                continue;
            if (watch->dialog == dialog)
                return watch;
            if (!unbound && !watch->dialog)
                unbound = watch;
        }
        if (unbound)
            unbound->dialog = dialog;
        return unbound;
    }

    static HWND dialogMadeFor(const CBaseWnd* window) noexcept
    {
        for (const Watch* watch = innermost; watch; watch = watch->outer)
            if (watch->creating && watch->window == window)
                return watch->dialog;
        return nullptr;
    }

    CBaseWnd* window;
    HWND dialog = nullptr;

private:
    const bool creating;
    Watch* const outer;
    static inline Watch* innermost = nullptr;
};

// What all dialogs of the process share.
struct CBaseWnd::Process
{
    std::vector<CBaseWnd*> liveWindows; // in creation order
    CBaseWnd* current = nullptr;

    // A host can unload the module without having released everything. Nothing of the system may then still point here.
    ~Process()
    {
        for (CBaseWnd* window : liveWindows) {
            window->hook.reset();
            cutOff(window->hwnd);
        }
    }

    // After this the window is a plain dialog of the system's; no message of it comes here any more.
    static void cutOff(HWND dialog) noexcept
    {
        const auto ours = reinterpret_cast<LONG_PTR>(&CBaseWnd::DialogProcedure);
        if (dialog && GetWindowLongPtrW(dialog, DWLP_DLGPROC) == ours)
            SetWindowLongPtrW(dialog, DWLP_DLGPROC, 0);
    }

    void remove(CBaseWnd* window) noexcept { std::erase(liveWindows, window); }

    static Process& get() noexcept
    {
        static Process process;
        return process;
    }
};

CBaseWnd::~CBaseWnd()
{
    Process& process = Process::get();
    EndDialog(hwnd, 0);
    EndWindow(hwnd ? hwnd : Watch::dialogMadeFor(this));
    process.current = nullptr;
    process.remove(this);
    Watch::forget(this);
}

void CBaseWnd::SetContext(ResourceContext* newContext)
{
    if (newContext)
        context = newContext;
}

HINSTANCE CBaseWnd::GetInstance()
{
    return context ? context->GetInstance() : nullptr;
}

void CBaseWnd::SetParams(IDataPropertySet* newParams)
{
    params = newParams;
}

IDataPropertySet* CBaseWnd::GetParams()
{
    return params;
}

void CBaseWnd::SetNotifyMessage(std::uint32_t message)
{
    notifyMessage = message;
}

void CBaseWnd::NotifyParent()
{
    SendMessageW(parent, notifyMessage, 0, 0);
}

const MessageMapEntry* CBaseWnd::GetMessageMap()
{
    return nullptr;
}

void CBaseWnd::OnMessage(UINT message, WPARAM wParam, LPARAM lParam)
{
    const MessageMapEntry* row = GetMessageMap();
    if (!row)
        return;
    const Watch self(this);
    for (; row->kind != MessageMapEntry::End && self.alive(); ++row)
        if (row->Matches(message, wParam))
            row->Run(*this, wParam, lParam);
}

void CBaseWnd::Create(HWND hostWindow, std::uint32_t templateId)
{
    Process& process = Process::get();
    process.current = this;
    if (!context || !hostWindow)
        return;
    parent = hostWindow;

    // The templates use controls that a host need not have set up.
    const INITCOMMONCONTROLSEX controls{sizeof controls, ICC_STANDARD_CLASSES | ICC_WIN95_CLASSES};
    InitCommonControlsEx(&controls);

    Watch self(this, true);
    HWND dialog =
        CreateDialogParamW(GetInstance(), MAKEINTRESOURCEW(LOWORD(templateId)), hostWindow, DialogProcedure, 0);
    if (!self.alive()) {
        // Destroyed by the host while the template was being created: the window is nobody's.
        Process::cutOff(dialog);
        return;
    }
    hwnd = IsWindow(dialog) ? dialog : nullptr;
    process.remove(this);
    process.liveWindows.push_back(this);
}

void CBaseWnd::Show(int)
{
    ShowWindow(hwnd, SW_SHOW);
}

HWND CBaseWnd::GetHwnd()
{
    return hwnd;
}

void CBaseWnd::CreateToolTip(HWND dialog)
{
    if (context && dialog)
        toolTip = CreateWindowExW(0, TOOLTIPS_CLASSW, nullptr, TTS_ALWAYSTIP, CW_USEDEFAULT, CW_USEDEFAULT,
                                  CW_USEDEFAULT, CW_USEDEFAULT, dialog, nullptr, GetInstance(), nullptr);
    Sleep(10);
}

void CBaseWnd::AddToolTip(HWND dialog, std::uint32_t controlId, std::uint32_t textId, std::uint32_t titleId)
{
    TTTOOLINFOW tool{};
    static_assert(sizeof tool == 48);
    tool.cbSize = sizeof tool;
    tool.uFlags = TTF_IDISHWND;
    tool.hwnd = dialog;
    tool.uId = reinterpret_cast<UINT_PTR>(GetDlgItem(dialog, static_cast<int>(controlId)));
    tool.lpszText = LPSTR_TEXTCALLBACKW;
    SendMessageW(toolTip, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
    toolTips.push_back(std::make_unique<ToolTipInfo>(ToolTipInfo{controlId, textId, titleId}));
}

void CBaseWnd::InstallMessageHook()
{
    hook.reset(SetWindowsHookExW(WH_GETMESSAGE, HookProcedure, nullptr, GetCurrentThreadId()));
}

void CBaseWnd::OnInitDialog(WPARAM) {}

void CBaseWnd::OnOK()
{
    EndDialog(hwnd, IDOK);
}

void CBaseWnd::OnCancel()
{
    EndDialog(hwnd, IDCANCEL);
}

void CBaseWnd::OnDestroy()
{
    const HWND dialog = hwnd ? hwnd : Watch::dialogMadeFor(this);
    EndDialog(dialog, 0);
    hwnd = nullptr;
    Process::get().remove(this);
    EndWindow(dialog);
}

void CBaseWnd::DefaultHandler(LPARAM, WPARAM) {}

void CBaseWnd::OnNotify(LPARAM notifyHeader, WPARAM)
{
    auto* header = reinterpret_cast<NMHDR*>(notifyHeader);
    if (!header || header->code != TTN_GETDISPINFOW || !context)
        return;
    const int control = GetDlgCtrlID(reinterpret_cast<HWND>(header->idFrom));
    const int capacity = static_cast<int>(toolTipText.size());
    for (const auto& info : toolTips) {
        if (!info || static_cast<int>(info->controlId) != control)
            continue;
        toolTipText[0] = L'\0';
        LoadStringW(GetInstance(), info->titleId, toolTipText.data(), capacity);
        SendMessageW(toolTip, TTM_SETTITLEW, TTI_INFO, reinterpret_cast<LPARAM>(toolTipText.data()));
        toolTipText[0] = L'\0';
        LoadStringW(GetInstance(), info->textId, toolTipText.data(), capacity);
        reinterpret_cast<NMTTDISPINFOW*>(header)->lpszText = toolTipText.data();
    }
}

void CBaseWnd::OnReuse() {}

// Takes back all that the system holds of this window: its procedure, the hook and the tooltip, which is owned by the
// host's top-level window and would otherwise stay until that goes.
void CBaseWnd::EndWindow(HWND dialog) noexcept
{
    Process::cutOff(dialog);
    hook.reset();
    if (HWND ended = std::exchange(toolTip, nullptr))
        DestroyWindow(ended);
    toolTips.clear();
}

INT_PTR CALLBACK CBaseWnd::DialogProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) noexcept
{
    Process& process = Process::get();
    bool known = false;
    for (CBaseWnd* window : process.liveWindows)
        if (window->GetHwnd() == dialog) {
            process.current = window;
            known = true;
        }
    if (!known)
        if (const Watch* maker = Watch::makerOf(dialog))
            process.current = maker->window;
    if (process.current) {
        try {
            process.current->OnMessage(message, wParam, lParam);
        } catch (const std::exception&) {
            // Out of memory in a handler: this message stays without effect. Nothing may be thrown through the system's
            // frames.
        }
    }
    return FALSE;
}

LRESULT CALLBACK CBaseWnd::HookProcedure(int code, WPARAM wParam, LPARAM lParam) noexcept
{
    Process& process = Process::get();
    if (!process.current)
        return 0;
    if (code >= 0) {
        MSG message = *reinterpret_cast<const MSG*>(lParam);
        const bool mouse = message.message == WM_MOUSEMOVE || message.message == WM_LBUTTONDOWN ||
                           message.message == WM_LBUTTONUP || message.message == WM_RBUTTONDOWN ||
                           message.message == WM_RBUTTONUP;
        if (mouse && process.current->toolTip && IsChild(process.current->hwnd, message.hwnd))
            SendMessageW(process.current->toolTip, TTM_RELAYEVENT, 0, reinterpret_cast<LPARAM>(&message));
    }
    // The tooltip tells its dialog that it shows, and whoever hears that may end the dialog.
    return CallNextHookEx(process.current ? process.current->hook.get() : nullptr, code, wParam, lParam);
}
