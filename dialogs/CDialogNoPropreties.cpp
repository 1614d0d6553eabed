#include "dialogs/CDialogNoPropreties.h"

const MessageMapEntry* CDialogNoPropreties::GetMessageMap()
{
    using This = CDialogNoPropreties;
    static const MessageMapEntry map[] = {
        MessageRow(WM_INITDIALOG, &This::OnInitDialog),
        CommandRow(WM_DESTROY, 0, 0, &This::OnDestroy),
        endOfMap,
    };
    return map;
}

void CDialogNoPropreties::OnInitDialog(WPARAM) {}
