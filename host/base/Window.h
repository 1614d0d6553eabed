// A window of the host's own: its class, its procedure and its object tied together.
#pragma once

#include <windows.h>

namespace vixahost {

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
    // Tells the user what `message` (UTF-8) says: as the window above does, when that is one of these.
    virtual void OnFault(const char* message) noexcept;

    HWND hwnd = nullptr;

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept;
};

} // namespace vixahost
