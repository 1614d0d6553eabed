#include "dialogs/CDialogInvert.h"

#include "dialogs/Panel.h"
#include "resources/languages/StringIds.h"

#include <vixavideofx/DataBlocks.h>

using vixavideofx::InvertBlock;

const MessageMapEntry* CDialogInvert::GetMessageMap()
{
    using This = CDialogInvert;
    static const MessageMapEntry map[] = {
        MessageRow(WM_INITDIALOG, &This::OnInitDialog),
        MessageRow(WM_COMMAND, &This::OnCommand),
        MessageRow(WM_NOTIFY, &This::OnNotify),
        CommandRow(WM_DESTROY, 0, 0, &This::OnDestroy),
        endOfMap,
    };
    return map;
}

void CDialogInvert::OnInitDialog(WPARAM focusControl)
{
    SetUp(focusControl, {
                            {Red, &red, IDS_RED, IDS_TIP_INVERT_RED, IDS_TIP_INVERT_RED},
                            {Green, &green, IDS_GREEN, IDS_TIP_INVERT_GREEN, IDS_TIP_INVERT_GREEN},
                            {Blue, &blue, IDS_BLUE, IDS_TIP_INVERT_BLUE, IDS_TIP_INVERT_BLUE},
                            {Label, &label, IDS_SELECT_COLOR},
                        });
}

void CDialogInvert::OnCommand(LPARAM lParam, WPARAM)
{
    if (!vixa::IsFrom(lParam, red.GetHwnd()) && !vixa::IsFrom(lParam, green.GetHwnd()) &&
        !vixa::IsFrom(lParam, blue.GetHwnd()))
        return;
    const auto bit = [](CBaseCheckBox& box, std::int32_t value) { return box.GetCheck() == BST_CHECKED ? value : 0; };
    StoreBlock(InvertBlock{bit(red, InvertBlock::Red) | bit(green, InvertBlock::Green) | bit(blue, InvertBlock::Blue)});
}

void CDialogInvert::LoadValues()
{
    const auto block = TryReadBlock<InvertBlock>();
    if (!block)
        return;
    const auto check = [&](std::int32_t value) { return block->mask & value ? BST_CHECKED : BST_UNCHECKED; };
    red.SetCheck(check(InvertBlock::Red));
    green.SetCheck(check(InvertBlock::Green));
    blue.SetCheck(check(InvertBlock::Blue));
}

void CDialogInvert::ResetControls()
{
    ClearChecks();
}

void CDialogInvert::ClearChecks()
{
    for (CBaseCheckBox* box : {&red, &green, &blue})
        box->SetCheck(BST_UNCHECKED);
}
