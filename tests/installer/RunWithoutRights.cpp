// Runs a program as an administrator's token without the administrators' group would: RunWithoutRights PROGRAM
// [ARGUMENT...]. Ends with its exit code.
#include "framework/Handles.h"

#include <windows.h>

#include <cstdio>
#include <cwchar>
#include <string>

namespace {

int Fail(const char* what)
{
    std::printf("%s: error %lu\n", what, GetLastError());
    return 255;
}

} // namespace

int wmain(int count, wchar_t** arguments)
{
    // Installers know their switches only without quotation marks.
    std::wstring commandLine;
    for (int i = 1; i < count; ++i) {
        const bool spaced = std::wcschr(arguments[i], L' ') != nullptr;
        commandLine +=
            std::wstring(i > 1 ? L" " : L"") + (spaced ? L"\"" : L"") + arguments[i] + (spaced ? L"\"" : L"");
    }

    BYTE administrators[SECURITY_MAX_SID_SIZE];
    DWORD size = sizeof administrators;
    if (!CreateWellKnownSid(WinBuiltinAdministratorsSid, nullptr, administrators, &size))
        return Fail("CreateWellKnownSid");
    HANDLE token = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_ALL_ACCESS, &token))
        return Fail("OpenProcessToken");
    const vixa::UniqueEvent own(token);
    SID_AND_ATTRIBUTES disabled = {administrators, 0};
    if (!CreateRestrictedToken(token, DISABLE_MAX_PRIVILEGE, 1, &disabled, 0, nullptr, 0, nullptr, &token))
        return Fail("CreateRestrictedToken");
    const vixa::UniqueEvent restricted(token);

    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process = {};
    if (!CreateProcessAsUserW(restricted.get(), nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr,
                              nullptr, &startup, &process))
        return Fail("CreateProcessAsUserW");
    const vixa::UniqueEvent thread(process.hThread), child(process.hProcess);
    WaitForSingleObject(child.get(), INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(child.get(), &code);
    return static_cast<int>(code);
}
