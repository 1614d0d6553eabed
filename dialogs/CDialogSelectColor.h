// The panel of "Filter color": an intensity and the colour that it goes to.
#pragma once

#include "dialogs/EffectPanel.h"

#include <cstdint>

class CDialogSelectColor : public EffectPanel
{
public:
    CDialogSelectColor() : EffectPanel(800) {}
    const MessageMapEntry* GetMessageMap() override;
    void OnInitDialog(WPARAM focusControl) override;

    // `lParam` is the trackbar, the low word of `wParam` its request.
    virtual void OnHScroll(LPARAM lParam, WPARAM wParam);
    virtual void OnColourChosen();
    // Writes the block and tells the host.
    virtual void StoreValues();
    void ResetControls() override;
    // Shows the block; without one the controls stay as they are.
    void LoadValues() override;

private:
    enum Id : int
    {
        ColourLabel = 1002,
        ColourList = 1003,
        IntensityLabel = 1004,
        Slider = 1005,
        ValueText = 1014,
    };

    void SelectColour(std::int32_t colour);
    std::int32_t SelectedColour();

    CBaseSlider slider;
    CBaseListBox colourList; // sorted by its texts, so each entry carries its colour number
    CBaseText valueText;
    CBaseText colourLabel;
    CBaseText intensityLabel;
};
