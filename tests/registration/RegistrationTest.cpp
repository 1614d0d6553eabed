// Registration in a real registry, step by step, with single calls refused; the program runs in a prefix of its own and
// stands for the library: the rows below are its template table, and its own path what is entered as the server.
#include "registration/Registration.h"

#include "framework/DllEntry.h"
#include "tests/sxs/RegistryFaults.h"
#include "tests/sxs/RegistryView.h"

#include <gtest/gtest.h>
#include <olectl.h>

#include <map>
#include <string>
#include <vector>

namespace {

const CLSID first = {0x5E1D2C10, 0x7B8A, 0x4F61, {0x90, 0x21, 0x3C, 0x44, 0x5D, 0x66, 0x7E, 0x01}};
const CLSID second = {0x5E1D2C10, 0x7B8A, 0x4F61, {0x90, 0x21, 0x3C, 0x44, 0x5D, 0x66, 0x7E, 0x02}};
const CLSID third = {0x5E1D2C10, 0x7B8A, 0x4F61, {0x90, 0x21, 0x3C, 0x44, 0x5D, 0x66, 0x7E, 0x03}};
const AMOVIESETUP_FILTER setup = {&first, L"never entered", MERIT_DO_NOT_USE, 0, nullptr};

CFactoryTemplate rows[] = {
    {L"First", &first, nullptr, nullptr, &setup},
    {L"Second", &second, nullptr, nullptr, &setup},
    {L"Third", &third, nullptr, nullptr, &setup},
};
constexpr std::size_t rowCount = std::size(rows);

const vixa::EffectAlias aliases[] = {
    {L"{026C24CA-EB0A-4D82-B8F0-C1F398C3C1DF}", &third},
    {L"{25AB171B-7AD5-4EA0-8727-9407A1CEFC5B}", &first},
    {L"{524CFA6F-0CF2-46E6-B432-16C6C877BCEA}", &second},
};

} // namespace

HINSTANCE g_hInst = GetModuleHandleW(nullptr);
constinit const std::span<CFactoryTemplate> g_Templates = rows;

namespace {

using registry_view::KeyExists;
using registry_view::ReadValue;
using registry_view::TextValue;
using registry_view::Value;
using registry_view::ValuesOf;
using Values = std::map<std::wstring, Value>;

const std::wstring location = L"Software\\Vixa\\Vixa 12\\Editor";
const std::wstring effectsKey = location + L"\\Effects", aliasesKey = location + L"\\Effects7";
const std::wstring stranger = L"{00000000-1111-2222-3333-444444444444}";
constexpr HRESULT refused = static_cast<HRESULT>(0x80070005);

std::wstring IdText(const CLSID& id)
{
    wchar_t buffer[40];
    StringFromGUID2(id, buffer, 40);
    return buffer;
}

std::wstring ClassKey(const CFactoryTemplate& row)
{
    return L"CLSID\\" + IdText(*row.m_ClsID);
}

void Write(HKEY root, const std::wstring& path, const std::wstring& name, const std::wstring& value)
{
    const registry_faults::Bypass own;
    ASSERT_EQ(RegSetKeyValueW(root, path.c_str(), name.c_str(), REG_SZ, value.c_str(),
                              static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t))),
              ERROR_SUCCESS);
}

Values WantedEffects(bool registered)
{
    Values wanted = {{stranger, TextValue(L"another's")}};
    for (const CFactoryTemplate& row : rows)
        if (registered)
            wanted[IdText(*row.m_ClsID)] = TextValue(row.m_Name);
    return wanted;
}

Values WantedAliases(bool registered)
{
    Values wanted = {{stranger, TextValue(L"another's")}};
    for (const vixa::EffectAlias& entry : aliases)
        if (registered)
            wanted[entry.alias] = TextValue(IdText(*entry.effect));
    return wanted;
}

int ClassKeys()
{
    int count = 0;
    for (const CFactoryTemplate& row : rows)
        count += KeyExists(HKEY_CLASSES_ROOT, ClassKey(row));
    return count;
}

void ExpectRegistered()
{
    wchar_t path[MAX_PATH];
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    EXPECT_EQ(ValuesOf(HKEY_LOCAL_MACHINE, effectsKey), WantedEffects(true));
    EXPECT_EQ(ValuesOf(HKEY_LOCAL_MACHINE, aliasesKey), WantedAliases(true));
    for (const CFactoryTemplate& row : rows) {
        EXPECT_EQ(ValuesOf(HKEY_CLASSES_ROOT, ClassKey(row)), (Values{{L"", TextValue(row.m_Name)}}));
        EXPECT_EQ(ValuesOf(HKEY_CLASSES_ROOT, ClassKey(row) + L"\\InprocServer32"),
                  (Values{{L"", TextValue(path)}, {L"ThreadingModel", TextValue(L"Both")}}));
        EXPECT_EQ(row.m_pAMovieSetup_Filter, nullptr);
    }
}

void ExpectNothingOfOurs()
{
    EXPECT_EQ(ValuesOf(HKEY_LOCAL_MACHINE, effectsKey), WantedEffects(false));
    EXPECT_EQ(ValuesOf(HKEY_LOCAL_MACHINE, aliasesKey), WantedAliases(false));
    EXPECT_EQ(ClassKeys(), 0);
}

class Registration : public testing::Test
{
protected:
    void SetUp() override { Wipe(); }
    void TearDown() override
    {
        EXPECT_EQ(registry_faults::OpenKeys(), 0u);
        g_hInst = GetModuleHandleW(nullptr);
        Wipe();
    }

    // The state before a first registration, with values of others in both categories.
    static void Wipe()
    {
        registry_faults::Reset();
        {
            const registry_faults::Bypass own;
            RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"Software\\Vixa");
            for (CFactoryTemplate& row : rows) {
                RegDeleteTreeW(HKEY_CLASSES_ROOT, ClassKey(row).c_str());
                row.m_pAMovieSetup_Filter = &setup;
            }
        }
        Write(HKEY_LOCAL_MACHINE, effectsKey, stranger, L"another's");
        Write(HKEY_LOCAL_MACHINE, aliasesKey, stranger, L"another's");
    }
};

TEST_F(Registration, WritesAndRemovesItsOwnAndNothingElse)
{
    EXPECT_EQ(vixa::UnregisterLibrary(aliases), S_OK); // nothing is there yet
    ExpectNothingOfOurs();
    for (int repeat = 0; repeat < 2; ++repeat) {
        EXPECT_EQ(vixa::RegisterLibrary(aliases), S_OK);
        ExpectRegistered();
    }
    // What stands below a class key goes with it, whoever put it there.
    Write(HKEY_CLASSES_ROOT, ClassKey(rows[1]) + L"\\A\\B\\C", L"deep", L"x");
    Write(HKEY_CLASSES_ROOT, ClassKey(rows[1]) + L"\\B", L"", L"x");
    for (int repeat = 0; repeat < 2; ++repeat) {
        EXPECT_EQ(vixa::UnregisterLibrary(aliases), S_OK);
        ExpectNothingOfOurs();
    }
    EXPECT_TRUE(KeyExists(HKEY_CLASSES_ROOT, L"CLSID"));
}

TEST_F(Registration, ForAUserNeedsNoOthersKeys)
{
    const std::wstring classes = L"Software\\Classes\\";
#ifdef _WIN64
    // Some systems split the user's classes in two views only once this key is there.
    Write(HKEY_CURRENT_USER, classes + L"Wow6432Node", L"", L"");
#endif
    ASSERT_EQ(vixa::RegisterLibrary(aliases, vixa::Scope::User), S_OK);
    EXPECT_EQ(ValuesOf(HKEY_CURRENT_USER, effectsKey)->size(), rowCount);
    EXPECT_EQ(ValuesOf(HKEY_CURRENT_USER, aliasesKey)->size(), rowCount);
    for (const CFactoryTemplate& row : rows)
        EXPECT_EQ(ReadValue(HKEY_CURRENT_USER, classes + ClassKey(row), L""), TextValue(row.m_Name));
    EXPECT_EQ(ValuesOf(HKEY_LOCAL_MACHINE, effectsKey), WantedEffects(false));
    EXPECT_FALSE(KeyExists(HKEY_LOCAL_MACHINE, classes + ClassKey(rows[0])));
#ifdef _WIN64
    // The 32-bit library goes by the same list.
    HKEY other = nullptr;
    ASSERT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, (classes + ClassKey(rows[0])).c_str(), 0, nullptr, 0,
                              KEY_ALL_ACCESS | KEY_WOW64_32KEY, nullptr, &other, nullptr),
              ERROR_SUCCESS);
    EXPECT_EQ(vixa::UnregisterLibrary(aliases, vixa::Scope::User), S_OK);
    EXPECT_EQ(ValuesOf(HKEY_CURRENT_USER, effectsKey)->size(), rowCount);
    RegCloseKey(other);
    RegDeleteKeyExW(HKEY_CURRENT_USER, (classes + ClassKey(rows[0])).c_str(), KEY_WOW64_32KEY, 0);
#endif
    EXPECT_EQ(vixa::UnregisterLibrary(aliases, vixa::Scope::User), S_OK);
    EXPECT_EQ(ValuesOf(HKEY_CURRENT_USER, effectsKey), Values{});
    EXPECT_EQ(ValuesOf(HKEY_CURRENT_USER, aliasesKey), Values{});
    for (const CFactoryTemplate& row : rows)
        EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, classes + ClassKey(row)));
    for (const registry_faults::Call& call : registry_faults::Calls())
        EXPECT_TRUE(call.key != HKEY_LOCAL_MACHINE && call.key != HKEY_CLASSES_ROOT) << call.function;
}

TEST_F(Registration, LinksAreNotFollowed)
{
    constexpr const wchar_t* target = L"Software\\Vixa\\Another's";
    const std::wstring classes = L"Software\\Classes\\";
    Write(HKEY_LOCAL_MACHINE, std::wstring(target) + L"\\Sub", L"n", L"another's");
    EXPECT_EQ(vixa::RegisterLibrary(aliases), S_OK);
    const registry_view::PlantedLink below(classes + ClassKey(rows[1]) + L"\\Planted", target);
    EXPECT_EQ(vixa::UnregisterLibrary(aliases), S_OK);
    EXPECT_FALSE(below.Exists());
    ExpectNothingOfOurs();
    const registry_view::PlantedLink instead(classes + ClassKey(rows[1]), target);
    EXPECT_EQ(vixa::RegisterLibrary(aliases), refused) << "no class key can be made where a link stands";
    EXPECT_EQ(ReadValue(HKEY_LOCAL_MACHINE, target, L""), std::nullopt);
    EXPECT_EQ(vixa::UnregisterLibrary(aliases), S_OK);
    EXPECT_FALSE(instead.Exists());
    EXPECT_EQ(ReadValue(HKEY_LOCAL_MACHINE, std::wstring(target) + L"\\Sub", L"n"), TextValue(L"another's"));
}

TEST_F(Registration, CreatesTheCategoriesAndLeavesThemEmpty)
{
    {
        const registry_faults::Bypass own;
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"Software\\Vixa");
    }
    EXPECT_EQ(vixa::RegisterLibrary(aliases), S_OK);
    EXPECT_EQ(ValuesOf(HKEY_LOCAL_MACHINE, effectsKey)->size(), rowCount);
    EXPECT_EQ(vixa::UnregisterLibrary(aliases), S_OK);
    EXPECT_EQ(ValuesOf(HKEY_LOCAL_MACHINE, effectsKey), Values{});
    EXPECT_EQ(ValuesOf(HKEY_LOCAL_MACHINE, aliasesKey), Values{});
    EXPECT_EQ(ReadValue(HKEY_LOCAL_MACHINE, location, L""), std::nullopt);
}

// Every call of a registration refused in turn: the stated code, as much done as stated, and a repeat completes it.
TEST_F(Registration, RefusedAtEachStepCanBeRepeated)
{
    ASSERT_EQ(vixa::RegisterLibrary(aliases), S_OK);
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): each refusal begins a new record
    const std::vector<registry_faults::Call> steps = registry_faults::Calls();
    ASSERT_EQ(steps.size(), 2 + 9 * rowCount);
    for (std::size_t i = 0; i < steps.size(); ++i) {
        SCOPED_TRACE(steps[i].function + " as call " + std::to_string(i));
        Wipe();
        registry_faults::FailCall(i);
        const HRESULT result = vixa::RegisterLibrary(aliases);
        EXPECT_EQ(registry_faults::OpenKeys(), 0u);
        const bool inEffects = i <= 2 * rowCount;
        const bool inAliases = !inEffects && i <= 1 + 4 * rowCount;
        if (i == 0) {
            EXPECT_EQ(result, SELFREG_E_CLASS);
            ExpectNothingOfOurs();
        } else if (inEffects) {
            EXPECT_EQ(result, SELFREG_E_CLASS);
            Values rest = WantedEffects(true);
            const CFactoryTemplate& row = rows[(i - 1) / 2];
            rest.erase(IdText(*row.m_ClsID));
            EXPECT_EQ(ValuesOf(HKEY_LOCAL_MACHINE, effectsKey), rest);
            EXPECT_EQ(ValuesOf(HKEY_LOCAL_MACHINE, aliasesKey), WantedAliases(true));
            for (const CFactoryTemplate& each : rows)
                EXPECT_EQ(each.m_pAMovieSetup_Filter != nullptr, &each == &row);
            EXPECT_EQ(ClassKeys(), 0);
        } else if (inAliases) {
            EXPECT_EQ(result, S_OK);
            EXPECT_EQ(ValuesOf(HKEY_LOCAL_MACHINE, effectsKey), WantedEffects(true));
            EXPECT_LT(ValuesOf(HKEY_LOCAL_MACHINE, aliasesKey)->size(), WantedAliases(true).size());
            EXPECT_EQ(ClassKeys(), static_cast<int>(rowCount));
        } else {
            EXPECT_EQ(result, refused);
            EXPECT_EQ(ValuesOf(HKEY_LOCAL_MACHINE, effectsKey), WantedEffects(true));
            const std::size_t before = 2 + 4 * rowCount, ofOneRow = 5;
            const std::size_t row = (i - before) / ofOneRow;
            EXPECT_EQ(ClassKeys(), static_cast<int>(row) + ((i - before) % ofOneRow > 0));
        }
        registry_faults::Reset();
        EXPECT_EQ(vixa::RegisterLibrary(aliases), S_OK);
        ExpectRegistered();
    }
}

TEST_F(Registration, RemovalRefusedAtEachStepCanBeRepeated)
{
    ASSERT_EQ(vixa::RegisterLibrary(aliases), S_OK);
    registry_faults::Reset();
    ASSERT_EQ(vixa::UnregisterLibrary(aliases), S_OK);
    const std::size_t steps = registry_faults::Calls().size();
    ASSERT_GT(steps, 6 * rowCount);
    for (std::size_t i = 0; i < steps; ++i) {
        SCOPED_TRACE("call " + std::to_string(i));
        registry_faults::Reset();
        ASSERT_EQ(vixa::RegisterLibrary(aliases), S_OK);
        registry_faults::Reset();
        registry_faults::FailCall(i);
        EXPECT_EQ(vixa::UnregisterLibrary(aliases), i == 0 ? SELFREG_E_CLASS : S_OK);
        EXPECT_EQ(registry_faults::OpenKeys(), 0u);
        registry_faults::Reset();
        if (i == 0)
            ExpectRegistered();
        EXPECT_EQ(vixa::UnregisterLibrary(aliases), S_OK);
        ExpectNothingOfOurs();
    }
}

TEST_F(Registration, UnresolvableLocationTouchesNoKey)
{
    EXPECT_EQ(vixa::RegisterLibrary(aliases, vixa::Scope::Machine, "<VIXA/>"), SELFREG_E_CLASS);
    EXPECT_EQ(vixa::UnregisterLibrary(aliases, vixa::Scope::Machine, "no document"), SELFREG_E_CLASS);
    EXPECT_TRUE(registry_faults::Calls().empty());
    ExpectNothingOfOurs();
}

TEST_F(Registration, UnknownModulePathIsTheSystemsError)
{
    g_hInst = reinterpret_cast<HINSTANCE>(static_cast<UINT_PTR>(0x123450));
    const HRESULT result = vixa::RegisterLibrary(aliases);
    EXPECT_EQ(HRESULT_FACILITY(result), FACILITY_WIN32);
    EXPECT_TRUE(FAILED(result));
    EXPECT_EQ(ValuesOf(HKEY_LOCAL_MACHINE, effectsKey), WantedEffects(true));
    EXPECT_EQ(ClassKeys(), 0);
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
        servers.emplace_back(server->data.c_str());
    }
    const auto point = [&](bool away) {
        for (std::size_t i = 0; i < std::size(mappers); ++i)
            Write(HKEY_CLASSES_ROOT, mappers[i].first, mappers[i].second, away ? L"nowhere.dll" : servers[i]);
    };
    point(true);
    EXPECT_TRUE(FAILED(vixa::RegisterLibrary(aliases)));
    ExpectRegistered();
    const HRESULT result = vixa::UnregisterLibrary(aliases);
    EXPECT_TRUE(FAILED(result));
    EXPECT_NE(result, SELFREG_E_CLASS);
    EXPECT_EQ(ClassKeys(), static_cast<int>(rowCount));
    EXPECT_EQ(ValuesOf(HKEY_LOCAL_MACHINE, effectsKey), WantedEffects(false));
    point(false);
    EXPECT_EQ(vixa::UnregisterLibrary(aliases), S_OK);
    ExpectNothingOfOurs();
}

TEST_F(Registration, LongNamesAreCutInTheClassKeyOnly)
{
    const std::wstring name(300, L'n');
    rows[0].m_Name = name.c_str();
    EXPECT_EQ(vixa::RegisterLibrary(aliases), S_OK);
    EXPECT_EQ(ReadValue(HKEY_LOCAL_MACHINE, effectsKey, IdText(first)), TextValue(name));
    EXPECT_EQ(ReadValue(HKEY_CLASSES_ROOT, ClassKey(rows[0]), L""), TextValue(name.substr(0, 259)));
    rows[0].m_Name = L"First";
}

} // namespace
