#include "ui/CBaseText.h"

int CBaseText::GetText(wchar_t* buffer, int capacity)
{
    return control && capacity >= 1 ? GetWindowTextW(control, buffer, capacity) : 0;
}

void CBaseText::SetText(const wchar_t* text)
{
    if (control && text)
        SetWindowTextW(control, text);
}

void CBaseText::Attach(HWND handle)
{
    control = handle;
}

HWND CBaseText::GetHwnd()
{
    return control;
}
