// The panel of "Shift edges": in which directions. At least one stays chosen.
#pragma once

#include "dialogs/EffectPanel.h"

class CDialogShiftEdges : public EffectPanel
{
public:
    CDialogShiftEdges() : EffectPanel(805) {}
    const MessageMapEntry* GetMessageMap() override;
    void OnInitDialog(WPARAM focusControl) override;

    // `lParam` is the control that sends.
    virtual void OnCommand(LPARAM lParam, WPARAM wParam);
    // Shows the block; without one both boxes are clear.
    void LoadValues() override;
    virtual void ClearChecks();

private:
    enum Id : int
    {
        DirectionGroup = 1036,
        Horizontal = 1038,
        Vertical = 1039,
    };

    CBaseCheckBox horizontal, vertical;
};
