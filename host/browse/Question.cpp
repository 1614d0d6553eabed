#include "host/browse/Question.h"

#include "host/browse/Style.h"

#include <commctrl.h>

#include <algorithm>
#include <new>

namespace vixahost::browse {

namespace {

HRESULT CALLBACK OnDialog(HWND dialog, UINT notification, WPARAM, LPARAM, LONG_PTR font) noexcept
{
    if (notification != TDN_DIALOG_CONSTRUCTED)
        return S_OK;
    if (font)
        EnumChildWindows(dialog, GiveFont, font);
    FollowColours(dialog);
    return S_OK;
}

// Letters of a linked font may be drawn wider than the dialog measures them: their buttons get some room more.
std::wstring AnswerText(const std::wstring& answer)
{
    const bool eastern = std::any_of(answer.begin(), answer.end(), [](wchar_t letter) { return letter >= 0x2E80; });
    return eastern ? L"  " + answer + L"  " : answer;
}

} // namespace

std::size_t Ask(HWND owner, const wchar_t* title, const Question& question)
{
    constexpr int firstAnswer = 100;
    std::vector<std::wstring> answers;
    for (const std::wstring& answer : question.answers)
        answers.push_back(AnswerText(answer));
    std::vector<TASKDIALOG_BUTTON> buttons;
    buttons.reserve(answers.size());
    for (const std::wstring& answer : answers)
        buttons.push_back({firstAnswer + static_cast<int>(buttons.size()), answer.c_str()});
    TASKDIALOGCONFIG dialog = {};
    dialog.cbSize = sizeof dialog;
    dialog.hwndParent = owner;
    dialog.hInstance = nullptr;
    dialog.dwFlags = TDF_ALLOW_DIALOG_CANCELLATION | TDF_POSITION_RELATIVE_TO_WINDOW | TDF_SIZE_TO_CONTENT;
    dialog.pszWindowTitle = title;
    dialog.pszMainIcon = buttons.empty() ? TD_INFORMATION_ICON : TD_WARNING_ICON;
    dialog.pszMainInstruction = question.main.empty() ? nullptr : question.main.c_str();
    // The dialog measures in the system's font, whose lines may be lower: two more have room for the difference.
    const std::wstring content = question.font ? question.detail + L"\n\n" : question.detail;
    dialog.pszContent = content.c_str();
    dialog.cButtons = static_cast<UINT>(buttons.size());
    dialog.pButtons = buttons.data();
    if (buttons.empty())
        dialog.dwCommonButtons = TDCBF_OK_BUTTON;
    else
        dialog.nDefaultButton = buttons.back().nButtonID;
    dialog.pfCallback = OnDialog;
    dialog.lpCallbackData = reinterpret_cast<LONG_PTR>(question.font);
    int pressed = 0;
    if (FAILED(TaskDialogIndirect(&dialog, &pressed, nullptr, nullptr)))
        throw std::bad_alloc();
    if (buttons.empty())
        return 0;
    const int answer = pressed - firstAnswer;
    return answer >= 0 && answer < static_cast<int>(buttons.size()) ? static_cast<std::size_t>(answer)
                                                                    : buttons.size() - 1;
}

} // namespace vixahost::browse
