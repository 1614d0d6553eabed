// The catalogue as a host reads it: through IEffectInfo of each class factory of the built DLL.
#include "tests/support/GuardedBytes.h"
#include "tests/support/Library.h"
#include "tests/support/TestPropertySet.h"

#include <vixavideofx/IEffectInfo.h>

#include <commctrl.h>

#include <algorithm>
#include <cstring>
#include <string>

using namespace test;
using namespace vixavideofx;

namespace {

struct Row
{
    CLSID clsid;
    const wchar_t* name;
    ULONG group;
    const wchar_t* groupName;
    ULONG sortKey;
    std::vector<std::int32_t> defaults;
};

// What a host is promised, in no particular order.
const Row rows[] = {
    {CLSID_AddPixel, L"Add pixel", 3, L"Color filter", 0x7FFFFF9C, {0, 0, 0, 0}},
    {CLSID_MultiplyPixel, L"Multiply pixel", 3, L"Color filter", 0x7FFFFF9D, {100}},
    {CLSID_GammaCorrection, L"Gamma correction", 3, L"Color filter", 0x7FFFFF9E, {100}},
    {CLSID_FilterColor, L"Filter color", 3, L"Color filter", 0x7FFFFFA2, {0, 0}},
    {CLSID_InvertColor, L"Invert color", 3, L"Color filter", 0x7FFFFFA9, {0}},
    {CLSID_EnhanceEdges, L"Enhance edges", 4, L"Edges", 0x7FFFFF9C, {4}},
    {CLSID_LightEdges, L"Light edges", 4, L"Edges", 0x7FFFFF9C, {6}},
    {CLSID_DetectEdges, L"Detect edges", 4, L"Edges", 0x7FFFFF9C, {1}},
    {CLSID_ShiftEdges, L"Shift edges", 4, L"Edges", 0x7FFFFF9D, {7}},
    {CLSID_Emboss, L"Emboss", 4, L"Edges", 0x7FFFFF9E, {2}},
    {CLSID_EnhanceDetails, L"Enhance details", 5, L"Sharpness", 0x7FFFFF9C, {3}},
    {CLSID_EnhanceFocus, L"Enhance focus", 5, L"Sharpness", 0x7FFFFF9C, {5}},
    {CLSID_SoftenFilter, L"Soften filter", 5, L"Sharpness", 0x7FFFFFAF, {8}},
};

class Catalogue : public LibraryTest
{
protected:
    ComPtr<IEffectInfo> Info(REFCLSID clsid)
    {
        ComPtr<IEffectInfo> info;
        EXPECT_EQ(library.Factory(clsid).As(&info), S_OK);
        return info;
    }

    static std::wstring Name(IEffectInfo* info, ULONG language = 1033)
    {
        ULONG length = 0;
        EXPECT_EQ(info->GetEffectName(language, nullptr, &length), S_OK);
        std::wstring text(length + 1, L'#');
        EXPECT_EQ(info->GetEffectName(language, text.data(), nullptr), S_OK);
        EXPECT_EQ(text[length], L'#') << "more was written than announced";
        EXPECT_EQ(text[length - 1], L'\0');
        text.resize(length - 1);
        return text;
    }

    static std::wstring GroupName(IEffectInfo* info)
    {
        ULONG length = 0;
        EXPECT_EQ(info->GetGroupName(0xDEADBEEF, nullptr, &length), S_OK);
        std::wstring text(length, L'#');
        ULONG second = 0; // not read as a capacity
        EXPECT_EQ(info->GetGroupName(0, text.data(), &second), S_OK);
        EXPECT_EQ(second, length);
        text.resize(length - 1);
        return text;
    }
};

TEST_F(Catalogue, Records)
{
    for (const auto& row : rows) {
        const auto info = Info(row.clsid);
        ULONG value = 0xAAAA;
        const auto get = [&](HRESULT (STDMETHODCALLTYPE IEffectInfo::*getter)(ULONG*)) {
            value = 0xAAAA;
            EXPECT_EQ((info.Get()->*getter)(nullptr), E_INVALIDARG);
            EXPECT_EQ((info.Get()->*getter)(&value), S_OK);
            return value;
        };
        EXPECT_EQ(get(&IEffectInfo::GetTypeCode), 0u);
        EXPECT_EQ(get(&IEffectInfo::GetSubtypeCode), 0u);
        EXPECT_EQ(get(&IEffectInfo::GetGroupId), row.group);
        EXPECT_EQ(get(&IEffectInfo::GetSortKey), row.sortKey);
        EXPECT_EQ(get(&IEffectInfo::GetPropertySetKind), 1u);
        EXPECT_EQ(get(&IEffectInfo::GetVersion), 1u);
        EXPECT_EQ(Name(info.Get()), row.name);
        EXPECT_EQ(GroupName(info.Get()), row.groupName);
        IUnknown* description = reinterpret_cast<IUnknown*>(&value);
        EXPECT_EQ(info->GetPropertySetInfo(nullptr), E_INVALIDARG);
        EXPECT_EQ(info->GetPropertySetInfo(&description), S_OK);
        EXPECT_EQ(description, nullptr);
    }
}

TEST_F(Catalogue, ANameSwitchesTheLanguageOfEverything)
{
    const auto soften = Info(CLSID_SoftenFilter), emboss = Info(CLSID_Emboss);
    EXPECT_EQ(soften->GetEffectName(1031, nullptr, nullptr), E_INVALIDARG);
    EXPECT_EQ(GroupName(emboss.Get()), L"Edges") << "a refused request switches nothing";
    const auto german = Name(soften.Get(), 1031);
    EXPECT_NE(german, L"Soften filter");
    EXPECT_NE(GroupName(emboss.Get()), L"Edges");
    EXPECT_EQ(soften->GetGroupName(0, nullptr, nullptr), E_INVALIDARG);
    EXPECT_EQ(Name(soften.Get(), 1033), L"Soften filter");
    EXPECT_EQ(GroupName(emboss.Get()), L"Edges");
    EXPECT_EQ(Name(soften.Get(), 0x040D), L"Soften filter") << "a language without a file";
}

TEST_F(Catalogue, Icons)
{
    constexpr ULONG bytes = 40 + 34 * 108;
    std::vector<std::vector<std::uint8_t>> icons;
    for (const auto& row : rows) {
        const auto info = Info(row.clsid);
        ULONG size = 0;
        EXPECT_EQ(info->GetIcon(nullptr, nullptr), E_INVALIDARG);
        ASSERT_EQ(info->GetIcon(nullptr, &size), S_OK);
        ASSERT_EQ(size, bytes);
        GuardedBytes icon(size, GuardedBytes::Guard::Behind);
        EXPECT_EQ(info->GetIcon(icon.data(), nullptr), E_INVALIDARG) << "no capacity";
        ASSERT_EQ(info->GetIcon(icon.data(), &size), S_OK);
        EXPECT_EQ(size, bytes);
        BITMAPINFOHEADER header{};
        std::memcpy(&header, icon.data(), sizeof header);
        EXPECT_EQ(header.biSize, 40u);
        EXPECT_EQ(header.biWidth, 36);
        EXPECT_EQ(header.biHeight, 34);
        EXPECT_EQ(header.biBitCount, 24);
        icons.emplace_back(icon.Bytes().begin(), icon.Bytes().end());

        std::vector<std::uint8_t> room(bytes, 0x5A);
        ULONG small = bytes - 1;
        EXPECT_EQ(info->GetIcon(room.data(), &small), S_OK);
        EXPECT_EQ(small, bytes - 1);
        EXPECT_EQ(room, std::vector<std::uint8_t>(bytes, 0x5A)) << "too small a buffer gets nothing";

        ULONG value = 7;
        EXPECT_EQ(info->GetSecondBitmap(room.data(), &size, nullptr), E_INVALIDARG);
        EXPECT_EQ(info->GetSecondBitmap(room.data(), nullptr, &value), E_INVALIDARG);
        EXPECT_EQ(info->GetSecondBitmap(nullptr, nullptr, &value), E_INVALIDARG);
        EXPECT_EQ(info->GetSecondBitmap(nullptr, &size, nullptr), E_FAIL);
        EXPECT_EQ(info->GetSecondBitmap(room.data(), &size, &value), E_FAIL);
        EXPECT_EQ(value, 7u);
    }
    std::ranges::sort(icons);
    EXPECT_EQ(std::ranges::adjacent_find(icons), icons.end()) << "two effects share a picture";
}

TEST_F(Catalogue, Defaults)
{
    for (const auto& row : rows) {
        const auto info = Info(row.clsid);
        TestPropertySet set;
        EXPECT_EQ(info->SetDefaults(nullptr), E_INVALIDARG);
        ASSERT_EQ(info->SetDefaults(&set), S_OK);
        EXPECT_EQ(set.writes, 1);
        EXPECT_EQ(set.reads, 0);
        EXPECT_EQ(set.references, 1u);
        ASSERT_EQ(set.block.size(), row.defaults.size() * 4);
        EXPECT_EQ(std::memcmp(set.block.data(), row.defaults.data(), set.block.size()), 0);
    }
}

// The host's side of a panel: a window that counts the messages it is sent.
class HostWindow
{
public:
    static constexpr UINT changed = WM_APP + 7;

    HostWindow()
    {
        WNDCLASSW description{};
        description.lpfnWndProc = Procedure;
        description.hInstance = GetModuleHandleW(nullptr);
        description.lpszClassName = L"CatalogueTestHost";
        RegisterClassW(&description);
        window = CreateWindowW(description.lpszClassName, L"", WS_OVERLAPPEDWINDOW, 0, 0, 400, 300, nullptr, nullptr,
                               description.hInstance, nullptr);
    }
    ~HostWindow() { DestroyWindow(window); }
    HostWindow(const HostWindow&) = delete;
    HostWindow& operator=(const HostWindow&) = delete;

    int Changes() const { return static_cast<int>(GetWindowLongPtrW(window, GWLP_USERDATA)); }

    HWND window;

private:
    static LRESULT CALLBACK Procedure(HWND target, UINT message, WPARAM wParam, LPARAM lParam)
    {
        if (message != changed)
            return DefWindowProcW(target, message, wParam, lParam);
        EXPECT_EQ(wParam, 0u);
        EXPECT_EQ(lParam, 0);
        SetWindowLongPtrW(target, GWLP_USERDATA, GetWindowLongPtrW(target, GWLP_USERDATA) + 1);
        return 0;
    }
};

TEST_F(Catalogue, PanelsOpenEditAndAreReused)
{
    HostWindow host;
    for (const auto& row : rows) {
        const auto info = Info(row.clsid);
        TestPropertySet set, other;
        HWND window = host.window, again = nullptr;
        EXPECT_EQ(info->ShowSettingsDialog(0, host.window, HostWindow::changed, nullptr, &window), E_FAIL);
        EXPECT_EQ(info->ShowSettingsDialog(0, host.window, HostWindow::changed, &set, nullptr), E_FAIL);
        EXPECT_EQ(info->ShowSettingsDialog(0, nullptr, HostWindow::changed, &set, &window), E_FAIL);
        EXPECT_EQ(window, nullptr);

        info->SetDefaults(&set);
        ASSERT_EQ(info->ShowSettingsDialog(123, host.window, HostWindow::changed, &set, &window), S_OK);
        EXPECT_EQ(GetParent(window), host.window);
        EXPECT_EQ(info->ShowSettingsDialog(0, host.window, HostWindow::changed, &other, &again), S_OK);
        EXPECT_EQ(again, window);
        DestroyWindow(window);
        ASSERT_EQ(info->ShowSettingsDialog(0, host.window, HostWindow::changed, &set, &window), S_OK);
        EXPECT_TRUE(IsWindow(window));
        EXPECT_EQ(set.references, 1u);
    }
}

TEST_F(Catalogue, AMoveWritesTheBlockAndTellsTheHost)
{
    HostWindow host;
    const auto info = Info(CLSID_GammaCorrection);
    TestPropertySet set;
    info->SetDefaults(&set);
    HWND panel = nullptr;
    ASSERT_EQ(info->ShowSettingsDialog(0, host.window, HostWindow::changed, &set, &panel), S_OK);
    const HWND slider = GetDlgItem(panel, 1034);
    EXPECT_EQ(SendMessageW(slider, TBM_GETPOS, 0, 0), 100);
    const int written = set.writes;
    SendMessageW(slider, WM_KEYDOWN, VK_NEXT, 0);
    SendMessageW(slider, WM_KEYUP, VK_NEXT, 0);
    EXPECT_GT(set.writes, written);
    EXPECT_EQ(host.Changes(), set.writes - written);
    std::int32_t gamma = 0;
    std::memcpy(&gamma, set.block.data(), 4);
    EXPECT_EQ(gamma, 103);

    // Writing the defaults puts the open panel back, without a write or a message of its own.
    const int changes = host.Changes();
    EXPECT_EQ(info->SetDefaults(&set), S_OK);
    EXPECT_EQ(SendMessageW(slider, TBM_GETPOS, 0, 0), 100);
    EXPECT_EQ(host.Changes(), changes);
}

// The panel's window outlives the catalogue object: it must not call into what is gone.
TEST_F(Catalogue, TheObjectMayGoBeforeItsPanel)
{
    HostWindow host;
    for (const auto& row : rows) {
        TestPropertySet set;
        HWND panel = nullptr;
        {
            const auto info = Info(row.clsid);
            info->SetDefaults(&set);
            ASSERT_EQ(info->ShowSettingsDialog(0, host.window, HostWindow::changed, &set, &panel), S_OK);
        }
        EXPECT_EQ(library.canUnloadNow(), S_OK);
        SendMessageW(panel, WM_COMMAND, 0, 0);
        SendMessageW(panel, WM_HSCROLL, TB_ENDTRACK, 0);
        for (MSG message; PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);)
            DispatchMessageW(&message);
    }
}

} // namespace
