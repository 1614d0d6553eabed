#include "dialogs/CDialogSelectAddPixel.h"

#include "dialogs/Panel.h"
#include "resources/languages/StringIds.h"

#include <vixavideofx/DataBlocks.h>

#include <algorithm>

using vixavideofx::AddBlock;

namespace {
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
    SetUp(focusControl,
          {
              {RedSlider, &redSlider, 0, IDS_TIP_SLIDER, IDS_SELECT_INTENSITY},
              {GreenSlider, &greenSlider, 0, IDS_TIP_SLIDER, IDS_SELECT_INTENSITY},
              {BlueSlider, &blueSlider, 0, IDS_TIP_SLIDER, IDS_SELECT_INTENSITY},
              {RedValue, &redValue, 0, 0, 0, L"-255"},
              {GreenValue, &greenValue, 0, 0, 0, L"-255"},
              {BlueValue, &blueValue, 0, 0, 0, L"-255"},
              {RedLabel, &redLabel, IDS_RED},
              {GreenLabel, &greenLabel, IDS_GREEN},
              {BlueLabel, &blueLabel, IDS_BLUE},
              {MoveAll, &moveAll, IDS_MOVE_ALL_SLIDERS, IDS_TIP_MOVE_ALL_SLIDERS, IDS_TIP_MOVE_ALL_SLIDERS},
          });
    links.clear();
    links.push_back(std::make_unique<SliderLink>(SliderLink{redSlider, redValue}));
    links.push_back(std::make_unique<SliderLink>(SliderLink{greenSlider, greenValue}));
    links.push_back(std::make_unique<SliderLink>(SliderLink{blueSlider, blueValue}));
    for (const auto& link : links)
        link->slider.SetPageSize(15);
    ResetControls();
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
    StoreBlock(AddBlock{redSlider.GetPos(), greenSlider.GetPos(), blueSlider.GetPos(), moveAll.GetCheck()});
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
    const auto block = TryReadBlock<AddBlock>();
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
