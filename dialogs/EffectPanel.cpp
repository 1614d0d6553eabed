#include "dialogs/EffectPanel.h"

#include "dialogs/Panel.h"

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

HWND EffectPanel::SetUp(WPARAM focusControl, std::initializer_list<Control> controls)
{
    const HWND dialog = GetParent(reinterpret_cast<HWND>(focusControl));
    for (const Control& control : controls)
        std::visit(
            [handle = GetDlgItem(dialog, control.id)](auto wrapper) {
                if constexpr (!std::is_same_v<decltype(wrapper), std::monostate>)
                    wrapper->Attach(handle);
            },
            control.wrapper);

    CreateToolTip(dialog);
    for (const Control& control : controls)
        if (control.tip)
            AddToolTip(dialog, static_cast<std::uint32_t>(control.id), control.tip, control.tipTitle);
    InstallMessageHook();

    for (const Control& control : controls) {
        if (control.label)
            SetDlgItemTextW(dialog, control.id, vixa::PanelText(GetInstance(), control.label).c_str());
        if (control.widest)
            SetDlgItemTextW(dialog, control.id, control.widest);
    }
    vixa::FitControls(dialog);
    return dialog;
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
