// The panel of "Multiply pixel": the factor, shown with two decimal places.
#pragma once

#include "dialogs/EffectPanel.h"

class CDialogMultiply : public EffectPanel
{
public:
    CDialogMultiply() : EffectPanel(803) {}
    const MessageMapEntry* GetMessageMap() override;
    void OnInitDialog(WPARAM focusControl) override;

    // `lParam` is the trackbar, the low word of `wParam` its request.
    virtual void OnHScroll(LPARAM lParam, WPARAM wParam);
    void ResetControls() override;
    // Shows the block; without one the controls stay as they are.
    void LoadValues() override;

private:
    enum Id : int
    {
        Label = 1028,
        Slider = 1029,
        ValueText = 1030,
    };

    void ShowFactor();

    CBaseSlider slider; // percent
    CBaseText valueText;
    CBaseText label;
};
