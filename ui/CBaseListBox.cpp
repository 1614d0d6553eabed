#include "ui/CBaseListBox.h"

int CBaseListBox::AddString(const wchar_t* text)
{
    return static_cast<int>(SendMessageW(control, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text)));
}

void CBaseListBox::Attach(HWND handle)
{
    control = handle;
}

HWND CBaseListBox::GetHwnd()
{
    return control;
}

void CBaseListBox::SetCurSel(int index)
{
    SendMessageW(control, CB_SETCURSEL, static_cast<WPARAM>(index), 0);
}

int CBaseListBox::GetCurSel()
{
    return static_cast<int>(SendMessageW(control, CB_GETCURSEL, 0, 0));
}
