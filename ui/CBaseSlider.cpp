#include "ui/CBaseSlider.h"

#include <commctrl.h>

void CBaseSlider::Attach(HWND handle)
{
    control = handle;
}

HWND CBaseSlider::GetHwnd()
{
    return control;
}

void CBaseSlider::SetRangeMax(int value)
{
    SendMessageW(control, TBM_SETRANGEMAX, TRUE, value);
}

void CBaseSlider::SetRangeMin(int value)
{
    SendMessageW(control, TBM_SETRANGEMIN, TRUE, value);
}

void CBaseSlider::SetPos(int value)
{
    SendMessageW(control, TBM_SETPOS, TRUE, value);
}

int CBaseSlider::GetPos()
{
    return control ? static_cast<int>(SendMessageW(control, TBM_GETPOS, 0, 0)) : 0;
}

void CBaseSlider::SetPageSize(int value)
{
    SendMessageW(control, TBM_SETPAGESIZE, 0, value);
}
