#include "dialogs/EffectPanel.h"

void EffectPanel::Show(HINSTANCE library, HWND parentWindow, UINT message, IDataPropertySet* propertySet, HWND* window)
{
    if (GetHwnd()) {
        SetParams(propertySet);
        *window = GetHwnd();
        OnReuse();
        LoadValues();
    } else {
        resources.SetInstance(library);
        SetContext(&resources);
        Create(parentWindow, dialogTemplate);
        SetParams(propertySet);
        LoadValues();
        SetNotifyMessage(message);
    }
    *window = GetHwnd();
}

namespace vixa {

PanelOwner::~PanelOwner()
{
    if (panel)
        panel->Retire();
}

void PanelOwner::Show(PanelMaker make, HINSTANCE library, HWND parent, UINT notifyMessage,
                      IDataPropertySet* propertySet, HWND* window)
{
    if (!panel)
        panel = make();
    const auto shown = panel;
    shown->Show(library, parent, notifyMessage, propertySet, window);
}

void PanelOwner::Reset()
{
    if (const auto shown = panel; shown && shown->GetHwnd())
        shown->ResetControls();
}

} // namespace vixa
