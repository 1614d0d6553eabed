// A window of the host's own: its class, its procedure and its object tied together.
#pragma once

#include "host/base/Handles.h"

namespace vixahost::browse {

// How controls are drawn: the system's message font and its scale.
class Style
{
public:
    Style();

    void Swap(Style& other) noexcept;

    HFONT Font() const noexcept { return font.get(); }
    // Pixels for a length given at 96 dots per inch.
    int Scale(int length) const noexcept { return MulDiv(length, dpi, 96); }
    int LineHeight() const noexcept { return lineHeight; } // pixels of one line of text

private:
    UniqueFont font;
    int dpi = 96;
    int lineHeight = 16;
};

// The object must outlive its window; destroying the object destroys the window.
class Window
{
public:
    Window() = default;
    virtual ~Window();
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    HWND Handle() const noexcept { return hwnd; }

protected:
    struct Kind
    {
        const wchar_t* className;
        UINT style = 0;
        LPCWSTR cursor = IDC_ARROW;
        HBRUSH background = nullptr;
    };
    // Throws FailedJob.
    void Create(const Kind& kind, const wchar_t* title, DWORD style, DWORD exStyle, HWND parent, HMENU menu, SIZE size);

    // May throw: what is thrown reaches OnFault.
    virtual LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam);
    // Tells the user what `message` (UTF-8) says.
    virtual void OnFault(const char* message) noexcept;

    HWND hwnd = nullptr;

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept;
};

// A control of a system class, in the style's font. Throws FailedJob.
HWND CreateControl(const wchar_t* className, const wchar_t* text, DWORD style, HWND parent, int id, const Style& look,
                   DWORD exStyle = 0);

} // namespace vixahost::browse
