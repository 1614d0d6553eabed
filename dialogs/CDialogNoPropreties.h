// The empty panel of the effects that have no settings.
#pragma once

#include "dialogs/EffectPanel.h"

class CDialogNoPropreties : public EffectPanel
{
public:
    CDialogNoPropreties() : EffectPanel(806) {}
    const MessageMapEntry* GetMessageMap() override;
    void OnInitDialog(WPARAM focusControl) override;
};
