// The panel of "Gamma correction": darker to the left, brighter to the right.
#pragma once

#include "ui/CBaseSlider.h"
#include "ui/CBaseText.h"
#include "ui/CBaseWnd.h"

class CDialogSelectGamma : public CBaseWnd
{
public:
    using CBaseWnd::CBaseWnd;
    ~CDialogSelectGamma() override = default;
    const MessageMapEntry* GetMessageMap() override;
    void OnInitDialog(WPARAM focusControl) override;
    void OnDestroy() override;

    // The low word of `wParam` is the trackbar's request.
    virtual void OnHScroll(LPARAM lParam, WPARAM wParam);
    // Shows the block; without one the controls stay as they are.
    virtual void LoadValues();
    virtual void ResetControls();

private:
    CBaseSlider slider; // gamma in hundredths
    CBaseText title;
    CBaseText rightLabel;
    CBaseText leftLabel;
};
