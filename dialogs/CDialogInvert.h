// The panel of "Invert color": which colours are inverted.
#pragma once

#include "dialogs/EffectPanel.h"

class CDialogInvert : public EffectPanel
{
public:
    CDialogInvert() : EffectPanel(802) {}
    const MessageMapEntry* GetMessageMap() override;
    void OnInitDialog(WPARAM focusControl) override;

    // `lParam` is the control that sends.
    virtual void OnCommand(LPARAM lParam, WPARAM wParam);
    // Shows the block; without one the controls stay as they are.
    void LoadValues() override;
    void ResetControls() override;
    virtual void ClearChecks();

private:
    enum Id : int
    {
        Label = 1016,
        Red = 1020,
        Green = 1021,
        Blue = 1022,
    };

    CBaseCheckBox red, green, blue;
    CBaseText label;
};
