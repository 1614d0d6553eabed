#include "dialogs/CDialogMultiply.h"

#include "dialogs/Panel.h"
#include "resources/languages/StringIds.h"

#include <vixavideofx/DataBlocks.h>

using vixavideofx::MultiplyBlock;

const MessageMapEntry* CDialogMultiply::GetMessageMap()
{
    using This = CDialogMultiply;
    static const MessageMapEntry map[] = {
        MessageRow(WM_INITDIALOG, &This::OnInitDialog),
        MessageRow(WM_HSCROLL, &This::OnHScroll),
        CommandRow(WM_DESTROY, 0, 0, &This::OnDestroy),
        MessageRow(WM_NOTIFY, &This::OnNotify),
        endOfMap,
    };
    return map;
}

void CDialogMultiply::OnInitDialog(WPARAM focusControl)
{
    SetUp(focusControl, {
                            {Slider, &slider, 0, IDS_TIP_SLIDER, IDS_SELECT_INTENSITY},
                            {ValueText, &valueText, 0, 0, 0, L"2.00"},
                            {Label, &label, IDS_MULTIPLY_FACTOR},
                        });
    ResetControls();
    slider.SetPageSize(15);
}

void CDialogMultiply::OnHScroll(LPARAM lParam, WPARAM wParam)
{
    if (vixa::IsFrom(lParam, slider.GetHwnd()))
        ShowFactor();
    if (!vixa::SettlesValue(wParam))
        return;
    StoreBlock(MultiplyBlock{slider.GetPos()});
}

void CDialogMultiply::ResetControls()
{
    slider.SetRangeMax(200);
    slider.SetRangeMin(0);
    slider.SetPos(0);
    valueText.SetText(L"0");
}

void CDialogMultiply::LoadValues()
{
    const auto block = TryReadBlock<MultiplyBlock>();
    if (!block)
        return;
    slider.SetPos(block->factor);
    ShowFactor();
}

void CDialogMultiply::ShowFactor()
{
    const int percent = slider.GetPos();
    const int hundredths = percent % 100;
    valueText.SetText(
        (std::to_wstring(percent / 100) + (hundredths < 10 ? L".0" : L".") + std::to_wstring(hundredths)).c_str());
}
