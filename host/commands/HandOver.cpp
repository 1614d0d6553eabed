#include "host/commands/HandOver.h"

#include "host/base/Handles.h"
#include "host/base/HostError.h"
#include "host/base/Text.h"
#include "host/effects/LibraryFile.h"

namespace vixahost::commands {

namespace {

// This process's command line behind the program's name, as it was given.
std::wstring GivenWords()
{
    const std::wstring line = GetCommandLineW();
    const std::size_t end = line.starts_with(L'"') ? line.find(L'"', 1) : line.find(L' ');
    return end == std::wstring::npos ? L"" : line.substr(end + (line[end] == L'"'));
}

} // namespace

bool HandOver(const std::filesystem::path& library)
{
    const int width = effects::WidthOf(library);
    if (width == 0 || width == effects::ownWidth)
        return false;
    const std::filesystem::path host = effects::HostFor(library);
    if (host.empty())
        throw FailedJob(effects::WidthComplaint(library));
    std::wstring words = L"\"" + host.native() + L"\"" + GivenWords();
    STARTUPINFOW start = {};
    start.cb = sizeof start;
    PROCESS_INFORMATION made = {};
    if (!CreateProcessW(host.c_str(), words.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &made))
        throw FailedJob(effects::WidthComplaint(library) + " It can't be started from here (system error " +
                        std::to_string(GetLastError()) + ").");
    const UniqueThread thread(made.hThread);
    const UniqueProcess process(made.hProcess);
    WaitForSingleObject(process.get(), INFINITE);
    DWORD status = 0;
    GetExitCodeProcess(process.get(), &status);
    if (status != statusDone)
        throw HostError(static_cast<int>(status), "");
    return true;
}

} // namespace vixahost::commands
