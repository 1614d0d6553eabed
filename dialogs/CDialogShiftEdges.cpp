#include "dialogs/CDialogShiftEdges.h"

#include "dialogs/Panel.h"
#include "resources/languages/StringIds.h"

#include <vixavideofx/DataBlocks.h>

using vixavideofx::ConvolutionBlock;
using vixavideofx::ConvolutionKind;

const MessageMapEntry* CDialogShiftEdges::GetMessageMap()
{
    using This = CDialogShiftEdges;
    static const MessageMapEntry map[] = {
        MessageRow(WM_INITDIALOG, &This::OnInitDialog),
        MessageRow(WM_COMMAND, &This::OnCommand),
        MessageRow(WM_NOTIFY, &This::OnNotify),
        CommandRow(WM_DESTROY, 0, 0, &This::OnDestroy),
        endOfMap,
    };
    return map;
}

void CDialogShiftEdges::OnInitDialog(WPARAM focusControl)
{
    SetUp(focusControl,
          {
              {Horizontal, &horizontal, IDS_HORIZONTAL, IDS_TIP_SHIFT_HORIZONTAL, IDS_TIP_SHIFT_HORIZONTAL},
              {Vertical, &vertical, IDS_VERTICAL, IDS_TIP_SHIFT_VERTICAL, IDS_TIP_SHIFT_VERTICAL},
              {DirectionGroup, {}, IDS_CHOOSE_DIRECTION},
          });
}

void CDialogShiftEdges::OnCommand(LPARAM lParam, WPARAM)
{
    if (!vixa::IsFrom(lParam, horizontal.GetHwnd()) && !vixa::IsFrom(lParam, vertical.GetHwnd()))
        return;
    const bool alongRows = horizontal.GetCheck() == BST_CHECKED, alongColumns = vertical.GetCheck() == BST_CHECKED;
    auto kind = ConvolutionKind::ShiftEdges;
    if (alongRows && !alongColumns)
        kind = ConvolutionKind::ShiftEdgesHorizontal;
    else if (alongColumns && !alongRows)
        kind = ConvolutionKind::ShiftEdgesVertical;
    else if (!alongRows) {
        // The last box was cleared, but there is no kernel without a direction.
        horizontal.SetCheck(BST_CHECKED);
        vertical.SetCheck(BST_CHECKED);
    }
    StoreBlock(ConvolutionBlock{static_cast<std::int32_t>(kind)});
}

void CDialogShiftEdges::LoadValues()
{
    ClearChecks();
    const auto block = TryReadBlock<ConvolutionBlock>();
    if (!block)
        return;
    const auto kind = static_cast<ConvolutionKind>(block->kind);
    if (kind != ConvolutionKind::ShiftEdgesVertical)
        horizontal.SetCheck(BST_CHECKED);
    if (kind != ConvolutionKind::ShiftEdgesHorizontal)
        vertical.SetCheck(BST_CHECKED);
}

void CDialogShiftEdges::ClearChecks()
{
    horizontal.SetCheck(BST_UNCHECKED);
    vertical.SetCheck(BST_UNCHECKED);
}
