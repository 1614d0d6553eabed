// The panel of "Shift edges": in which directions. At least one stays chosen.
#pragma once

#include "ui/CBaseCheckBox.h"
#include "ui/CBaseWnd.h"

class CDialogShiftEdges : public CBaseWnd
{
public:
    using CBaseWnd::CBaseWnd;
    ~CDialogShiftEdges() override = default;
    const MessageMapEntry* GetMessageMap() override;
    void OnInitDialog(WPARAM focusControl) override;
    void OnDestroy() override;

    // `lParam` is the control that sends.
    virtual void OnCommand(LPARAM lParam, WPARAM wParam);
    // Shows the block; without one both boxes are clear.
    virtual void LoadValues();
    virtual void ClearChecks();

private:
    CBaseCheckBox horizontal, vertical;
};
