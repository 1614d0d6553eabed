#include "framework/DllEntry.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

std::vector<std::pair<BOOL, const CLSID*>> initCalls;

void CALLBACK NoteInit(BOOL loading, const CLSID* classId)
{
    initCalls.emplace_back(loading, classId);
}

const CLSID first = {0x5E1D2C10, 0x7B8A, 0x4F61, {0x90, 0x21, 0x3C, 0x44, 0x5D, 0x66, 0x7E, 0x01}};
const CLSID second = {0x5E1D2C10, 0x7B8A, 0x4F61, {0x90, 0x21, 0x3C, 0x44, 0x5D, 0x66, 0x7E, 0x02}};
const std::wstring longName(300, L'n');

const AMOVIESETUP_MEDIATYPE pinType = {&MEDIATYPE_Video, &MEDIASUBTYPE_RGB32};
WCHAR inputName[] = L"Input";
const AMOVIESETUP_PIN setupPin = {inputName, FALSE, FALSE, FALSE, FALSE, nullptr, nullptr, 1, &pinType};
const AMOVIESETUP_FILTER setup = {&first, L"Framework test", MERIT_DO_NOT_USE, 1, &setupPin};

CFactoryTemplate rows[] = {{L"Framework test", &first, nullptr, NoteInit, nullptr},
                           {longName.c_str(), &second, nullptr, nullptr, nullptr}};

} // namespace

constinit const std::span<CFactoryTemplate> g_Templates = rows;

namespace {

std::wstring KeyName(const CLSID& classId, const wchar_t* below = L"")
{
    WCHAR text[40];
    StringFromGUID2(classId, text, 40);
    return std::wstring(L"CLSID\\") + text + below;
}

std::wstring ReadText(const std::wstring& key, LPCWSTR value)
{
    WCHAR text[1024] = L"";
    DWORD size = sizeof text;
    const LSTATUS status = RegGetValueW(HKEY_CLASSES_ROOT, key.c_str(), value, RRF_RT_REG_SZ, nullptr, text, &size);
    if (status != ERROR_SUCCESS)
        return L"(missing)";
    EXPECT_EQ((std::wstring(text).size() + 1) * sizeof(WCHAR), size) << "stored with its terminator";
    return text;
}

bool KeyExists(const std::wstring& name)
{
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_CLASSES_ROOT, name.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS)
        return false;
    RegCloseKey(key);
    return true;
}

// The mapper's own list: the entry below the legacy filter category.
bool InMapper(const CLSID& classId)
{
    WCHAR category[40], instance[40];
    StringFromGUID2(CLSID_LegacyAmFilterCategory, category, 40);
    StringFromGUID2(classId, instance, 40);
    return KeyExists(std::wstring(L"CLSID\\") + category + L"\\Instance\\" + instance);
}

class Registration : public testing::Test
{
protected:
    void SetUp() override { g_hInst = GetModuleHandleW(nullptr); }
    void TearDown() override
    {
        g_hInst = GetModuleHandleW(nullptr);
        AMovieDllRegisterServer2(FALSE);
    }
};

TEST_F(Registration, EntryRunsTheInitRoutines)
{
    initCalls.clear();
    EXPECT_TRUE(DllEntryPoint(g_hInst, DLL_PROCESS_ATTACH, nullptr));
    EXPECT_TRUE(DllEntryPoint(g_hInst, DLL_THREAD_ATTACH, nullptr));
    EXPECT_TRUE(DllEntryPoint(g_hInst, DLL_PROCESS_DETACH, nullptr));
    const std::vector<std::pair<BOOL, const CLSID*>> expected = {{TRUE, &first}, {FALSE, &first}};
    EXPECT_EQ(expected, initCalls);
}

TEST_F(Registration, ClassKeysComeAndGo)
{
    WCHAR path[MAX_PATH];
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    for (int round = 0; round < 2; ++round) {
        ASSERT_EQ(S_OK, AMovieDllRegisterServer2(TRUE));
        EXPECT_EQ(L"Framework test", ReadText(KeyName(first), nullptr));
        EXPECT_EQ(path, ReadText(KeyName(first, L"\\InprocServer32"), nullptr));
        EXPECT_EQ(L"Both", ReadText(KeyName(first, L"\\InprocServer32"), L"ThreadingModel"));
        EXPECT_EQ(longName.substr(0, 259), ReadText(KeyName(second), nullptr));
        EXPECT_FALSE(InMapper(first)) << "a row without a setup";
    }
    // What others put below the key goes with it.
    HKEY key = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExW(HKEY_CLASSES_ROOT, KeyName(first, L"\\Deep\\Deeper\\Deepest").c_str(), 0,
                                             nullptr, 0, KEY_WRITE, nullptr, &key, nullptr));
    RegCloseKey(key);
    EXPECT_EQ(S_OK, AMovieDllRegisterServer2(FALSE));
    EXPECT_FALSE(KeyExists(KeyName(first)));
    EXPECT_FALSE(KeyExists(KeyName(second)));
    EXPECT_EQ(S_OK, AMovieDllRegisterServer2(FALSE)) << "a second time as well";
}

TEST_F(Registration, RowsWithASetupEnterTheMapper)
{
    g_Templates[0].m_pAMovieSetup_Filter = &setup;
    EXPECT_EQ(S_OK, AMovieDllRegisterServer2(TRUE));
    EXPECT_TRUE(InMapper(first));
    EXPECT_FALSE(InMapper(second));
    EXPECT_EQ(S_OK, AMovieDllRegisterServer2(FALSE));
    EXPECT_FALSE(InMapper(first));
    g_Templates[0].m_pAMovieSetup_Filter = nullptr;
}

TEST_F(Registration, UnknownModuleIsASystemError)
{
    g_hInst = reinterpret_cast<HINSTANCE>(static_cast<ULONG_PTR>(0x10000));
    const HRESULT result = AMovieDllRegisterServer2(TRUE);
    EXPECT_EQ(FACILITY_WIN32, HRESULT_FACILITY(result));
    EXPECT_HRESULT_FAILED(result);
    EXPECT_FALSE(KeyExists(KeyName(first)));
}

} // namespace
