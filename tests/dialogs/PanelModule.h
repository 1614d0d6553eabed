// What the small library of panels offers to the test that loads it.
#pragma once

#include <windows.h>

struct IDataPropertySet;

struct PanelModulePanels
{
    // Opens all seven panels and returns how many have a window.
    virtual int Open(HWND host, UINT message, IDataPropertySet* set) = 0;
    // Destroys the panel objects; their windows stay with the host.
    virtual void Release() = 0;

protected:
    ~PanelModulePanels() = default;
};

using MakePanels = PanelModulePanels* (*)();
