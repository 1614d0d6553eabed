// The panel of "Gamma correction": darker to the left, brighter to the right.
#pragma once

#include "dialogs/EffectPanel.h"

class CDialogSelectGamma : public EffectPanel
{
public:
    CDialogSelectGamma() : EffectPanel(804) {}
    const MessageMapEntry* GetMessageMap() override;
    void OnInitDialog(WPARAM focusControl) override;

    // The low word of `wParam` is the trackbar's request.
    virtual void OnHScroll(LPARAM lParam, WPARAM wParam);
    // Shows the block; without one the controls stay as they are.
    void LoadValues() override;
    void ResetControls() override;

private:
    enum Id : int
    {
        Title = 1031,
        LeftLabel = 1032,
        RightLabel = 1033,
        Slider = 1034,
        UnusedButton = 1035,
    };

    CBaseSlider slider; // gamma in hundredths
    CBaseText title;
    CBaseText rightLabel;
    CBaseText leftLabel;
};
