// Registry keys and the library's location in a real registry; the program runs in a prefix of its own.
#include "sxs/CRegistrySxs.h"
#include "sxs/CVixaSXSError.h"
#include "sxs/RegistryKey.h"
#include "tests/support/DebugText.h"
#include "tests/sxs/RegistryFaults.h"
#include "tests/sxs/RegistryView.h"
#include "tests/sxs/ThrownError.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using registry_view::KeyExists;
using registry_view::ReadValue;
using registry_view::TextValue;
using namespace vixa::sxs;

constexpr const wchar_t* location = L"Software\\Vixa\\Vixa 12\\Editor";

class Registry : public testing::Test
{
protected:
    void SetUp() override
    {
        const registry_faults::Bypass own;
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"Software\\Vixa");
        RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\Vixa");
        registry_faults::Reset();
    }
    void TearDown() override
    {
        EXPECT_EQ(registry_faults::OpenKeys(), 0u);
        registry_faults::Reset();
    }
};

TEST_F(Registry, KeyIsADescriptionUntilItIsUsed)
{
    {
        RegistryKey key(LOCAL_MACHINE, L"Software\\Vixa", KEY_ALL_ACCESS);
        RegistryKey child = key.SubKey(L"\\Child");
        EXPECT_TRUE(registry_faults::Calls().empty());
        EXPECT_EQ(child.TryOpen(), static_cast<HRESULT>(0x80070006));
        EXPECT_EQ(ThrownBy([&] { child.Open(); }), ErrorIn(ERROR_FILE_NOT_FOUND, AREA_REGISTRY));
        EXPECT_EQ(ThrownBy([&] { child.SetString(L"v", L"x"); }), ErrorIn(ERROR_FILE_NOT_FOUND, AREA_REGISTRY));
        EXPECT_FALSE(KeyExists(HKEY_LOCAL_MACHINE, L"Software\\Vixa"));
        child.Create();
        EXPECT_EQ(child.TryOpen(), S_OK);
        const std::size_t calls = registry_faults::Calls().size();
        child.Create();
        child.Open();
        EXPECT_EQ(registry_faults::Calls().size(), calls); // it is open already
        EXPECT_EQ(registry_faults::OpenKeys(), 1u);
        child.SetString(L"v", L"B\x00E4r");
        EXPECT_EQ(ReadValue(HKEY_LOCAL_MACHINE, L"Software\\Vixa\\Child", L"v"), TextValue(L"B\x00E4r"));
        child.SetString(L"", L"");
        EXPECT_EQ(ReadValue(HKEY_LOCAL_MACHINE, L"Software\\Vixa\\Child", L""), TextValue(L""));
        child.DeleteValue(L"v");
        EXPECT_EQ(ThrownBy([&] { child.DeleteValue(L"v"); }), ErrorIn(ERROR_FILE_NOT_FOUND, AREA_REGISTRY));
        child = RegistryKey(LOCAL_MACHINE, L"Software\\Vixa", KEY_READ);
        EXPECT_EQ(registry_faults::OpenKeys(), 0u); // assigning closed it
        EXPECT_EQ(ThrownBy([&] { child.SetString(L"v", L"x"); }), ErrorIn(ERROR_ACCESS_DENIED, AREA_REGISTRY));
    }
    EXPECT_EQ(ThrownBy([] { RegistryKey(4, L"Software", KEY_READ).Open(); }), ErrorIn(12, AREA_REGISTRY));
    EXPECT_EQ(ThrownBy([] { RegistryKey(0, L"Software", KEY_READ).Create(); }), ErrorIn(12, AREA_REGISTRY));
    RegistryKey(CLASSES_ROOT, L"CLSID", KEY_READ).Open();
}

TEST_F(Registry, UsersHiveIsOpenedWithFullRightsAndClosedAgain)
{
    RegistryKey key(CURRENT_USER, L"Software\\Vixa", KEY_SET_VALUE);
    registry_faults::FailCall(0);
    EXPECT_EQ(ThrownBy([&] { key.Create(); }), ErrorIn(ERROR_ACCESS_DENIED, AREA_REGISTRY));
    registry_faults::Reset();
    key.Create();
    ASSERT_EQ(registry_faults::Calls().size(), 2u);
    EXPECT_EQ(registry_faults::Calls()[0].function, "RegOpenCurrentUser"); // the failure before left no root behind
    EXPECT_EQ(registry_faults::Calls()[0].access, static_cast<REGSAM>(KEY_ALL_ACCESS));
    EXPECT_EQ(registry_faults::Calls()[1].access, static_cast<REGSAM>(KEY_SET_VALUE));
    EXPECT_TRUE(KeyExists(HKEY_CURRENT_USER, L"Software\\Vixa"));
    EXPECT_EQ(registry_faults::OpenKeys(), 2u);
    key = RegistryKey();
}

TEST_F(Registry, LocationTakesSubkeysAndValues)
{
    for (const auto& [kind, root] : {std::pair(LOCAL_MACHINE, HKEY_LOCAL_MACHINE), {CURRENT_USER, HKEY_CURRENT_USER}}) {
        CRegistrySxs registry(kind);
        ASSERT_TRUE(registry.Resolved());
        registry_faults::Reset();
        const std::wstring effects = std::wstring(location) + L"\\Effects";
        EXPECT_FALSE(registry.SetStringValue(L"Effects", L"n", L"v"));
        EXPECT_FALSE(registry.DeleteValue(L"Effects", L"n"));
        EXPECT_FALSE(KeyExists(root, L"Software\\Vixa"));
        EXPECT_TRUE(registry.CreateSubKey(L"Effects"));
        EXPECT_TRUE(registry.CreateSubKey(L"Effects"));
        EXPECT_TRUE(KeyExists(root, effects));
        EXPECT_TRUE(registry.SetStringValue(L"Effects", L"n", L"Add pixel"));
        EXPECT_EQ(ReadValue(root, effects, L"n"), TextValue(L"Add pixel"));
        EXPECT_FALSE(registry.DeleteValue(L"Effects", L"other"));
        EXPECT_TRUE(registry.DeleteValue(L"Effects", L"n"));
        EXPECT_FALSE(ReadValue(root, effects, L"n"));
        EXPECT_EQ(registry_faults::OpenKeys(), 0u); // between operations
        for (const auto& call : registry_faults::Calls())
            EXPECT_TRUE(call.access == 0 || call.access == 0xF003F) << call.function;

        EXPECT_FALSE(registry.CreateSubKey(nullptr));
        EXPECT_FALSE(registry.SetStringValue(nullptr, L"n", L"v"));
        EXPECT_FALSE(registry.SetStringValue(L"Effects", nullptr, L"v"));
        EXPECT_FALSE(registry.SetStringValue(L"Effects", L"n", nullptr));
        EXPECT_FALSE(registry.DeleteValue(nullptr, L"n"));
        EXPECT_FALSE(registry.DeleteValue(L"Effects", nullptr));
    }
}

TEST_F(Registry, EveryRefusedCallMakesItsOperationFail)
{
    CRegistrySxs registry(CURRENT_USER);
    const auto use = [&] {
        return registry.CreateSubKey(L"Effects") + registry.SetStringValue(L"Effects", L"n", L"v") +
               registry.DeleteValue(L"Effects", L"n");
    };
    ASSERT_EQ(use(), 3);
    const std::size_t calls = registry_faults::Calls().size();
    ASSERT_EQ(calls, 8u); // the hive and the key each time, and what is done with the key
    for (std::size_t i = 0; i < calls; ++i) {
        registry_faults::Reset();
        registry_faults::FailCall(i);
        EXPECT_LT(use(), 3) << i;
        EXPECT_EQ(registry_faults::OpenKeys(), 0u) << i;
    }
}

constexpr const char* olderGeneration = R"(<?xml version="1.0" encoding="utf-8"?><VIXA><GENERATION id="11">
<PRODUCT-LINE id="1025"><REGISTRY-APPLICATIONS HKLM="Software\Vixa" HKCU="Software\Vixa"/>
<APPLICATION id="130" name="Editor" subkey="Vixa 11\Editor"/></PRODUCT-LINE></GENERATION></VIXA>)";

TEST_F(Registry, AFailuresTextGoesToTheDebugger)
{
    const test::DebugText debugText;
    CRegistrySxs registry(LOCAL_MACHINE);
    registry_faults::FailCall(0);
    EXPECT_FALSE(registry.CreateSubKey(L"Effects"));
    EXPECT_EQ(test::DebugText::last, CVixaSXSError(ERROR_ACCESS_DENIED, AREA_REGISTRY).what());
}

TEST_F(Registry, LinksAreNotFollowed)
{
    constexpr const wchar_t* target = L"Software\\Vixa\\Another's";
    RegistryKey another(LOCAL_MACHINE, target, KEY_ALL_ACCESS);
    another.Create();
    another.SetString(L"n", L"another's");
    const registry_view::PlantedLink link(std::wstring(location) + L"\\Effects", target);
    CRegistrySxs registry(LOCAL_MACHINE);
    EXPECT_TRUE(registry.CreateSubKey(L"Effects")) << "something is there";
    EXPECT_FALSE(registry.SetStringValue(L"Effects", L"n", L"ours"));
    EXPECT_FALSE(registry.DeleteValue(L"Effects", L"n"));
    EXPECT_EQ(ReadValue(HKEY_LOCAL_MACHINE, target, L"n"), TextValue(L"another's"));
}

TEST_F(Registry, OtherGenerationsAreNotWrittenTo)
{
    CRegistrySxs registry(LOCAL_MACHINE, olderGeneration);
    ASSERT_TRUE(registry.Resolved());
    ASSERT_TRUE(registry.CreateSubKey(L"Effects"));
    EXPECT_FALSE(registry.SetStringValue(L"Effects", L"n", L"v"));
    EXPECT_FALSE(ReadValue(HKEY_LOCAL_MACHINE, L"Software\\Vixa\\Vixa 11\\Editor\\Effects", L"n"));
    for (const auto& call : registry_faults::Calls())
        EXPECT_TRUE(call.access == 0 || call.access == 0xF0039) << call.function;
}

TEST_F(Registry, UnresolvedLocationTouchesNothing)
{
    const std::string document = olderGeneration;
    const std::size_t id = document.find("130");
    for (const std::string& text : {std::string("no document"), std::string(document).replace(id, 3, "131")}) {
        CRegistrySxs registry(LOCAL_MACHINE, text.c_str());
        EXPECT_FALSE(registry.Resolved());
        EXPECT_FALSE(registry.CreateSubKey(L"Effects"));
        EXPECT_FALSE(registry.SetStringValue(L"Effects", L"n", L"v"));
        EXPECT_FALSE(registry.DeleteValue(L"Effects", L"n"));
    }
    EXPECT_FALSE(CRegistrySxs(CLASSES_ROOT).Resolved());
    EXPECT_TRUE(registry_faults::Calls().empty());
}

} // namespace
