#include "dialogs/CDialogSelectAddPixel.h"

#include "dialogs/Panel.h"
#include "resources/languages/StringIds.h"

#include <vixavideofx/DataBlocks.h>

#include <algorithm>

using vixavideofx::AddBlock;

namespace {
enum Control : int
{
    RedSlider = 1007,
    GreenSlider,
    BlueSlider,
    RedLabel,
    GreenLabel,
    BlueLabel,
    RedValue,
    GreenValue,
    BlueValue,
    MoveAll = 1040,
};
constexpr int lowest = -255, highest = 255;
} // namespace

const MessageMapEntry* CDialogSelectAddPixel::GetMessageMap()
{
    using This = CDialogSelectAddPixel;
    static const MessageMapEntry map[] = {
        MessageRow(WM_INITDIALOG, &This::OnInitDialog),
        MessageRow(WM_HSCROLL, &This::OnHScroll),
        MessageRow(WM_NOTIFY, &This::OnNotify),
        CommandRow(WM_DESTROY, 0, 0, &This::OnDestroy),
        endOfMap,
    };
    return map;
}

void CDialogSelectAddPixel::OnInitDialog(WPARAM focusControl)
{
    const HWND dialog = vixa::DialogOf(focusControl);
    redSlider.Attach(GetDlgItem(dialog, RedSlider));
    greenSlider.Attach(GetDlgItem(dialog, GreenSlider));
    blueSlider.Attach(GetDlgItem(dialog, BlueSlider));
    redValue.Attach(GetDlgItem(dialog, RedValue));
    greenValue.Attach(GetDlgItem(dialog, GreenValue));
    blueValue.Attach(GetDlgItem(dialog, BlueValue));
    redLabel.Attach(GetDlgItem(dialog, RedLabel));
    greenLabel.Attach(GetDlgItem(dialog, GreenLabel));
    blueLabel.Attach(GetDlgItem(dialog, BlueLabel));
    moveAll.Attach(GetDlgItem(dialog, MoveAll));

    CreateToolTip(dialog);
    for (int control : {RedSlider, GreenSlider, BlueSlider})
        AddToolTip(dialog, static_cast<std::uint32_t>(control), IDS_TIP_SLIDER, IDS_SELECT_INTENSITY);
    AddToolTip(dialog, MoveAll, IDS_TIP_MOVE_ALL_SLIDERS, IDS_TIP_MOVE_ALL_SLIDERS);
    InstallMessageHook();

    links.clear();
    links.push_back(std::make_unique<SliderLink>(SliderLink{redSlider, redValue}));
    links.push_back(std::make_unique<SliderLink>(SliderLink{greenSlider, greenValue}));
    links.push_back(std::make_unique<SliderLink>(SliderLink{blueSlider, blueValue}));

    redLabel.SetText(vixa::PanelText(GetInstance(), IDS_RED).c_str());
    greenLabel.SetText(vixa::PanelText(GetInstance(), IDS_GREEN).c_str());
    blueLabel.SetText(vixa::PanelText(GetInstance(), IDS_BLUE).c_str());
    for (const auto& link : links)
        link->slider.SetPageSize(15);
    moveAll.SetText(vixa::PanelText(GetInstance(), IDS_MOVE_ALL_SLIDERS).c_str());
    ResetControls();
    vixa::WidenToTexts(dialog);
}

void CDialogSelectAddPixel::OnHScroll(LPARAM lParam, WPARAM wParam)
{
    for (const auto& moved : links) {
        if (!vixa::IsFrom(lParam, moved->slider.GetHwnd()))
            continue;
        moved->ShowPosition();
        const int position = moved->slider.GetPos();
        if (moveAll.GetCheck())
            for (const auto& other : links)
                if (other != moved)
                    other->MoveTo(other->slider.GetPos() + position - moved->lastPosition);
        moved->lastPosition = position;
    }
    if (!vixa::SettlesValue(wParam))
        return;
    vixa::WriteBlock(params,
                     AddBlock{redSlider.GetPos(), greenSlider.GetPos(), blueSlider.GetPos(), moveAll.GetCheck()});
    NotifyParent();
}

void CDialogSelectAddPixel::ResetControls()
{
    for (const auto& link : links) {
        link->slider.SetRangeMax(highest);
        link->slider.SetRangeMin(lowest);
        link->slider.SetPos(lowest); // some trackbars draw the thumb anew only when the position changes
        link->MoveTo(0);
    }
}

void CDialogSelectAddPixel::LoadValues()
{
    const auto block = vixa::TryReadBlock<AddBlock>(params);
    if (!block)
        return;
    blueSlider.SetPos(block->blueDelta);
    greenSlider.SetPos(block->greenDelta);
    redSlider.SetPos(block->redDelta);
    moveAll.SetCheck(block->moveAll);
    for (const auto& link : links) {
        // The next move is measured from here, not from what another instance of the effect had.
        link->lastPosition = link->slider.GetPos();
        link->ShowPosition();
    }
}

void CDialogSelectAddPixel::SliderLink::MoveTo(int position)
{
    lastPosition = std::clamp(position, lowest, highest);
    slider.SetPos(lastPosition);
    ShowPosition();
}

void CDialogSelectAddPixel::SliderLink::ShowPosition()
{
    valueText.SetText(vixa::PositionText(slider.GetPos()).c_str());
}
