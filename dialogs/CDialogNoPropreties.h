// The empty panel of the effects that have no settings.
#pragma once

#include "ui/CBaseWnd.h"

class CDialogNoPropreties : public CBaseWnd
{
public:
    using CBaseWnd::CBaseWnd;
    ~CDialogNoPropreties() override = default;
    const MessageMapEntry* GetMessageMap() override;
    void OnInitDialog(WPARAM focusControl) override;
    void OnDestroy() override;
};
