// Registration in a real registry, step by step, with single calls refused; the program runs in a prefix of its own and
// stands for the library: the table below is its template table, and its own path what is entered as the server.
#include "registration/Registration.h"

#include "framework/DllEntry.h"
#include "tests/sxs/RegistryFaults.h"
#include "tests/sxs/RegistryView.h"

#include <vixavideofx/ClassIds.h>

#include <gtest/gtest.h>
#include <olectl.h>

#include <map>
#include <string>
#include <vector>

using namespace vixavideofx;

namespace {
const AMOVIESETUP_FILTER setup = {&CLSID_AddPixel, L"never entered", MERIT_DO_NOT_USE, 0, nullptr};
}

HINSTANCE g_hInst = GetModuleHandleW(nullptr);
CFactoryTemplate g_Templates[] = {
    {L"Add pixel", &CLSID_AddPixel, nullptr, nullptr, &setup},
    {L"Filter color", &CLSID_FilterColor, nullptr, nullptr, &setup},
    {L"Invert color", &CLSID_InvertColor, nullptr, nullptr, &setup},
    {L"Multiply pixel", &CLSID_MultiplyPixel, nullptr, nullptr, &setup},
    {L"Gamma correction", &CLSID_GammaCorrection, nullptr, nullptr, &setup},
    {L"Detect edges", &CLSID_DetectEdges, nullptr, nullptr, &setup},
    {L"Emboss", &CLSID_Emboss, nullptr, nullptr, &setup},
    {L"Enhance details", &CLSID_EnhanceDetails, nullptr, nullptr, &setup},
    {L"Enhance edges", &CLSID_EnhanceEdges, nullptr, nullptr, &setup},
    {L"Enhance focus", &CLSID_EnhanceFocus, nullptr, nullptr, &setup},
    {L"Light edges", &CLSID_LightEdges, nullptr, nullptr, &setup},
    {L"Shift edges", &CLSID_ShiftEdges, nullptr, nullptr, &setup},
    {L"Soften filter", &CLSID_SoftenFilter, nullptr, nullptr, &setup},
};
int g_cTemplates = static_cast<int>(std::size(g_Templates));

namespace {

using registry_view::KeyExists;
using registry_view::ReadValue;
using registry_view::TextValue;
using registry_view::Value;
using registry_view::ValuesOf;
using Values = std::map<std::wstring, Value>;

const std::wstring location = L"Software\\Vixa\\Vixa 12\\Editor";
const std::wstring effects = location + L"\\Effects", aliases = location + L"\\Effects7";
const std::wstring stranger = L"{00000000-1111-2222-3333-444444444444}";
constexpr HRESULT refused = static_cast<HRESULT>(0x80070005);

// The alias under which each effect stands in the second category.
const std::map<std::wstring, std::wstring> aliasOf = {
    {L"Gamma correction", L"{026C24CA-EB0A-4D82-B8F0-C1F398C3C1DF}"},
    {L"Detect edges", L"{25AB171B-7AD5-4EA0-8727-9407A1CEFC5B}"},
    {L"Enhance edges", L"{524CFA6F-0CF2-46E6-B432-16C6C877BCEA}"},
    {L"Shift edges", L"{5772EFE8-D5CF-4417-B6AC-4BC723FA785C}"},
    {L"Enhance details", L"{608524BB-EF57-4D98-A0D9-F5BFA33D9B9F}"},
    {L"Filter color", L"{8DA26896-133D-46DE-B6B4-43B0BEE29CFC}"},
    {L"Enhance focus", L"{8EADD68F-9807-4B75-A38A-024F0FDFD306}"},
    {L"Soften filter", L"{B01EBCAF-D816-4FD0-AB0A-0F2D7BE51A94}"},
    {L"Emboss", L"{BB887A10-AEC5-4F42-AE26-2BBEE40111E1}"},
    {L"Multiply pixel", L"{C32282F0-86A3-444F-B709-CCD51A59D647}"},
    {L"Invert color", L"{C9918D84-ACB5-47A6-B24C-A4FD4131D485}"},
    {L"Light edges", L"{DEEC2D5C-B87A-41E8-AECC-942BEFB32E0B}"},
    {L"Add pixel", L"{E9523F94-F971-422A-9AD5-578D5AEA1969}"},
};

std::wstring idText(const CLSID& id)
{
    wchar_t buffer[40];
    StringFromGUID2(id, buffer, 40);
    return buffer;
}

std::wstring classKey(const CFactoryTemplate& row)
{
    return L"CLSID\\" + idText(*row.m_ClsID);
}

void write(HKEY root, const std::wstring& path, const std::wstring& name, const std::wstring& value)
{
    const registry_faults::Bypass own;
    ASSERT_EQ(RegSetKeyValueW(root, path.c_str(), name.c_str(), REG_SZ, value.c_str(),
                              static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t))),
              ERROR_SUCCESS);
}

Values wantedEffects(bool registered)
{
    Values wanted = {{stranger, TextValue(L"another's")}};
    for (const CFactoryTemplate& row : g_Templates)
        if (registered)
            wanted[idText(*row.m_ClsID)] = TextValue(row.m_Name);
    return wanted;
}

Values wantedAliases(bool registered)
{
    Values wanted = {{stranger, TextValue(L"another's")}};
    for (const CFactoryTemplate& row : g_Templates)
        if (registered)
            wanted[aliasOf.at(row.m_Name)] = TextValue(idText(*row.m_ClsID));
    return wanted;
}

int classKeys()
{
    int count = 0;
    for (const CFactoryTemplate& row : g_Templates)
        count += KeyExists(HKEY_CLASSES_ROOT, classKey(row));
    return count;
}

void expectRegistered()
{
    wchar_t path[MAX_PATH];
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    EXPECT_EQ(ValuesOf(HKEY_LOCAL_MACHINE, effects), wantedEffects(true));
    EXPECT_EQ(ValuesOf(HKEY_LOCAL_MACHINE, aliases), wantedAliases(true));
    for (const CFactoryTemplate& row : g_Templates) {
        EXPECT_EQ(ValuesOf(HKEY_CLASSES_ROOT, classKey(row)), (Values{{L"", TextValue(row.m_Name)}}));
        EXPECT_EQ(ValuesOf(HKEY_CLASSES_ROOT, classKey(row) + L"\\InprocServer32"),
                  (Values{{L"", TextValue(path)}, {L"ThreadingModel", TextValue(L"Both")}}));
        EXPECT_EQ(row.m_pAMovieSetup_Filter, nullptr);
    }
}

void expectNothingOfOurs()
{
    EXPECT_EQ(ValuesOf(HKEY_LOCAL_MACHINE, effects), wantedEffects(false));
    EXPECT_EQ(ValuesOf(HKEY_LOCAL_MACHINE, aliases), wantedAliases(false));
    EXPECT_EQ(classKeys(), 0);
}

class Registration : public testing::Test
{
protected:
    void SetUp() override { wipe(); }
    void TearDown() override
    {
        EXPECT_EQ(registry_faults::OpenKeys(), 0u);
        g_hInst = GetModuleHandleW(nullptr);
        wipe();
    }

    // The state before a first registration, with values of others in both categories.
    static void wipe()
    {
        registry_faults::Reset();
        {
            const registry_faults::Bypass own;
            RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"Software\\Vixa");
            for (CFactoryTemplate& row : g_Templates) {
                RegDeleteTreeW(HKEY_CLASSES_ROOT, classKey(row).c_str());
                row.m_pAMovieSetup_Filter = &setup;
            }
        }
        write(HKEY_LOCAL_MACHINE, effects, stranger, L"another's");
        write(HKEY_LOCAL_MACHINE, aliases, stranger, L"another's");
    }
};

TEST_F(Registration, WritesAndRemovesItsOwnAndNothingElse)
{
    EXPECT_EQ(vixa::UnregisterLibrary(), S_OK); // nothing is there yet
    expectNothingOfOurs();
    for (int repeat = 0; repeat < 2; ++repeat) {
        EXPECT_EQ(vixa::RegisterLibrary(), S_OK);
        expectRegistered();
    }
    // What stands below a class key goes with it, whoever put it there.
    write(HKEY_CLASSES_ROOT, classKey(g_Templates[3]) + L"\\A\\B\\C", L"deep", L"x");
    write(HKEY_CLASSES_ROOT, classKey(g_Templates[3]) + L"\\B", L"", L"x");
    for (int repeat = 0; repeat < 2; ++repeat) {
        EXPECT_EQ(vixa::UnregisterLibrary(), S_OK);
        expectNothingOfOurs();
    }
    EXPECT_TRUE(KeyExists(HKEY_CLASSES_ROOT, L"CLSID"));
}

TEST_F(Registration, CreatesTheCategoriesAndLeavesThemEmpty)
{
    {
        const registry_faults::Bypass own;
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"Software\\Vixa");
    }
    EXPECT_EQ(vixa::RegisterLibrary(), S_OK);
    EXPECT_EQ(ValuesOf(HKEY_LOCAL_MACHINE, effects)->size(), 13u);
    EXPECT_EQ(vixa::UnregisterLibrary(), S_OK);
    EXPECT_EQ(ValuesOf(HKEY_LOCAL_MACHINE, effects), Values{});
    EXPECT_EQ(ValuesOf(HKEY_LOCAL_MACHINE, aliases), Values{});
    EXPECT_EQ(ReadValue(HKEY_LOCAL_MACHINE, location, L""), std::nullopt);
}

// Every call of a registration refused in turn: the stated code, as much done as stated, and a repeat completes it.
TEST_F(Registration, RefusedAtEachStepCanBeRepeated)
{
    ASSERT_EQ(vixa::RegisterLibrary(), S_OK);
    const std::vector<registry_faults::Call> steps = registry_faults::Calls();
    ASSERT_GT(steps.size(), 100u);
    for (std::size_t i = 0; i < steps.size(); ++i) {
        SCOPED_TRACE(steps[i].function + " as call " + std::to_string(i));
        wipe();
        registry_faults::FailCall(i);
        const HRESULT result = vixa::RegisterLibrary();
        EXPECT_EQ(registry_faults::OpenKeys(), 0u);
        const bool inEffects = i == 0 || i <= 2 * std::size(g_Templates);
        const bool inAliases = !inEffects && i <= 1 + 4 * std::size(g_Templates);
        if (i == 0) {
            EXPECT_EQ(result, SELFREG_E_CLASS);
            expectNothingOfOurs();
        } else if (inEffects) {
            EXPECT_EQ(result, SELFREG_E_CLASS);
            Values rest = wantedEffects(true);
            const CFactoryTemplate& row = g_Templates[(i - 1) / 2];
            rest.erase(idText(*row.m_ClsID));
            EXPECT_EQ(ValuesOf(HKEY_LOCAL_MACHINE, effects), rest);
            EXPECT_EQ(ValuesOf(HKEY_LOCAL_MACHINE, aliases), wantedAliases(true));
            for (const CFactoryTemplate& each : g_Templates)
                EXPECT_EQ(each.m_pAMovieSetup_Filter != nullptr, &each == &row);
            EXPECT_EQ(classKeys(), 0);
        } else if (inAliases) {
            EXPECT_EQ(result, S_OK);
            EXPECT_EQ(ValuesOf(HKEY_LOCAL_MACHINE, effects), wantedEffects(true));
            EXPECT_LT(ValuesOf(HKEY_LOCAL_MACHINE, aliases)->size(), wantedAliases(true).size());
            EXPECT_EQ(classKeys(), 13);
        } else {
            EXPECT_EQ(result, refused);
            EXPECT_EQ(ValuesOf(HKEY_LOCAL_MACHINE, effects), wantedEffects(true));
            const std::size_t first = 2 + 4 * std::size(g_Templates), ofOneRow = 5;
            const std::size_t row = (i - first) / ofOneRow;
            EXPECT_EQ(classKeys(), static_cast<int>(row) + ((i - first) % ofOneRow > 0));
        }
        registry_faults::Reset();
        EXPECT_EQ(vixa::RegisterLibrary(), S_OK);
        expectRegistered();
    }
}

TEST_F(Registration, RemovalRefusedAtEachStepCanBeRepeated)
{
    ASSERT_EQ(vixa::RegisterLibrary(), S_OK);
    registry_faults::Reset();
    ASSERT_EQ(vixa::UnregisterLibrary(), S_OK);
    const std::size_t steps = registry_faults::Calls().size();
    ASSERT_GT(steps, 100u);
    for (std::size_t i = 0; i < steps; ++i) {
        SCOPED_TRACE("call " + std::to_string(i));
        registry_faults::Reset();
        ASSERT_EQ(vixa::RegisterLibrary(), S_OK);
        registry_faults::Reset();
        registry_faults::FailCall(i);
        EXPECT_EQ(vixa::UnregisterLibrary(), i == 0 ? SELFREG_E_CLASS : S_OK);
        EXPECT_EQ(registry_faults::OpenKeys(), 0u);
        registry_faults::Reset();
        if (i == 0)
            expectRegistered();
        EXPECT_EQ(vixa::UnregisterLibrary(), S_OK);
        expectNothingOfOurs();
    }
}

TEST_F(Registration, UnresolvableLocationTouchesNoKey)
{
    EXPECT_EQ(vixa::RegisterLibrary("<VIXA/>"), SELFREG_E_CLASS);
    EXPECT_EQ(vixa::UnregisterLibrary("no document"), SELFREG_E_CLASS);
    EXPECT_TRUE(registry_faults::Calls().empty());
    expectNothingOfOurs();
}

TEST_F(Registration, UnknownModulePathIsTheSystemsError)
{
    g_hInst = reinterpret_cast<HINSTANCE>(static_cast<UINT_PTR>(0x123450));
    const HRESULT result = vixa::RegisterLibrary();
    EXPECT_EQ(HRESULT_FACILITY(result), FACILITY_WIN32);
    EXPECT_TRUE(FAILED(result));
    EXPECT_EQ(ValuesOf(HKEY_LOCAL_MACHINE, effects), wantedEffects(true));
    EXPECT_EQ(classKeys(), 0);
}

// Without the mapper there is nothing to be entered, but its absence is the answer.
TEST_F(Registration, MissingFilterMapperLeavesTheClassKeys)
{
    const std::pair<const wchar_t*, std::wstring> mappers[] = {
        {L"CLSID\\{CDA42200-BD88-11D0-BD4E-00A0C911CE86}\\InprocServer32", L""},
        {L"CLSID\\{E436EBB2-524F-11CE-9F53-0020AF0BA770}\\InprocServer32", L""}};
    std::vector<std::wstring> servers;
    for (const auto& [path, name] : mappers) {
        const auto server = ReadValue(HKEY_CLASSES_ROOT, path, name);
        ASSERT_TRUE(server);
        servers.push_back(server->data.c_str());
    }
    const auto point = [&](bool away) {
        for (std::size_t i = 0; i < std::size(mappers); ++i)
            write(HKEY_CLASSES_ROOT, mappers[i].first, mappers[i].second, away ? L"nowhere.dll" : servers[i]);
    };
    point(true);
    EXPECT_TRUE(FAILED(vixa::RegisterLibrary()));
    expectRegistered();
    const HRESULT result = vixa::UnregisterLibrary();
    EXPECT_TRUE(FAILED(result));
    EXPECT_NE(result, SELFREG_E_CLASS);
    EXPECT_EQ(classKeys(), 13);
    EXPECT_EQ(ValuesOf(HKEY_LOCAL_MACHINE, effects), wantedEffects(false));
    point(false);
    EXPECT_EQ(vixa::UnregisterLibrary(), S_OK);
    expectNothingOfOurs();
}

TEST_F(Registration, LongNamesAreCutInTheClassKeyOnly)
{
    const std::wstring name(300, L'n');
    g_Templates[0].m_Name = name.c_str();
    EXPECT_EQ(vixa::RegisterLibrary(), S_OK);
    EXPECT_EQ(ReadValue(HKEY_LOCAL_MACHINE, effects, idText(CLSID_AddPixel)), TextValue(name));
    EXPECT_EQ(ReadValue(HKEY_CLASSES_ROOT, classKey(g_Templates[0]), L""), TextValue(name.substr(0, 259)));
    g_Templates[0].m_Name = L"Add pixel";
}

} // namespace
