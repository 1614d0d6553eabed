// What the window asks before something could be lost.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace vixahost::browse {

struct Question
{
    std::wstring main;                 // in one short line; may be empty
    std::wstring detail;               // why it is asked
    std::vector<std::wstring> answers; // on the buttons; the last is the default, and what closing means; none: "OK"
    HFONT font = nullptr;              // instead of the system's
};

// Which answer was given. Throws std::bad_alloc when the system can't show the question.
std::size_t Ask(HWND owner, const wchar_t* title, const Question& question);

} // namespace vixahost::browse
