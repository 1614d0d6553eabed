// Whether what the user reads fits where it stands, in every language: real panels, measured with their own font.
#include "tests/dialogs/PanelFixture.h"
#include "tests/localisation/Holdings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

// Makes windows with the system's current common controls rather than with the old ones, as programs do that ask for
// them.
class CurrentControls
{
public:
    CurrentControls()
    {
        wchar_t folder[MAX_PATH], file[MAX_PATH];
        GetTempPathW(MAX_PATH, folder);
        GetTempFileNameW(folder, L"vx", 0, file);
        std::ofstream(std::filesystem::path(file))
            << R"(<assembly xmlns="urn:schemas-microsoft-com:asm.v1" manifestVersion="1.0"><dependency><dependentAssembly>)"
               R"(<assemblyIdentity type="win32" name="Microsoft.Windows.Common-Controls" version="6.0.0.0" )"
               R"(processorArchitecture="*" publicKeyToken="6595b64144ccf1df" language="*"/>)"
               R"(</dependentAssembly></dependency></assembly>)";
        ACTCTXW request{};
        request.cbSize = sizeof request;
        request.lpSource = file;
        context = CreateActCtxW(&request);
        EXPECT_TRUE(ActivateActCtx(context, &cookie));
        DeleteFileW(file);
    }
    ~CurrentControls()
    {
        DeactivateActCtx(0, cookie);
        ReleaseActCtx(context);
    }

private:
    HANDLE context;
    ULONG_PTR cookie = 0;
};

// What a control's text needs and has, in pixels, measured with the control's own font.
struct Measure
{
    explicit Measure(HWND control, const std::wstring& text)
    {
        const HDC dc = GetDC(control);
        const HGDIOBJ old = SelectObject(dc, reinterpret_cast<HGDIOBJ>(SendMessageW(control, WM_GETFONT, 0, 0)));
        SIZE size;
        GetTextExtentPoint32W(dc, text.data(), static_cast<int>(text.size()), &size);
        needed = size.cx;
        std::vector<WORD> glyphs(text.size());
        GetGlyphIndicesW(dc, text.data(), static_cast<int>(text.size()), glyphs.data(), GGI_MARK_NONEXISTING_GLYPHS);
        drawable = std::ranges::find(glyphs, WORD{0xFFFF}) == glyphs.end();

        RECT area, panel;
        GetWindowRect(control, &area);
        GetClientRect(GetParent(control), &panel);
        MapWindowPoints(GetParent(control), nullptr, reinterpret_cast<POINT*>(&panel), 2);
        room = static_cast<int>(std::min(area.right, panel.right) - area.left);
        wchar_t windowClass[32];
        GetClassNameW(control, windowClass, 32);
        if (SIZE ideal{}; SendMessageW(control, BCM_GETIDEALSIZE, 0, reinterpret_cast<LPARAM>(&ideal))) {
            needed = ideal.cx;
        } else if (lstrcmpiW(windowClass, L"Button") == 0) {
            const int dpi = GetDeviceCaps(dc, LOGPIXELSX);
            const bool isGroup = (GetWindowLongW(control, GWL_STYLE) & 0xF) == BS_GROUPBOX;
            // A check box draws a box of 13 and a gap of 4 pixels at 96 dpi; a group box keeps its corners free.
            room -= MulDiv(isGroup ? 18 : 17, dpi, 96);
        }
        SelectObject(dc, old);
        ReleaseDC(control, dc);
    }
    int needed, room;
    bool drawable; // the font has all its characters; otherwise its width would be that of empty boxes
};

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
void ExpectAllFits(HostWindow& host, const Block& block, LANGID language)
{
    const Panel panel(host, block);
    for (HWND control = GetWindow(panel.window, GW_CHILD); control; control = GetWindow(control, GW_HWNDNEXT)) {
        const int id = GetDlgCtrlID(control);
        if (SendMessageW(control, TBM_GETRANGEMAX, 0, 0)) {
            RECT thumb, area;
            SendMessageW(control, TBM_GETTHUMBRECT, 0, reinterpret_cast<LPARAM>(&thumb));
            GetClientRect(control, &area);
            EXPECT_LE(thumb.bottom, area.bottom) << "the thumb of control " << id;
        }
        const std::wstring text = panel.Text(id);
        if (text.empty() || !panel.Shown(id))
            continue;
        const Measure measure(control, text);
        if (!measure.drawable)
            continue;
        ++measured;
        EXPECT_LE(measure.needed, measure.room)
            << "language " << language << ", control " << id << ": " << Narrow(text);
    }
}

// In the font that stands for the dialog font here: one whose texts and panels are wide, or Tahoma.
void ExpectAllFits(int atLeast)
{
    measured = 0;
    const TestModule module;
    HostWindow host;
    ASSERT_EQ(std::size(vixa::test::identifiers), vixa::LanguageCodes().size());
    for (const auto& [language, code] : vixa::test::identifiers) {
        ModuleBase::SetLanguage(language);
        ASSERT_EQ(ModuleBase::GetLanguage(), language);
        // With the widest values.
        ExpectAllFits<ColourPanel>(host, {-255, 1}, language);
        ExpectAllFits<AddPanel>(host, {-255, -255, -255, 1}, language);
        ExpectAllFits<InvertPanel>(host, {7}, language);
        ExpectAllFits<MultiplyPanel>(host, {200}, language);
        ExpectAllFits<GammaPanel>(host, {100}, language);
        ExpectAllFits<ShiftPanel>(host, {7}, language);
    }
    ModuleBase::SetLanguage(1033);
    EXPECT_GE(measured, atLeast);
}

// At the screen's resolution; tools/wine-dpi.sh chooses one and names it.
TEST(Labels, FitTheirControlsInEveryLanguage)
{
    const char* const resolution = std::getenv("VIXA_DPI");
    const HDC screen = GetDC(nullptr);
    ASSERT_EQ(GetDeviceCaps(screen, LOGPIXELSX), resolution ? std::atoi(resolution) : 96);
    ReleaseDC(nullptr, screen);
    if (!resolution)
        ExpectAllFits(500);
    const wchar_t* const tahoma = LR"(Z:\usr\share\wine\fonts\tahoma.ttf)";
    ASSERT_EQ(AddFontResourceExW(tahoma, FR_PRIVATE, nullptr), 1) << "tools/setup.sh installs it";
    ExpectAllFits(450);
    {
        const CurrentControls current;
        ExpectAllFits(450);
    }
    RemoveFontResourceExW(tahoma, FR_PRIVATE, nullptr);
}

} // namespace
