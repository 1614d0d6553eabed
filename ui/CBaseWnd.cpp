#include "ui/CBaseWnd.h"

#include <commctrl.h>

#include <algorithm>
#include <exception>
#include <mutex>
#include <utility>

// Which dialog belongs to which object, for all threads. The lock is held for a look only; nothing that could send a
// message is called under it.
class CBaseWnd::Registry
{
public:
    // A host can unload the module without having released everything. Nothing of the system may then still point here.
    // No lock: a thread that ended with the process may have held it.
    ~Registry()
    {
        for (const Entry& entry : entries) {
            entry.window->hook.reset();
            CutOff(entry.dialog);
        }
    }

    // Enters a window of this thread whose dialog is about to be made.
    void Add(CBaseWnd* window)
    {
        const std::scoped_lock guard(lock);
        Erase(window);
        entries.push_back({window, nullptr, GetCurrentThreadId(), true});
    }

    // The dialog is complete. False, and the window is forgotten, when there is none or the window was removed
    // meanwhile.
    bool Complete(const CBaseWnd* window, HWND dialog) noexcept
    {
        const std::scoped_lock guard(lock);
        Entry* const entry = Find(window);
        if (!entry || !IsWindow(dialog)) {
            Erase(window);
            return false;
        }
        entry->dialog = dialog;
        entry->making = false;
        return true;
    }

    // What a message to `dialog` is for: its window, or null, and whether the dialog is still being made. The first
    // handle that nobody knows is that of the dialog whose making began last on this thread.
    std::pair<std::shared_ptr<CBaseWnd>, bool> WindowOf(HWND dialog) noexcept
    {
        const std::scoped_lock guard(lock);
        auto found = std::find_if(entries.rbegin(), entries.rend(),
                                  [dialog](const Entry& entry) { return entry.dialog == dialog; });
        if (found == entries.rend())
            found = std::find_if(entries.rbegin(), entries.rend(), [](const Entry& entry) {
                return entry.making && !entry.dialog && entry.thread == GetCurrentThreadId();
            });
        if (found == entries.rend())
            return {};
        found->dialog = dialog;
        return {found->window->weak_from_this().lock(), found->making};
    }

    // The tooltip of the panel of this thread that `control` belongs to, or null.
    HWND ToolTipFor(HWND control) noexcept
    {
        const std::scoped_lock guard(lock);
        for (const Entry& entry : entries)
            if (entry.thread == GetCurrentThreadId() && IsChild(entry.dialog, control))
                return entry.window->toolTip;
        return nullptr;
    }

    // The hook that the panels of this thread share, or null.
    std::shared_ptr<HHOOK__> HookOfThisThread() noexcept
    {
        const std::scoped_lock guard(lock);
        for (const Entry& entry : entries)
            if (entry.thread == GetCurrentThreadId() && entry.window->hook)
                return entry.window->hook;
        return nullptr;
    }

    // Takes a window out. Its dialog, or null, and its share of the hook, which is let go outside the lock.
    std::pair<HWND, std::shared_ptr<HHOOK__>> Remove(CBaseWnd* window) noexcept
    {
        const std::scoped_lock guard(lock);
        const Entry* const entry = Find(window);
        const HWND dialog = entry ? entry->dialog : nullptr;
        Erase(window);
        return {dialog, std::move(window->hook)};
    }

private:
    struct Entry
    {
        CBaseWnd* window;
        HWND dialog; // null until its first message
        DWORD thread;
        bool making;
    };

    struct Lock
    {
        void lock() noexcept { AcquireSRWLockExclusive(&srw); }
        void unlock() noexcept { ReleaseSRWLockExclusive(&srw); }
        SRWLOCK srw = SRWLOCK_INIT;
    };

    Entry* Find(const CBaseWnd* window) noexcept
    {
        const auto found = std::ranges::find(entries, window, &Entry::window);
        return found == entries.end() ? nullptr : &*found;
    }
    void Erase(const CBaseWnd* window) noexcept
    {
        std::erase_if(entries, [=](const Entry& entry) { return entry.window == window; });
    }

    Lock lock;
    std::vector<Entry> entries; // in the order of creation, one for each window
};

constinit CBaseWnd::Registry CBaseWnd::registry;

CBaseWnd::~CBaseWnd()
{
    Retire();
}

void CBaseWnd::Retire() noexcept
{
    if (retired.exchange(true))
        return;
    const auto [dialog, share] = registry.Remove(this);
    if (dialog) {
        // Whoever waits for another thread's window may be waited for by that thread.
        if (GetWindowThreadProcessId(dialog, nullptr) == GetCurrentThreadId())
            EndDialog(dialog, 0);
        else
            ShowWindowAsync(dialog, SW_HIDE);
        CutOff(dialog);
    }
    EndToolTip();
}

// The tooltip is owned by the host's top-level window and would otherwise stay until that goes.
void CBaseWnd::EndToolTip() noexcept
{
    if (toolTip && !DestroyWindow(toolTip))
        PostMessageW(toolTip, WM_CLOSE, 0, 0); // another thread's
}

// After this the window is a plain dialog of the system's; no message of it comes here any more.
void CBaseWnd::CutOff(HWND dialog) noexcept
{
    const auto ours = reinterpret_cast<LONG_PTR>(&CBaseWnd::DialogProcedure);
    if (dialog && GetWindowLongPtrW(dialog, DWLP_DLGPROC) == ours)
        SetWindowLongPtrW(dialog, DWLP_DLGPROC, 0);
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

void CBaseWnd::SetParams(IUnknown* newParams)
{
    params = newParams;
}

IUnknown* CBaseWnd::GetParams()
{
    return params;
}

void CBaseWnd::SetNotifyMessage(std::uint32_t message)
{
    notifyMessage = message;
}

void CBaseWnd::NotifyParent()
{
    if (!retired)
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
    for (; row->kind != MessageMapEntry::End && !retired; ++row)
        if (row->Matches(message, wParam))
            row->Run(*this, wParam, lParam);
}

void CBaseWnd::Create(HWND hostWindow, std::uint32_t templateId)
{
    if (!context || !hostWindow || retired)
        return;
    parent = hostWindow;

    // The templates use controls that a host need not have set up. They may outlive this library, as windows of the
    // host's, so their code stays loaded for good.
    const INITCOMMONCONTROLSEX controls{sizeof controls, ICC_STANDARD_CLASSES | ICC_WIN95_CLASSES};
    InitCommonControlsEx(&controls);
    HMODULE controlLibrary = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                       reinterpret_cast<LPCWSTR>(&InitCommonControlsEx), &controlLibrary);

    registry.Add(this);
    const HWND dialog =
        CreateDialogParamW(GetInstance(), MAKEINTRESOURCEW(LOWORD(templateId)), hostWindow, DialogProcedure, 0);
    if (registry.Complete(this, dialog))
        hwnd = dialog;
    else
        CutOff(dialog); // retired while the template was being created: the window is nobody's
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
    EndToolTip();
    toolTip = nullptr;
    toolTips.clear();
    if (context && dialog && !retired)
        toolTip = CreateWindowExW(0, TOOLTIPS_CLASSW, nullptr, TTS_ALWAYSTIP, CW_USEDEFAULT, CW_USEDEFAULT,
                                  CW_USEDEFAULT, CW_USEDEFAULT, dialog, nullptr, GetInstance(), nullptr);
    Sleep(10); // the pause that panels of this family make here, with or without a tooltip
}

void CBaseWnd::AddToolTip(HWND dialog, std::uint32_t controlId, std::uint32_t textId, std::uint32_t titleId)
{
    TTTOOLINFOW tool{};
    static_assert(sizeof tool == (sizeof(void*) == 4 ? 48 : 72));
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
    auto shared = registry.HookOfThisThread();
    if (!shared)
        if (const HHOOK made = SetWindowsHookExW(WH_GETMESSAGE, HookProcedure, nullptr, GetCurrentThreadId()))
            shared.reset(made, UnhookWindowsHookEx);
    hook = std::move(shared);
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
    const auto [dialog, share] = registry.Remove(this);
    EndDialog(dialog, 0);
    CutOff(dialog);
    hwnd = nullptr;
    EndToolTip();
    toolTip = nullptr;
    toolTips.clear();
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

INT_PTR CALLBACK CBaseWnd::DialogProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) noexcept
{
    const auto [window, making] = registry.WindowOf(dialog);
    // A dialog is set up once; what a host sends later is not the system's word.
    if (window && (making || message != WM_INITDIALOG)) {
        try {
            window->OnMessage(message, wParam, lParam);
        } catch (const std::exception&) {
            // Out of memory in a handler: this message stays without effect. Nothing may be thrown through the system's
            // frames.
        }
    }
    return FALSE;
}

LRESULT CALLBACK CBaseWnd::HookProcedure(int code, WPARAM wParam, LPARAM lParam) noexcept
{
    if (code >= 0) {
        MSG message = *reinterpret_cast<const MSG*>(lParam);
        const bool mouse = message.message == WM_MOUSEMOVE || message.message == WM_LBUTTONDOWN ||
                           message.message == WM_LBUTTONUP || message.message == WM_RBUTTONDOWN ||
                           message.message == WM_RBUTTONUP;
        if (mouse)
            if (const HWND tip = registry.ToolTipFor(message.hwnd))
                SendMessageW(tip, TTM_RELAYEVENT, 0, reinterpret_cast<LPARAM>(&message));
    }
    // The other hooks of the thread, a host's own among them, see every message.
    return CallNextHookEx(nullptr, code, wParam, lParam);
}
