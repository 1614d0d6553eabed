// A drop-down combo box, by its handle. Does not own the control; without a handle every operation does nothing.
#pragma once

#include <windows.h>

class CBaseListBox
{
public:
    virtual ~CBaseListBox() = default;
    // The index at which the entry stands, or a CB_ error number.
    virtual int AddString(const wchar_t* text);
    virtual void Attach(HWND handle);
    virtual HWND GetHwnd();
    // -1 selects nothing.
    virtual void SetCurSel(int index);
    // CB_ERR (-1) when nothing is selected.
    virtual int GetCurSel();

private:
    HWND control = nullptr;
};
