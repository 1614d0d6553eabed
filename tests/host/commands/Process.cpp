#include "tests/host/commands/Process.h"

#include "host/base/ChildProcess.h"
#include "host/base/ModuleFile.h"

#include <algorithm>
#include <stdexcept>

namespace vixahost::test {

namespace {

// As the system's own splitting of a command line undoes it; no word of these tests ends in a backslash.
std::wstring Quoted(const std::wstring& word)
{
    return L"\"" + word + L"\"";
}

bool Exists(const std::filesystem::path& folder, const std::wstring& beginning)
{
    return std::ranges::any_of(std::filesystem::directory_iterator(folder), [&beginning](const auto& entry) {
        return entry.path().filename().native().starts_with(beginning);
    });
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
                const std::wstring& interruptWhen, const Bytes& input)
{
    std::wstring line;
    for (const std::wstring& word : words)
        line += L" " + Quoted(word);
    const ScratchFolder outputs;
    const auto file = [&outputs](const wchar_t* name) {
        return Opened(
            CreateFileW((outputs / name).c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS, 0, nullptr));
    };
    WriteBytes(outputs / L"in", input);
    const UniqueFile in = Opened(
        CreateFileW((outputs / L"in").c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    UniqueFile out = file(L"out"), err = file(L"err");
    const ChildProcess process({.program = ThisProgram().parent_path() / L"vixahost.exe",
                                .words = line,
                                .purpose = "a test",
                                .input = in.get(),
                                .output = out.get(),
                                .error = err.get(),
                                .folder = folder});
    if (!interruptWhen.empty()) {
        while (!Exists(folder, interruptWhen) && !process.EndsWithin(1)) {
        }
        Interrupt(process.Handle());
    }
    if (!process.EndsWithin(60'000))
        process.End(99);
    Outcome outcome;
    outcome.status = process.Status();
    out.reset();
    err.reset();
    outcome.out = Text(outputs / L"out");
    outcome.err = Text(outputs / L"err");
    return outcome;
}

} // namespace vixahost::test
