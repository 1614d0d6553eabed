// Whether what the user reads fits where it stands, in every language: real panels, measured with their own font.
#include "tests/dialogs/PanelFixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

// The width of a control's text in its own font, in pixels.
int TextWidth(HWND control, const std::wstring& text)
{
    const HDC dc = GetDC(control);
    const HGDIOBJ old = SelectObject(dc, reinterpret_cast<HGDIOBJ>(SendMessageW(control, WM_GETFONT, 0, 0)));
    SIZE size;
    GetTextExtentPoint32W(dc, text.data(), static_cast<int>(text.size()), &size);
    SelectObject(dc, old);
    ReleaseDC(control, dc);
    return size.cx;
}

// The pixels that a control has for its text: its width within its panel, less what it draws besides.
int TextRoom(HWND control)
{
    RECT area, panel;
    GetWindowRect(control, &area);
    GetClientRect(GetParent(control), &panel);
    MapWindowPoints(GetParent(control), nullptr, reinterpret_cast<POINT*>(&panel), 2);
    const int width = static_cast<int>(std::min(area.right, panel.right) - area.left);
    wchar_t windowClass[32];
    GetClassNameW(control, windowClass, 32);
    if (lstrcmpiW(windowClass, L"Button") != 0)
        return width;
    const bool isGroup = (GetWindowLongW(control, GWL_STYLE) & 0xF) == BS_GROUPBOX;
    // A check box draws 13 pixels of box and a gap of 3 to 4; a group box keeps its corners free.
    return width - (isGroup ? 18 : 17);
}

bool HasGlyphs(HWND control, const std::wstring& text)
{
    const HDC dc = GetDC(control);
    const HGDIOBJ old = SelectObject(dc, reinterpret_cast<HGDIOBJ>(SendMessageW(control, WM_GETFONT, 0, 0)));
    std::vector<WORD> glyphs(text.size());
    GetGlyphIndicesW(dc, text.data(), static_cast<int>(text.size()), glyphs.data(), GGI_MARK_NONEXISTING_GLYPHS);
    SelectObject(dc, old);
    ReleaseDC(control, dc);
    return std::find(glyphs.begin(), glyphs.end(), WORD{0xFFFF}) == glyphs.end();
}

int measured = 0;

std::string Narrow(const std::wstring& text)
{
    std::string result(text.size() * 4, '\0');
    result.resize(static_cast<std::size_t>(WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()),
                                                               result.data(), static_cast<int>(result.size()), nullptr,
                                                               nullptr)));
    return result;
}

template <typename Panel>
void ExpectTextsFit(HostWindow& host, RecordingSet::Block block, LANGID language)
{
    const Panel panel(host, std::move(block));
    for (HWND control = GetWindow(panel.window, GW_CHILD); control; control = GetWindow(control, GW_HWNDNEXT)) {
        const std::wstring text = panel.Text(GetDlgCtrlID(control));
        if (text.empty() || !panel.Shown(GetDlgCtrlID(control)))
            continue;
        if (!HasGlyphs(control, text))
            continue; // its width would be that of empty boxes
        ++measured;
        // The empty column behind a value's last digit may be cut off.
        const bool isNumber = text.find_first_not_of(L"-.0123456789") == std::wstring::npos;
        EXPECT_LE(TextWidth(control, text), TextRoom(control) + isNumber)
            << "language " << language << ", control " << GetDlgCtrlID(control) << ": " << Narrow(text);
    }
}

// In the font that stands for the dialog font here: one whose texts and panels are wide, or Tahoma.
void ExpectAllTextsFit(int atLeast)
{
    measured = 0;
    const TestModule module;
    HostWindow host;
    // One identifier for each language file.
    const LANGID languages[] = {1028, 2052, 1029, 1030, 1031, 1032, 1034, 13322, 1035, 1036, 1038, 1040, 1041, 1042,
                                1043, 1044, 1045, 1046, 2070, 1049, 1051, 1053,  1054, 1055, 1058, 1060, 1033};
    ASSERT_EQ(std::size(languages), vixa::LanguageCodes().size());
    for (const LANGID language : languages) {
        ModuleBase::SetLanguage(language);
        ASSERT_EQ(ModuleBase::GetLanguage(), language);
        // With the widest values.
        ExpectTextsFit<ColourPanel>(host, {-200, 1}, language);
        ExpectTextsFit<AddPanel>(host, {-200, -200, -200, 1}, language);
        ExpectTextsFit<InvertPanel>(host, {7}, language);
        ExpectTextsFit<MultiplyPanel>(host, {200}, language);
        ExpectTextsFit<GammaPanel>(host, {100}, language);
        ExpectTextsFit<ShiftPanel>(host, {7}, language);
    }
    EXPECT_GE(measured, atLeast);
}

TEST(Labels, FitTheirControlsInEveryLanguage)
{
    ExpectAllTextsFit(500);
    const wchar_t* const tahoma = LR"(Z:\usr\share\wine\fonts\tahoma.ttf)";
    ASSERT_EQ(AddFontResourceExW(tahoma, FR_PRIVATE, nullptr), 1) << "tools/setup.sh installs it";
    ExpectAllTextsFit(450);
    RemoveFontResourceExW(tahoma, FR_PRIVATE, nullptr);
}

} // namespace
