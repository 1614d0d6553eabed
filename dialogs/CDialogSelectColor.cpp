#include "dialogs/CDialogSelectColor.h"

#include "dialogs/Panel.h"
#include "resources/languages/StringIds.h"

#include <vixavideofx/DataBlocks.h>

using vixavideofx::FilterColorBlock;

const MessageMapEntry* CDialogSelectColor::GetMessageMap()
{
    using This = CDialogSelectColor;
    static const MessageMapEntry map[] = {
        MessageRow(WM_INITDIALOG, &This::OnInitDialog),
        MessageRow(WM_HSCROLL, &This::OnHScroll),
        CommandRow(WM_DESTROY, 0, 0, &This::OnDestroy),
        CommandRow(WM_COMMAND, ColourList, CBN_SELENDOK, &This::OnColourChosen),
        MessageRow(WM_NOTIFY, &This::OnNotify),
        endOfMap,
    };
    return map;
}

void CDialogSelectColor::OnInitDialog(WPARAM focusControl)
{
    SetUp(focusControl, {
                            {Slider, &slider, 0, IDS_TIP_SLIDER, IDS_SELECT_INTENSITY},
                            {ColourList, &colourList, 0, IDS_TIP_SELECT_COLOR, IDS_SELECT_COLOR},
                            {ValueText, &valueText, 0, 0, 0, L"-255"},
                            {ColourLabel, &colourLabel, IDS_SELECT_COLOR},
                            {IntensityLabel, &intensityLabel, IDS_SELECT_INTENSITY},
                        });

    slider.SetRangeMax(255);
    slider.SetRangeMin(-255);
    slider.SetPos(-255); // some trackbars draw the thumb anew only when the position changes
    slider.SetPos(0);
    const struct
    {
        UINT text;
        std::int32_t colour;
    } entries[] = {
        {IDS_RED, FilterColorBlock::Red},
        {IDS_GREEN, FilterColorBlock::Green},
        {IDS_BLUE, FilterColorBlock::Blue},
    };
    for (const auto& entry : entries) {
        const int index = colourList.AddString(vixa::OwnText(GetInstance(), entry.text).c_str());
        if (index >= 0)
            SendMessageW(colourList.GetHwnd(), CB_SETITEMDATA, static_cast<WPARAM>(index), entry.colour);
    }
    // Its colours are chosen, not typed: a typed name would leave none selected.
    COMBOBOXINFO list{};
    list.cbSize = sizeof list;
    if (GetComboBoxInfo(colourList.GetHwnd(), &list))
        SendMessageW(list.hwndItem, EM_SETREADONLY, TRUE, 0);
    ResetControls();
    slider.SetPageSize(15);
}

void CDialogSelectColor::OnHScroll(LPARAM lParam, WPARAM wParam)
{
    if (vixa::IsFrom(lParam, slider.GetHwnd()))
        valueText.SetText(vixa::PositionText(slider.GetPos()).c_str());
    if (vixa::SettlesValue(wParam))
        StoreValues();
}

void CDialogSelectColor::OnColourChosen()
{
    StoreValues();
}

void CDialogSelectColor::StoreValues()
{
    StoreBlock(FilterColorBlock{slider.GetPos(), SelectedColour()});
}

void CDialogSelectColor::ResetControls()
{
    SelectColour(FilterColorBlock::Blue);
    valueText.SetText(L"0");
}

void CDialogSelectColor::LoadValues()
{
    const auto block = TryReadBlock<FilterColorBlock>();
    if (!block)
        return;
    slider.SetPos(block->intensity);
    SelectColour(block->colour);
    valueText.SetText(vixa::PositionText(slider.GetPos()).c_str());
}

// A colour that no entry has selects nothing.
void CDialogSelectColor::SelectColour(std::int32_t colour)
{
    const HWND list = colourList.GetHwnd();
    int index = static_cast<int>(SendMessageW(list, CB_GETCOUNT, 0, 0));
    while (--index >= 0 && SendMessageW(list, CB_GETITEMDATA, static_cast<WPARAM>(index), 0) != colour) {
    }
    colourList.SetCurSel(index);
}

// -1, which matches no pixel, when nothing is selected.
std::int32_t CDialogSelectColor::SelectedColour()
{
    const int index = colourList.GetCurSel();
    if (index < 0)
        return -1;
    return static_cast<std::int32_t>(SendMessageW(colourList.GetHwnd(), CB_GETITEMDATA, static_cast<WPARAM>(index), 0));
}
