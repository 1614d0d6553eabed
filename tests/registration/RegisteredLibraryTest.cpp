// The built library, registered as an administrator does it and used as a host does; the program runs in a prefix of
// its own.
#include "host/base/ChildProcess.h"
#include "tests/sxs/RegistryView.h"

#include <vixavideofx/ClassIds.h>
#include <vixavideofx/IEffectFilter.h>

#include <gtest/gtest.h>

#include <dshow.h>
#include <wrl/client.h>

#include <filesystem>
#include <map>
#include <stdexcept>
#include <string>

namespace {

using Microsoft::WRL::ComPtr;
using registry_view::ReadValue;
using registry_view::TextValue;
using registry_view::ValuesOf;
using vixavideofx::CLSID_AddPixel;

const std::wstring effects = L"Software\\Vixa\\Vixa 12\\Editor\\Effects";

// What hosts are promised: the alias under which each effect stands in the second category.
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

std::wstring LibraryPath()
{
    wchar_t path[MAX_PATH];
    GetFullPathNameW(VIXA_LIBRARY, MAX_PATH, path, nullptr);
    return path;
}

// The exit status of a program that is run to its end. Throws when it can't be started or doesn't end.
DWORD StatusOf(const std::filesystem::path& program, const std::wstring& words, HANDLE output = nullptr)
{
    vixahost::ChildStart start = {program, L" " + words, program.string()};
    start.output = output;
    const vixahost::ChildProcess process(start);
    if (!process.EndsWithin(60000))
        throw std::runtime_error(program.string() + " does not end");
    return process.Status();
}

// The system's program that registers, on the library.
DWORD StatusOfRegsvr32(const std::wstring& words)
{
    wchar_t folder[MAX_PATH] = {};
    GetSystemDirectoryW(folder, MAX_PATH);
    return StatusOf(std::filesystem::path(folder) / L"regsvr32.exe", words + L" \"" + LibraryPath() + L"\"");
}

class RegisteredLibrary : public testing::Test
{
protected:
    void SetUp() override { ASSERT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK); }
    void TearDown() override { CoUninitialize(); }
};

HRESULT CreateAddPixel()
{
    ComPtr<IBaseFilter> filter;
    return CoCreateInstance(CLSID_AddPixel, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&filter));
}

// The library is looked for beside the manifest.
TEST_F(RegisteredLibrary, AManifestDoesWithoutRegistration)
{
    EXPECT_EQ(CreateAddPixel(), REGDB_E_CLASSNOTREG);
    ASSERT_TRUE(CreateDirectoryW(L"C:\\free", nullptr));
    ASSERT_TRUE(CopyFileW(LibraryPath().c_str(), L"C:\\free\\VixaVideoFX.dll", TRUE));
    {
        const auto manifest = vixahost::Opened(CreateFileW(L"C:\\free\\effects.manifest", GENERIC_WRITE, 0, nullptr,
                                                           CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
        ASSERT_EQ(StatusOf(std::filesystem::path(LibraryPath()).replace_filename(L"vixahost.exe"), L"manifest",
                           manifest.get()),
                  0u);
    }
    ACTCTXW request = {};
    request.cbSize = sizeof request;
    request.lpSource = L"C:\\free\\effects.manifest";
    const HANDLE context = CreateActCtxW(&request);
    ASSERT_NE(context, INVALID_HANDLE_VALUE) << GetLastError();
    ULONG_PTR cookie = 0;
    ASSERT_TRUE(ActivateActCtx(context, &cookie));
    EXPECT_EQ(CreateAddPixel(), S_OK);
    DeactivateActCtx(0, cookie);
    ReleaseActCtx(context);
    CoFreeUnusedLibrariesEx(0, 0);
    EXPECT_EQ(CreateAddPixel(), REGDB_E_CLASSNOTREG);
}

TEST_F(RegisteredLibrary, AUserRegistersWithoutAnAdministrator)
{
    const auto regsvr32 = [](const std::wstring& words) { return StatusOfRegsvr32(L"/s /n " + words); };
    const std::wstring server = L"Software\\Classes\\CLSID\\{DDBE68A3-F53E-4E2D-B5AF-578F4302C032}\\InprocServer32";
    EXPECT_NE(regsvr32(L"/i:nobody"), 0u);
    EXPECT_EQ(regsvr32(L"/i:user"), 0u);
    EXPECT_EQ(ReadValue(HKEY_CURRENT_USER, server, L""), TextValue(LibraryPath()));
    EXPECT_EQ(ValuesOf(HKEY_CURRENT_USER, effects)->size(), 13u);
    EXPECT_FALSE(ValuesOf(HKEY_LOCAL_MACHINE, effects));
    EXPECT_EQ(regsvr32(L"/u /i:user"), 0u);
    EXPECT_FALSE(ReadValue(HKEY_CURRENT_USER, server, L""));
    EXPECT_TRUE(ValuesOf(HKEY_CURRENT_USER, effects)->empty());
}

TEST_F(RegisteredLibrary, HostFindsAndCreatesEveryEffect)
{
    ASSERT_EQ(StatusOfRegsvr32(L"/s"), 0u);
    ComPtr<IGraphBuilder> graph;
    ASSERT_EQ(CoCreateInstance(CLSID_FilterGraph, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&graph)), S_OK);

    VIDEOINFOHEADER format = {};
    format.bmiHeader = {sizeof(BITMAPINFOHEADER), 8, 4, 1, 32, BI_RGB, 8 * 4 * 4, 0, 0, 0, 0};
    AM_MEDIA_TYPE type = {};
    type.majortype = MEDIATYPE_Video;
    type.subtype = MEDIASUBTYPE_RGB32;
    type.formattype = FORMAT_VideoInfo;
    type.cbFormat = sizeof format;
    type.pbFormat = reinterpret_cast<BYTE*>(&format);

    const auto listed = ValuesOf(HKEY_LOCAL_MACHINE, effects);
    ASSERT_TRUE(listed);
    EXPECT_EQ(listed->size(), 13u);
    EXPECT_EQ(listed->at(L"{DDBE68A3-F53E-4E2D-B5AF-578F4302C032}"), TextValue(L"Add pixel"));
    const auto aliases = ValuesOf(HKEY_LOCAL_MACHINE, effects + L"7");
    ASSERT_TRUE(aliases);
    EXPECT_EQ(aliases->size(), 13u);
    for (const auto& [id, name] : *listed) {
        EXPECT_EQ(aliases->at(aliasOf.at(name.data.substr(0, name.data.size() - 1))), TextValue(id));
        CLSID classId;
        ASSERT_EQ(CLSIDFromString(id.c_str(), &classId), S_OK);
        ComPtr<IBaseFilter> filter;
        ASSERT_EQ(CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&filter)), S_OK) << id.c_str();
        ComPtr<IEffectFilter> effect;
        EXPECT_EQ(filter.As(&effect), S_OK);
        EXPECT_EQ(graph->AddFilter(filter.Get(), name.data.c_str()), S_OK);
        ComPtr<IPin> input;
        ASSERT_EQ(filter->FindPin(L"In", &input), S_OK);
        EXPECT_EQ(input->QueryAccept(&type), S_OK);
        EXPECT_EQ(graph->RemoveFilter(filter.Get()), S_OK);
    }
    graph.Reset();
    CoFreeUnusedLibraries();

    ASSERT_EQ(StatusOfRegsvr32(L"/u /s"), 0u);
    for (const auto& [id, name] : *listed) {
        CLSID classId;
        CLSIDFromString(id.c_str(), &classId);
        ComPtr<IBaseFilter> filter;
        EXPECT_EQ(CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&filter)), REGDB_E_CLASSNOTREG);
    }
    EXPECT_TRUE(ValuesOf(HKEY_LOCAL_MACHINE, effects)->empty());
    EXPECT_TRUE(ValuesOf(HKEY_LOCAL_MACHINE, effects + L"7")->empty());
    EXPECT_EQ(StatusOfRegsvr32(L"/u /s"), 0u);
}

// What a copy of the library at `path` answers, what the class key says then, and whether an effect can be created
// through it.
struct Registered
{
    HRESULT answer = E_FAIL;
    std::wstring path;
    HRESULT creation = E_FAIL;
};

Registered RegisteredAt(const std::wstring& path)
{
    using Entry = HRESULT(STDAPICALLTYPE*)();
    const std::wstring id = L"{E2CE4A0B-1E6A-426E-A90F-172F42528C90}";
    EXPECT_TRUE(CopyFileW(LibraryPath().c_str(), path.c_str(), FALSE)) << GetLastError();
    Registered registered;
    {
        const vixa::UniqueModule module(LoadLibraryW(path.c_str()));
        if (!module) {
            ADD_FAILURE() << "the copy does not load: " << GetLastError();
            return {};
        }
        const auto entry = [&](const char* name) {
            return reinterpret_cast<Entry>(reinterpret_cast<void*>(GetProcAddress(module.get(), name)));
        };
        registered.answer = entry("DllRegisterServer")();
        const auto value = ReadValue(HKEY_CLASSES_ROOT, L"CLSID\\" + id + L"\\InprocServer32", L"");
        registered.path = value ? value->data.c_str() : L"";
        CLSID classId;
        CLSIDFromString(id.c_str(), &classId);
        ComPtr<IBaseFilter> filter;
        registered.creation = CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&filter));
        EXPECT_EQ(entry("DllUnregisterServer")(), S_OK);
    }
    CoFreeUnusedLibrariesEx(0, 0);
    EXPECT_TRUE(DeleteFileW(path.c_str())) << GetLastError();
    return registered;
}

TEST_F(RegisteredLibrary, FoldersOfAnyNameAreRegisteredAsTheyAre)
{
    const std::wstring root = L"C:\\vixa";
    ASSERT_TRUE(CreateDirectoryW(root.c_str(), nullptr));
    for (const std::wstring& folder : {root + L"\\sp ace", root + L"\\\x65E5\x672C"}) {
        ASSERT_TRUE(CreateDirectoryW(folder.c_str(), nullptr));
        const std::wstring path = folder + L"\\VixaVideoFX.dll";
        const Registered registered = RegisteredAt(path);
        EXPECT_EQ(registered.answer, S_OK);
        EXPECT_EQ(registered.path, path);
        EXPECT_EQ(registered.creation, S_OK);
        RemoveDirectoryW(folder.c_str());
    }

    // Nothing could be created from a path that is too long for the component system.
    const std::wstring deep = L"\\\\?\\" + root + L"\\" + std::wstring(200, L'd');
    ASSERT_TRUE(CreateDirectoryW(deep.c_str(), nullptr));
    const std::wstring longPath = deep + L"\\" + std::wstring(80, L'f') + L".dll";
    const Registered refused = RegisteredAt(longPath);
    EXPECT_EQ(refused.answer, HRESULT_FROM_WIN32(ERROR_FILENAME_EXCED_RANGE));
    EXPECT_EQ(refused.path, L"");
    RemoveDirectoryW(deep.c_str());
    RemoveDirectoryW(root.c_str());
}

} // namespace
