// Message maps: a dialog class's table of the window messages it answers and the handlers that answer them.
//
//     const MessageMapEntry messageMap[] = {
//         MessageRow(WM_INITDIALOG, &CDialogX::OnInitDialog),
//         MessageRow(WM_HSCROLL, &CDialogX::OnHScroll),
//         CommandRow(WM_COMMAND, listId, CBN_SELENDOK, &CDialogX::OnColourChosen),
//         CommandRow(WM_DESTROY, 0, 0, &CDialogX::OnDestroy),
//         endOfMap,
//     };
//
// Rows are tried in order and every row that matches runs. A row's kind follows from its handler's signature, so the
// two cannot disagree.
#pragma once

#include <windows.h>

#include <cstdint>

class CBaseWnd;

struct MessageMapEntry
{
    enum Kind : std::uint32_t
    {
        Command = 0,      // matches a control and its notification code, runs without arguments
        OneArgument = 1,  // runs with wParam
        TwoArguments = 2, // runs with lParam, then wParam
        End = 255,
    };

    union Handler {
        void (CBaseWnd::*command)();
        void (CBaseWnd::*oneArgument)(WPARAM);
        void (CBaseWnd::*twoArguments)(LPARAM, WPARAM);
    };

    std::uint32_t message;
    Kind kind;
    std::uint32_t controlId; // Command only: the low word of wParam
    std::uint32_t code; // Command only: the high word of wParam; 0 stands for any. Control and code 0: every message
    Handler handler;    // null: the row is skipped

    // Whether this row answers a message. A row without a handler, or of a kind not named above, answers none.
    bool Matches(UINT sent, WPARAM wParam) const noexcept
    {
        if (message != sent)
            return false;
        switch (kind) {
        case Command:
            return handler.command && ((controlId == LOWORD(wParam) && (code == HIWORD(wParam) || code == 0)) ||
                                       (controlId == 0 && code == 0));
        case OneArgument:
            return handler.oneArgument != nullptr;
        case TwoArguments:
            return handler.twoArguments != nullptr;
        case End:
            break;
        }
        return false;
    }

    // Runs the handler on `window`, which must be of the class whose map this row stands in. The window may be gone
    // when this returns.
    void Run(CBaseWnd& window, WPARAM wParam, LPARAM lParam) const
    {
        switch (kind) {
        case Command:
            return (window.*handler.command)();
        case OneArgument:
            return (window.*handler.oneArgument)(wParam);
        case TwoArguments:
            return (window.*handler.twoArguments)(lParam, wParam);
        case End:
            break;
        }
    }
};

template <typename Window>
inline MessageMapEntry CommandRow(std::uint32_t message, std::uint32_t controlId, std::uint32_t code,
                                  void (Window::*handler)())
{
    return {
        message, MessageMapEntry::Command, controlId, code, {.command = static_cast<void (CBaseWnd::*)()>(handler)}};
}

template <typename Window>
inline MessageMapEntry MessageRow(std::uint32_t message, void (Window::*handler)(WPARAM))
{
    return {
        message, MessageMapEntry::OneArgument, 0, 0, {.oneArgument = static_cast<void (CBaseWnd::*)(WPARAM)>(handler)}};
}

template <typename Window>
inline MessageMapEntry MessageRow(std::uint32_t message, void (Window::*handler)(LPARAM, WPARAM))
{
    return {message,
            MessageMapEntry::TwoArguments,
            0,
            0,
            {.twoArguments = static_cast<void (CBaseWnd::*)(LPARAM, WPARAM)>(handler)}};
}

inline constexpr MessageMapEntry endOfMap{0, MessageMapEntry::End, 0, 0, {.command = nullptr}};
