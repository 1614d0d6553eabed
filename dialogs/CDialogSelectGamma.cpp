#include "dialogs/CDialogSelectGamma.h"

#include "dialogs/Panel.h"
#include "resources/languages/StringIds.h"

#include <vixavideofx/DataBlocks.h>

using vixavideofx::GammaBlock;

const MessageMapEntry* CDialogSelectGamma::GetMessageMap()
{
    using This = CDialogSelectGamma;
    static const MessageMapEntry map[] = {
        MessageRow(WM_INITDIALOG, &This::OnInitDialog),
        MessageRow(WM_HSCROLL, &This::OnHScroll),
        CommandRow(WM_DESTROY, 0, 0, &This::OnDestroy),
        MessageRow(WM_NOTIFY, &This::OnNotify),
        endOfMap,
    };
    return map;
}

void CDialogSelectGamma::OnInitDialog(WPARAM focusControl)
{
    const HWND dialog = SetUp(focusControl, {
                                                {Slider, &slider, 0, IDS_TIP_SLIDER, IDS_SELECT_INTENSITY},
                                                {Title, &title, IDS_GAMMA_LABEL},
                                                {RightLabel, &rightLabel, IDS_BRIGHTER},
                                                {LeftLabel, &leftLabel, IDS_DARKER},
                                            });
    ResetControls();
    slider.SetPageSize(3);
    // Nothing draws it and nothing answers it; hidden, it takes no place in the tab order either.
    ShowWindow(GetDlgItem(dialog, UnusedButton), SW_HIDE);
}

void CDialogSelectGamma::OnHScroll(LPARAM, WPARAM wParam)
{
    if (!vixa::SettlesValue(wParam))
        return;
    StoreBlock(GammaBlock{slider.GetPos()});
}

void CDialogSelectGamma::LoadValues()
{
    if (const auto block = TryReadBlock<GammaBlock>())
        slider.SetPos(block->gamma);
}

void CDialogSelectGamma::ResetControls()
{
    slider.SetRangeMax(220);
    slider.SetRangeMin(45);
    slider.SetPos(100);
}
