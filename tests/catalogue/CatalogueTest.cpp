// What the validator does not ask of the catalogue.
#include "tests/support/Library.h"
#include "tests/support/TestPropertySet.h"

#include <vixavideofx/IEffectInfo.h>

#include <commctrl.h>

using namespace test;

namespace {

class Catalogue : public LibraryTest
{
protected:
    void TearDown() override
    {
        DestroyWindow(host);
        LibraryTest::TearDown();
    }

    ComPtr<IEffectInfo> Info(REFCLSID clsid)
    {
        ComPtr<IEffectInfo> info;
        EXPECT_EQ(library.Factory(clsid).As(&info), S_OK);
        return info;
    }

    const HWND host = CreateWindowW(L"Static", L"", WS_OVERLAPPEDWINDOW, 0, 0, 400, 300, nullptr, nullptr,
                                    GetModuleHandleW(nullptr), nullptr);
};

TEST_F(Catalogue, WhatFailsLeavesNoAnswer)
{
    for (const auto& effect : effects) {
        const auto info = Info(effect.clsid);
        BYTE room = 0;
        ULONG size = 1, value = 7;
        EXPECT_EQ(info->GetSecondBitmap(&room, &size, &value), E_FAIL);
        EXPECT_EQ(value, 7u);
        TestPropertySet set;
        HWND window = host;
        EXPECT_EQ(info->ShowSettingsDialog(0, nullptr, WM_APP, &set, &window), E_FAIL) << "a panel without a parent";
        EXPECT_EQ(window, nullptr);
    }
}

// The panel's window outlives the catalogue object: it must not call into what is gone.
TEST_F(Catalogue, TheObjectMayGoBeforeItsPanel)
{
    for (const auto& effect : effects) {
        TestPropertySet set;
        HWND panel = nullptr;
        {
            const auto info = Info(effect.clsid);
            info->SetDefaults(&set);
            ASSERT_EQ(info->ShowSettingsDialog(0, host, WM_APP, &set, &panel), S_OK);
        }
        EXPECT_EQ(library.canUnloadNow(), S_OK);
        SendMessageW(panel, WM_COMMAND, 0, 0);
        SendMessageW(panel, WM_HSCROLL, TB_ENDTRACK, 0);
        for (MSG message; PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);)
            DispatchMessageW(&message);
    }
}

} // namespace
