// A check box, by its handle. Does not own the control; without a handle every operation does nothing.
#pragma once

#include <windows.h>

class CBaseCheckBox
{
public:
    virtual ~CBaseCheckBox() = default;
    virtual void Attach(HWND handle);
    virtual HWND GetHwnd();
    // BST_UNCHECKED (0) or BST_CHECKED (1).
    virtual int GetCheck();
    virtual void SetCheck(int state);
    virtual void SetText(const wchar_t* text);

private:
    HWND control = nullptr;
};
