// The built library, registered as an administrator does it and used as a host does; the program runs in a prefix of
// its own.
#include "framework/Handles.h"
#include "tests/sxs/RegistryView.h"

#include <vixavideofx/IEffectFilter.h>

#include <gtest/gtest.h>

#include <dshow.h>
#include <wrl/client.h>

#include <string>

namespace {

using Microsoft::WRL::ComPtr;
using registry_view::ReadValue;
using registry_view::TextValue;
using registry_view::ValuesOf;

const std::wstring effects = L"Software\\Vixa\\Vixa 12\\Editor\\Effects";

// The exit code of a program that is run to its end.
DWORD run(std::wstring commandLine)
{
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process = {};
    if (!CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process))
        return GetLastError();
    const vixa::UniqueEvent thread(process.hThread), child(process.hProcess);
    WaitForSingleObject(child.get(), 60000);
    DWORD code = STILL_ACTIVE;
    GetExitCodeProcess(child.get(), &code);
    return code;
}

std::wstring library()
{
    wchar_t path[MAX_PATH];
    GetFullPathNameW(VIXA_LIBRARY, MAX_PATH, path, nullptr);
    return path;
}

class RegisteredLibrary : public testing::Test
{
protected:
    void SetUp() override { ASSERT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK); }
    void TearDown() override { CoUninitialize(); }
};

TEST_F(RegisteredLibrary, HostFindsAndCreatesEveryEffect)
{
    ASSERT_EQ(run(L"regsvr32 /s \"" + library() + L"\""), 0u);
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
    for (const auto& [id, name] : *listed) {
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

    ASSERT_EQ(run(L"regsvr32 /u /s \"" + library() + L"\""), 0u);
    for (const auto& [id, name] : *listed) {
        CLSID classId;
        CLSIDFromString(id.c_str(), &classId);
        ComPtr<IBaseFilter> filter;
        EXPECT_EQ(CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&filter)), REGDB_E_CLASSNOTREG);
    }
    EXPECT_TRUE(ValuesOf(HKEY_LOCAL_MACHINE, effects)->empty());
    EXPECT_EQ(run(L"regsvr32 /u /s \"" + library() + L"\""), 0u);
}

// What the class key says about a copy of the library at `path`.
std::wstring registeredPathOf(const std::wstring& path)
{
    using Entry = HRESULT(STDAPICALLTYPE*)();
    EXPECT_TRUE(CopyFileW(library().c_str(), path.c_str(), FALSE)) << GetLastError();
    std::wstring registered;
    {
        const vixa::UniqueModule module(LoadLibraryW(path.c_str()));
        if (!module) {
            ADD_FAILURE() << "the copy does not load: " << GetLastError();
            return {};
        }
        const auto entry = [&](const char* name) {
            return reinterpret_cast<Entry>(reinterpret_cast<void*>(GetProcAddress(module.get(), name)));
        };
        EXPECT_EQ(entry("DllRegisterServer")(), S_OK);
        const auto value =
            ReadValue(HKEY_CLASSES_ROOT, L"CLSID\\{E2CE4A0B-1E6A-426E-A90F-172F42528C90}\\InprocServer32", L"");
        registered = value ? value->data.c_str() : L"";
        EXPECT_EQ(entry("DllUnregisterServer")(), S_OK);
    }
    EXPECT_TRUE(DeleteFileW(path.c_str()));
    return registered;
}

TEST_F(RegisteredLibrary, PathsGoThroughTheAnsiCodePageAndAreCut)
{
    const std::wstring folder = L"C:\\vixa";
    ASSERT_TRUE(CreateDirectoryW(folder.c_str(), nullptr));
    EXPECT_EQ(registeredPathOf(folder + L"\\sp ace.dll"), folder + L"\\sp ace.dll");
    EXPECT_EQ(registeredPathOf(folder + L"\\\x65E5.dll"), folder + L"\\?.dll");

    const std::wstring deep = L"\\\\?\\" + folder + L"\\" + std::wstring(200, L'd');
    ASSERT_TRUE(CreateDirectoryW(deep.c_str(), nullptr));
    const std::wstring longPath = deep + L"\\" + std::wstring(80, L'f') + L".dll";
    const std::wstring registered = registeredPathOf(longPath);
    EXPECT_EQ(registered.size(), 259u);
    EXPECT_NE(longPath.find(registered), std::wstring::npos);
    RemoveDirectoryW(deep.c_str());
    RemoveDirectoryW(folder.c_str());
}

} // namespace
