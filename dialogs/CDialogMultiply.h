// The panel of "Multiply pixel": the factor, shown with two decimal places.
#pragma once

#include "ui/CBaseSlider.h"
#include "ui/CBaseText.h"
#include "ui/CBaseWnd.h"

class CDialogMultiply : public CBaseWnd
{
public:
    using CBaseWnd::CBaseWnd;
    ~CDialogMultiply() override = default;
    const MessageMapEntry* GetMessageMap() override;
    void OnInitDialog(WPARAM focusControl) override;
    void OnDestroy() override;

    // `lParam` is the trackbar, the low word of `wParam` its request.
    virtual void OnHScroll(LPARAM lParam, WPARAM wParam);
    virtual void ResetControls();
    // Shows the block; without one the controls stay as they are.
    virtual void LoadValues();

private:
    void showFactor();

    CBaseSlider slider; // percent
    CBaseText valueText;
    CBaseText label;
};
