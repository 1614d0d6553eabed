#include "dialogs/CDialogSelectGamma.h"

#include "dialogs/Panel.h"
#include "resources/languages/StringIds.h"

#include <vixavideofx/DataBlocks.h>

using vixavideofx::GammaBlock;

namespace {
enum Control : int
{
    Title = 1031,
    LeftLabel = 1032,
    RightLabel = 1033,
    Slider = 1034,
    UnusedButton = 1035,
};
}

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
    const HWND dialog = vixa::DialogOf(focusControl);
    slider.Attach(GetDlgItem(dialog, Slider));
    title.Attach(GetDlgItem(dialog, Title));
    rightLabel.Attach(GetDlgItem(dialog, RightLabel));
    leftLabel.Attach(GetDlgItem(dialog, LeftLabel));

    CreateToolTip(dialog);
    AddToolTip(dialog, Slider, IDS_TIP_SLIDER, IDS_SELECT_INTENSITY);
    InstallMessageHook();

    title.SetText(vixa::PanelText(GetInstance(), IDS_GAMMA_LABEL).c_str());
    rightLabel.SetText(vixa::PanelText(GetInstance(), IDS_BRIGHTER).c_str());
    leftLabel.SetText(vixa::PanelText(GetInstance(), IDS_DARKER).c_str());
    ResetControls();
    slider.SetPageSize(3);
    // Nothing draws it and nothing answers it; hidden, it takes no place in the tab order either.
    ShowWindow(GetDlgItem(dialog, UnusedButton), SW_HIDE);
    vixa::WidenToTexts(dialog);
}

void CDialogSelectGamma::OnHScroll(LPARAM, WPARAM wParam)
{
    if (!vixa::SettlesValue(wParam))
        return;
    vixa::WriteBlock(params, GammaBlock{slider.GetPos()});
    NotifyParent();
}

void CDialogSelectGamma::LoadValues()
{
    if (const auto block = vixa::TryReadBlock<GammaBlock>(params))
        slider.SetPos(block->gamma);
}

void CDialogSelectGamma::ResetControls()
{
    slider.SetRangeMax(220);
    slider.SetRangeMin(45);
    slider.SetPos(100);
}
