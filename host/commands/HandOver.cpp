#include "host/commands/HandOver.h"

#include "host/base/ChildProcess.h"
#include "host/base/HostError.h"
#include "host/base/Interrupt.h"
#include "host/base/ResultCode.h"
#include "host/base/Text.h"
#include "host/effects/LibraryFile.h"

#include <memory>

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
    ChildStart start = {host, GivenWords(), "that library"};
    start.input = GetStdHandle(STD_INPUT_HANDLE);
    start.output = GetStdHandle(STD_OUTPUT_HANDLE);
    start.error = GetStdHandle(STD_ERROR_HANDLE);
    CatchInterrupts(); // the other one answers them
    const auto process = [&] {
        try {
            return std::make_unique<ChildProcess>(start);
        } catch (const FailedJob& failure) {
            // Above all 64-bit programs on a 32-bit system.
            throw FailedJob(effects::WidthComplaint(library) + " " + failure.what());
        }
    }();
    process->EndsWithin(INFINITE);
    const DWORD status = process->Status();
    // What it can end with by itself is a small number, and it has said why.
    constexpr DWORD lastOwnStatus = 4;
    if (status > lastOwnStatus)
        throw HostError(static_cast<int>(status), "The host for this library did not end by itself (status " +
                                                      ShowHex(status) + "): " + Show(host));
    if (status != statusDone)
        throw HostError(static_cast<int>(status), "");
    return true;
}

} // namespace vixahost::commands
