#include "host/browse/SaveDialog.h"

#include "host/base/HostError.h"
#include "host/base/Progress.h"

#include <commctrl.h>

namespace vixahost::browse {

namespace {
constexpr UINT jobEnded = WM_APP + 1;
constexpr UINT_PTR progressTimer = 1;
constexpr ULONGLONG showAfter = 300; // milliseconds
} // namespace

SaveDialog::SaveDialog(HWND owner, const Style& look, const Texts& language, SaveOrder order)
    : style(look), texts(language)
{
    const std::wstring title = texts(IDT_SAVING, {order.target.filename().native()});
    RECT box = {0, 0, style.Scale(360), style.LineHeight() * 2 + style.Scale(80)};
    constexpr DWORD frame = WS_POPUP | WS_CAPTION | WS_SYSMENU;
    AdjustWindowRectEx(&box, frame, FALSE, WS_EX_DLGMODALFRAME);
    const SIZE size = {box.right - box.left, box.bottom - box.top};
    Create({L"VixaSaveDialog", 0, IDC_ARROW, reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1)}, title.c_str(), frame,
           WS_EX_DLGMODALFRAME | WS_EX_CONTROLPARENT, owner, nullptr, size);
    RECT over = {};
    GetWindowRect(owner, &over);
    SetWindowPos(hwnd, nullptr, (over.left + over.right - size.cx) / 2, (over.top + over.bottom - size.cy) / 2, 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    RECT client = {};
    GetClientRect(hwnd, &client);
    const int gap = style.Scale(12), line = style.LineHeight() + style.Scale(4), high = style.Scale(26);
    text = CreateControl(WC_STATICW, texts(IDT_BEGINNING).c_str(), WS_VISIBLE, hwnd, 0, style);
    MoveWindow(text, gap, gap, client.right - 2 * gap, line, FALSE);
    bar = CreateControl(PROGRESS_CLASSW, title.c_str(), WS_VISIBLE, hwnd, 0, style);
    MoveWindow(bar, gap, gap + line, client.right - 2 * gap, style.Scale(18), FALSE);
    cancel = CreateControl(WC_BUTTONW, texts(IDT_CANCEL).c_str(), WS_VISIBLE | WS_TABSTOP | BS_DEFPUSHBUTTON, hwnd,
                           IDCANCEL, style);
    MoveWindow(cancel, client.right - gap - style.Scale(84), client.bottom - gap - high, style.Scale(84), high, FALSE);
    const HWND window = hwnd;
    job = std::make_unique<SaveJob>(std::move(order), [window] { PostMessageW(window, jobEnded, 0, 0); });
}

Saved SaveDialog::Run(HWND owner, const Style& look, const Texts& texts, SaveOrder order)
{
    SaveDialog dialog(owner, look, texts, std::move(order));
    SetTimer(dialog.hwnd, progressTimer, 100, nullptr);
    EnableWindow(owner, FALSE);
    MSG message = {};
    while (!dialog.ended && GetMessageW(&message, nullptr, 0, 0) > 0) {
        if (!IsWindowVisible(dialog.hwnd) && GetTickCount64() - dialog.start > showAfter) {
            ShowWindow(dialog.hwnd, SW_SHOW);
            SetFocus(dialog.cancel);
        }
        if (IsDialogMessageW(dialog.hwnd, &message))
            continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    if (message.message == WM_QUIT)
        PostQuitMessage(static_cast<int>(message.wParam));
    // First the owner, or another program's window would come to the front.
    EnableWindow(owner, TRUE);
    if (!dialog.ended)
        dialog.job->Cancel();
    const std::string failure = dialog.job->Wait();
    if (failure.empty())
        return dialog.job->LostSound() ? Saved::WithoutSound : Saved::Whole;
    if (dialog.job->Cancelled())
        return Saved::No;
    throw FailedJob(failure);
}

LRESULT SaveDialog::OnMessage(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case jobEnded:
        ended = true;
        return 0;
    case WM_TIMER:
        Progress();
        return 0;
    case WM_COMMAND:
        if (LOWORD(wParam) == IDCANCEL)
            SendMessageW(hwnd, WM_CLOSE, 0, 0);
        return 0;
    case WM_CLOSE:
        // The window goes when the job has come to its end.
        job->Cancel();
        EnableWindow(cancel, FALSE);
        SetWindowTextW(text, texts(IDT_STOPPING).c_str());
        return 0;
    default:
        return Window::OnMessage(message, wParam, lParam);
    }
}

void SaveDialog::Progress()
{
    const std::int64_t total = job->Total(), done = job->Done();
    if (total == 0 || job->Cancelled())
        return;
    SendMessageW(bar, PBM_SETRANGE32, 0, static_cast<LPARAM>(total));
    SendMessageW(bar, PBM_SETPOS, static_cast<WPARAM>(done), 0);
    std::wstring said = texts(IDT_PROGRESS, {std::to_wstring(done), std::to_wstring(total)});
    const ULONGLONG spent = GetTickCount64() - start;
    // Before that it would only be guessed.
    if (done > 0 && spent > 1000) {
        const auto left = static_cast<ULONGLONG>(total - done) * spent / static_cast<ULONGLONG>(done);
        said += L", " + texts(IDT_SECONDS_LEFT, {std::to_wstring((left + 999) / 1000)});
    }
    SetWindowTextW(text, said.c_str());
}

} // namespace vixahost::browse
