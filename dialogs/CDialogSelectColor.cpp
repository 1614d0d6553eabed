#include "dialogs/CDialogSelectColor.h"

#include "dialogs/Panel.h"
#include "resources/StringIds.h"

#include <vixavideofx/DataBlocks.h>

using vixavideofx::FilterColorBlock;

namespace {
enum Control : int
{
    ColourLabel = 1002,
    ColourList = 1003,
    IntensityLabel = 1004,
    Slider = 1005,
    ValueText = 1014,
};
}

const MessageMapEntry* CDialogSelectColor::GetMessageMap()
{
    using This = CDialogSelectColor;
    static const MessageMapEntry map[] = {
        onMessage(WM_INITDIALOG, &This::OnInitDialog),
        onMessage(WM_HSCROLL, &This::OnHScroll),
        onCommand(WM_DESTROY, 0, 0, &This::OnDestroy),
        onCommand(WM_COMMAND, ColourList, CBN_SELENDOK, &This::OnColourChosen),
        onMessage(WM_NOTIFY, &This::OnNotify),
        endOfMap,
    };
    return map;
}

void CDialogSelectColor::OnInitDialog(WPARAM focusControl)
{
    const HWND dialog = vixa::dialogOf(focusControl);
    slider.Attach(GetDlgItem(dialog, Slider));
    colourList.Attach(GetDlgItem(dialog, ColourList));
    valueText.Attach(GetDlgItem(dialog, ValueText));
    colourLabel.Attach(GetDlgItem(dialog, ColourLabel));
    intensityLabel.Attach(GetDlgItem(dialog, IntensityLabel));

    CreateToolTip(dialog);
    addToolTip(dialog, Slider, IDS_TIP_SLIDER, IDS_SELECT_INTENSITY);
    addToolTip(dialog, ColourList, IDS_TIP_SELECT_COLOR, IDS_SELECT_COLOR);
    InstallMessageHook();

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
        const int index = colourList.AddString(vixa::ownText(GetInstance(), entry.text).c_str());
        if (index >= 0)
            SendMessageW(colourList.GetHwnd(), CB_SETITEMDATA, static_cast<WPARAM>(index), entry.colour);
    }
    colourLabel.SetText(vixa::panelText(GetInstance(), IDS_SELECT_COLOR).c_str());
    intensityLabel.SetText(vixa::panelText(GetInstance(), IDS_SELECT_INTENSITY).c_str());
    ResetControls();
    slider.SetPageSize(15);
    vixa::widenToTexts(dialog);
}

void CDialogSelectColor::OnHScroll(LPARAM lParam, WPARAM wParam)
{
    if (vixa::isFrom(lParam, slider.GetHwnd()))
        valueText.SetText(vixa::positionText(slider.GetPos()).c_str());
    if (vixa::settlesValue(wParam))
        StoreValues();
}

void CDialogSelectColor::OnColourChosen()
{
    StoreValues();
}

void CDialogSelectColor::StoreValues()
{
    vixa::writeBlock(params, FilterColorBlock{slider.GetPos(), selectedColour()});
    NotifyParent();
}

void CDialogSelectColor::ResetControls()
{
    selectColour(FilterColorBlock::Blue);
    valueText.SetText(L"0");
}

void CDialogSelectColor::LoadValues()
{
    const auto block = vixa::readBlock<FilterColorBlock>(params);
    if (!block)
        return;
    slider.SetPos(block->intensity);
    selectColour(block->colour);
    valueText.SetText(vixa::positionText(slider.GetPos()).c_str());
}

// A colour that no entry has selects nothing.
void CDialogSelectColor::selectColour(std::int32_t colour)
{
    const HWND list = colourList.GetHwnd();
    int index = static_cast<int>(SendMessageW(list, CB_GETCOUNT, 0, 0));
    while (--index >= 0 && SendMessageW(list, CB_GETITEMDATA, static_cast<WPARAM>(index), 0) != colour) {
    }
    colourList.SetCurSel(index);
}

// -1, which matches no pixel, when nothing is selected.
std::int32_t CDialogSelectColor::selectedColour()
{
    const int index = colourList.GetCurSel();
    if (index < 0)
        return -1;
    return static_cast<std::int32_t>(SendMessageW(colourList.GetHwnd(), CB_GETITEMDATA, static_cast<WPARAM>(index), 0));
}
