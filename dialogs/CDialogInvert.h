// The panel of "Invert color": which colours are inverted.
#pragma once

#include "ui/CBaseCheckBox.h"
#include "ui/CBaseText.h"
#include "ui/CBaseWnd.h"

class CDialogInvert : public CBaseWnd
{
public:
    using CBaseWnd::CBaseWnd;
    ~CDialogInvert() override = default;
    const MessageMapEntry* GetMessageMap() override;
    void OnInitDialog(WPARAM focusControl) override;
    void OnDestroy() override;
    void OnNotify(LPARAM notifyHeader, WPARAM wParam) override;

    // `lParam` is the control that sends.
    virtual void OnCommand(LPARAM lParam, WPARAM wParam);
    // Shows the block; without one the controls stay as they are.
    virtual void LoadValues();
    virtual void ClearChecks();

private:
    CBaseCheckBox red, green, blue;
    CBaseText label;
};
