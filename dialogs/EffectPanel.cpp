#include "dialogs/EffectPanel.h"

void EffectPanel::Show(HINSTANCE library, HWND parentWindow, UINT message, IDataPropertySet* propertySet, HWND* window)
{
    if (GetHwnd()) {
        SetParams(propertySet);
        *window = GetHwnd();
        OnReuse();
        LoadValues();
        return;
    }
    resources.SetInstance(library);
    SetContext(&resources);
    Create(parentWindow, dialogTemplate);
    SetParams(propertySet);
    LoadValues();
    SetNotifyMessage(message);
    *window = GetHwnd();
}

namespace vixa {

void PanelOwner::Show(PanelMaker make, HINSTANCE library, HWND parent, UINT notifyMessage,
                      IDataPropertySet* propertySet, HWND* window)
{
    if (!panel)
        panel = make();
    panel->Show(library, parent, notifyMessage, propertySet, window);
}

void PanelOwner::Reset()
{
    if (panel && panel->GetHwnd())
        panel->ResetControls();
}

} // namespace vixa
