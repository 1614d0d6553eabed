#include "host/base/ChildProcess.h"

#include "host/base/HostError.h"
#include "host/base/ResultCode.h"
#include "host/base/Text.h"

#include <algorithm>
#include <cstddef>

namespace vixahost {

namespace {

// A console of an old system isn't the kernel's object and is there for the child without being inherited.
bool IsOldConsole(HANDLE handle)
{
    return (reinterpret_cast<UINT_PTR>(handle) & 3) == 3;
}

// What a new process inherits: these handles and no others. They can be inherited only while this lives, unless they
// could before.
class OnlyHandles
{
public:
    explicit OnlyHandles(std::vector<HANDLE> named) : handles(std::move(named))
    {
        // The system takes each handle once.
        std::ranges::sort(handles);
        handles.erase(std::unique(handles.begin(), handles.end()), handles.end());
        std::erase_if(handles, IsOldConsole);
        marked.reserve(handles.size());
        SIZE_T size = 0;
        InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
        room.resize(size);
        list = reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(room.data());
        if (!InitializeProcThreadAttributeList(list, 1, 0, &size) ||
            !UpdateProcThreadAttribute(list, 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, handles.data(),
                                       handles.size() * sizeof(HANDLE), nullptr, nullptr))
            throw FailedJob("There is no room for what a process inherits.");
        for (const HANDLE handle : handles) {
            DWORD before = 0;
            if (GetHandleInformation(handle, &before) && !(before & HANDLE_FLAG_INHERIT)) {
                SetHandleInformation(handle, HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT);
                marked.push_back(handle);
            }
        }
    }
    ~OnlyHandles()
    {
        for (const HANDLE handle : marked)
            SetHandleInformation(handle, HANDLE_FLAG_INHERIT, 0);
        DeleteProcThreadAttributeList(list);
    }
    OnlyHandles(const OnlyHandles&) = delete;
    OnlyHandles& operator=(const OnlyHandles&) = delete;

    LPPROC_THREAD_ATTRIBUTE_LIST List() const noexcept { return list; }

private:
    std::vector<HANDLE> handles, marked;
    std::vector<std::byte> room;
    LPPROC_THREAD_ATTRIBUTE_LIST list = nullptr;
};

} // namespace

ChildProcess::ChildProcess(const ChildStart& start)
{
    // Without streams of its own the child would take whatever file it opens first for one of them.
    const auto nowhere = Opened(CreateFileW(L"NUL", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                            nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    const auto stream = [&nowhere](HANDLE given) { return given ? given : nowhere.get(); };
    STARTUPINFOEXW info = {};
    info.StartupInfo.cb = sizeof info;
    info.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
    info.StartupInfo.hStdInput = stream(start.input);
    info.StartupInfo.hStdOutput = stream(start.output);
    info.StartupInfo.hStdError = stream(start.error);
    std::vector<HANDLE> handles = start.inherited;
    handles.insert(handles.end(),
                   {info.StartupInfo.hStdInput, info.StartupInfo.hStdOutput, info.StartupInfo.hStdError});
    const OnlyHandles only(std::move(handles));
    info.lpAttributeList = only.List();
    std::wstring line = L"\"" + start.program.native() + L"\"" + start.words;
    PROCESS_INFORMATION made = {};
    if (!CreateProcessW(start.program.c_str(), line.data(), nullptr, nullptr, TRUE,
                        start.flags | EXTENDED_STARTUPINFO_PRESENT, nullptr,
                        start.folder.empty() ? nullptr : start.folder.c_str(), &info.StartupInfo, &made))
        throw FailedJob("No process can be started for " + start.purpose + " (" + ExplainError(GetLastError()) +
                        "): " + Show(start.program));
    const UniqueThread firstThread(made.hThread);
    process.reset(made.hProcess);
}

ChildProcess::~ChildProcess()
{
    if (!EndsWithin(0))
        End(0);
}

bool ChildProcess::EndsWithin(DWORD milliseconds) const noexcept
{
    return WaitForSingleObject(process.get(), milliseconds) != WAIT_TIMEOUT;
}

DWORD ChildProcess::Status() const noexcept
{
    DWORD status = STILL_ACTIVE;
    GetExitCodeProcess(process.get(), &status);
    return status;
}

void ChildProcess::End(DWORD status) const noexcept
{
    TerminateProcess(process.get(), status);
    WaitForSingleObject(process.get(), 5000);
}

} // namespace vixahost
