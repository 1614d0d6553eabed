#include "tests/host/commands/Process.h"

#include "host/base/Handles.h"
#include "tests/host/TestFiles.h"

#include <stdexcept>

namespace vixahost::test {

namespace {

// As the system's own splitting of a command line undoes it; no word of these tests ends in a backslash.
std::wstring Quoted(const std::wstring& word)
{
    return L"\"" + word + L"\"";
}

UniqueFile Inherited(const std::filesystem::path& file)
{
    SECURITY_ATTRIBUTES inherit = {sizeof inherit, nullptr, TRUE};
    return Opened(CreateFileW(file.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherit, CREATE_ALWAYS, 0, nullptr));
}

bool Exists(const std::filesystem::path& folder, const std::wstring& beginning)
{
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        if (entry.path().filename().native().starts_with(beginning))
            return true;
    return false;
}

// What the system does in a process when its user presses Ctrl-C: a thread there calls the process's handlers. (A
// console event can't be sent from here: a test run has no console.) System modules lie at one address in all
// processes.
void Interrupt(HANDLE process)
{
    const auto routine = reinterpret_cast<LPTHREAD_START_ROUTINE>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernelbase.dll"), "CtrlRoutine")));
    const UniqueThread thread(routine ? CreateRemoteThread(process, nullptr, 0, routine,
                                                           reinterpret_cast<void*>(ULONG_PTR{CTRL_C_EVENT}), 0, nullptr)
                                      : nullptr);
    if (!thread)
        throw std::runtime_error("Ctrl-C can't be sent");
}

std::string Text(const std::filesystem::path& file)
{
    const Bytes bytes = ReadBytes(file);
    return {bytes.begin(), bytes.end()};
}

} // namespace

Outcome RunHost(const std::filesystem::path& folder, const std::vector<std::wstring>& words,
                const std::wstring& interruptWhen)
{
    wchar_t self[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, self, MAX_PATH);
    const std::filesystem::path program = std::filesystem::path(self).parent_path() / L"vixahost.exe";
    std::wstring line = Quoted(program.native());
    for (const std::wstring& word : words)
        line += L" " + Quoted(word);

    const ScratchFolder outputs;
    UniqueFile out = Inherited(outputs / L"out"), err = Inherited(outputs / L"err");
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = out.get();
    startup.hStdError = err.get();
    PROCESS_INFORMATION process = {};
    if (!CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, TRUE, 0, nullptr, folder.c_str(), &startup,
                        &process))
        throw std::runtime_error("vixahost.exe can't be started");
    const UniqueProcess handle(process.hProcess);
    const UniqueThread thread(process.hThread);
    if (!interruptWhen.empty()) {
        while (!Exists(folder, interruptWhen) && WaitForSingleObject(handle.get(), 1) == WAIT_TIMEOUT) {
        }
        Interrupt(handle.get());
    }
    if (WaitForSingleObject(handle.get(), 60'000) != WAIT_OBJECT_0) {
        TerminateProcess(handle.get(), 99);
        WaitForSingleObject(handle.get(), 5'000);
    }
    Outcome outcome;
    GetExitCodeProcess(handle.get(), &outcome.status);
    out.reset();
    err.reset();
    outcome.out = Text(outputs / L"out");
    outcome.err = Text(outputs / L"err");
    return outcome;
}

} // namespace vixahost::test
