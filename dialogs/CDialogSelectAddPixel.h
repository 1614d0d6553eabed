// The panel of "Add pixel": a number for each colour, moved one by one or all together.
#pragma once

#include "dialogs/EffectPanel.h"

#include <cstdint>
#include <memory>
#include <vector>

class CDialogSelectAddPixel : public EffectPanel
{
public:
    CDialogSelectAddPixel() : EffectPanel(801) {}
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
        RedSlider = 1007,
        GreenSlider,
        BlueSlider,
        RedLabel,
        GreenLabel,
        BlueLabel,
        RedValue,
        GreenValue,
        BlueValue,
        MoveAll = 1040,
    };

    // A colour's slider with its value text, and where the panel last saw the slider: what a move is measured from.
    struct SliderLink
    {
        CBaseSlider& slider;
        CBaseText& valueText;
        std::int32_t lastPosition = 0;

        // Puts the slider to a position, as far as its range goes, and takes note of it.
        void MoveTo(int position);
        void ShowPosition();
    };

    CBaseSlider redSlider, greenSlider, blueSlider;
    CBaseText redValue, greenValue, blueValue;
    CBaseText redLabel, greenLabel, blueLabel;
    CBaseCheckBox moveAll;
    std::vector<std::unique_ptr<SliderLink>> links; // red, green, blue
};
