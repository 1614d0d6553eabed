// The control wrappers on the system's own controls.
#include "tests/ui/HostWindow.h"
#include "ui/CBaseCheckBox.h"
#include "ui/CBaseListBox.h"
#include "ui/CBaseSlider.h"
#include "ui/CBaseText.h"

#include <commctrl.h>
#include <gtest/gtest.h>

#include <string>

namespace {

class Wrappers : public testing::Test
{
protected:
    HWND Make(const wchar_t* windowClass, DWORD style)
    {
        InitCommonControls();
        return CreateWindowExW(0, windowClass, L"", WS_CHILD | WS_VISIBLE | style, 0, 0, 200, 100, host.hwnd, nullptr,
                               nullptr, nullptr);
    }
    HostWindow host;
};

TEST_F(Wrappers, SliderLeavesTheValueToTheTrackbar)
{
    CBaseSlider slider;
    EXPECT_EQ(slider.GetPos(), 0);
    slider.SetPos(5); // to no window
    slider.Attach(Make(TRACKBAR_CLASSW, 0));
    slider.SetRangeMax(255);
    slider.SetRangeMin(-255);
    slider.SetPageSize(15);
    for (auto [set, expected] : {std::pair{-255, -255}, {-1, -1}, {17, 17}, {300, 255}, {-70000, -255}}) {
        slider.SetPos(set);
        EXPECT_EQ(slider.GetPos(), expected);
    }
    EXPECT_EQ(SendMessageW(slider.GetHwnd(), TBM_GETPAGESIZE, 0, 0), 15);
    EXPECT_EQ(SendMessageW(slider.GetHwnd(), TBM_GETRANGEMIN, 0, 0), -255);
}

TEST_F(Wrappers, TextIsBoundedByItsCapacity)
{
    CBaseText text;
    wchar_t buffer[8] = L"unseen";
    EXPECT_EQ(text.GetText(buffer, 8), 0);
    EXPECT_STREQ(buffer, L"unseen") << "nothing is copied without a handle";
    text.SetText(L"x");
    text.Attach(Make(L"Static", 0));
    text.SetText(L"0123456789");
    text.SetText(nullptr);
    EXPECT_EQ(text.GetText(buffer, 0), 0);
    EXPECT_EQ(text.GetText(buffer, -1), 0);
    EXPECT_STREQ(buffer, L"unseen");
    EXPECT_EQ(text.GetText(buffer, 5), 4);
    EXPECT_STREQ(buffer, L"0123");
    EXPECT_EQ(buffer[5], L'n') << "beyond the capacity";
}

TEST_F(Wrappers, ListIsAComboBoxAndCheckBoxAButton)
{
    CBaseListBox list;
    list.SetCurSel(1);
    list.Attach(Make(L"ComboBox", CBS_DROPDOWN | CBS_SORT));
    EXPECT_EQ(list.AddString(L"Red"), 0);
    EXPECT_EQ(list.AddString(L"Green"), 0) << "sorted before the first";
    EXPECT_EQ(list.GetCurSel(), CB_ERR);
    list.SetCurSel(1);
    EXPECT_EQ(list.GetCurSel(), 1);
    list.SetCurSel(-1);
    EXPECT_EQ(list.GetCurSel(), CB_ERR);

    CBaseCheckBox box;
    box.SetCheck(1);
    box.SetText(L"x");
    EXPECT_EQ(box.GetCheck(), 0);
    box.Attach(Make(L"Button", BS_AUTOCHECKBOX));
    box.SetCheck(1);
    EXPECT_EQ(box.GetCheck(), 1);
    box.SetText(L"Ja");
    wchar_t text[4];
    EXPECT_EQ(GetWindowTextW(box.GetHwnd(), text, 4), 2);
}

} // namespace
