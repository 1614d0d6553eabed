#include "ui/CBaseCheckBox.h"

void CBaseCheckBox::Attach(HWND handle)
{
    control = handle;
}

HWND CBaseCheckBox::GetHwnd()
{
    return control;
}

int CBaseCheckBox::GetCheck()
{
    return static_cast<int>(SendMessageW(control, BM_GETCHECK, 0, 0));
}

void CBaseCheckBox::SetCheck(int state)
{
    if (control)
        SendMessageW(control, BM_SETCHECK, static_cast<WPARAM>(state), 0);
}

void CBaseCheckBox::SetText(const wchar_t* text)
{
    if (control)
        SetWindowTextW(control, text);
}
