// A trackbar, by its handle: positions are plain signed numbers, clamped to the range by the control. Does not own the
// control; without a handle every operation does nothing.
#pragma once

#include <windows.h>

class CBaseSlider
{
public:
    virtual ~CBaseSlider() = default;
    virtual void Attach(HWND handle);
    virtual HWND GetHwnd();
    virtual void SetRangeMax(int value);
    virtual void SetRangeMin(int value);
    virtual void SetPos(int value);
    // 0 without a handle.
    virtual int GetPos();
    // How far a click beside the thumb and the page keys move it.
    virtual void SetPageSize(int value);

private:
    HWND control = nullptr;
};
