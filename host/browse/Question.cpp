#include "host/browse/Question.h"

#include <commctrl.h>

#include <new>

namespace vixahost::browse {

std::size_t Ask(HWND owner, const wchar_t* title, const Question& question)
{
    constexpr int firstAnswer = 100;
    std::vector<TASKDIALOG_BUTTON> buttons;
    for (const std::wstring& answer : question.answers)
        buttons.push_back({firstAnswer + static_cast<int>(buttons.size()), answer.c_str()});
    TASKDIALOGCONFIG dialog = {};
    dialog.cbSize = sizeof dialog;
    dialog.hwndParent = owner;
    dialog.hInstance = nullptr;
    dialog.dwFlags = TDF_ALLOW_DIALOG_CANCELLATION | TDF_POSITION_RELATIVE_TO_WINDOW | TDF_SIZE_TO_CONTENT;
    dialog.pszWindowTitle = title;
    dialog.pszMainIcon = TD_WARNING_ICON;
    dialog.pszMainInstruction = question.main.c_str();
    dialog.pszContent = question.detail.c_str();
    dialog.cButtons = static_cast<UINT>(buttons.size());
    dialog.pButtons = buttons.data();
    dialog.nDefaultButton = buttons.back().nButtonID;
    int pressed = 0;
    if (FAILED(TaskDialogIndirect(&dialog, &pressed, nullptr, nullptr)))
        throw std::bad_alloc();
    const int answer = pressed - firstAnswer;
    return answer >= 0 && answer < static_cast<int>(buttons.size()) ? static_cast<std::size_t>(answer)
                                                                    : buttons.size() - 1;
}

} // namespace vixahost::browse
