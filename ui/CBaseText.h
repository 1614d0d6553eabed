// A static or edit control, by its handle. Does not own the control.
#pragma once

#include <windows.h>

class CBaseText
{
public:
    virtual ~CBaseText() = default;
    // Copies at most `capacity` characters, the terminating zero among them, and returns the count without it. Without
    // a handle or with a capacity below 1 nothing is copied and the count is 0.
    virtual int GetText(wchar_t* buffer, int capacity);
    // Nothing without a handle or a text.
    virtual void SetText(const wchar_t* text);
    virtual void Attach(HWND handle);
    virtual HWND GetHwnd();

private:
    HWND control = nullptr;
};
