// A process that this one starts, waits for and ends.
#pragma once

#include "host/base/Handles.h"

#include <filesystem>
#include <string>
#include <vector>

namespace vixahost {

// How a process is started. The handles stay the caller's.
struct ChildStart
{
    std::filesystem::path program;
    std::wstring words;                                        // of its command line, behind the program's name
    std::string purpose;                                       // for the message: "the checks"
    HANDLE input = nullptr, output = nullptr, error = nullptr; // its standard streams; null: nothing, and nowhere
    std::vector<HANDLE> inherited = {};                        // beside them, with the same values in both processes
    std::filesystem::path folder = {};                         // that it begins in; empty: this process's
    DWORD flags = 0;                                           // of its creation, such as CREATE_NO_WINDOW
};

// Used by one thread.
class ChildProcess
{
public:
    // Of this process's handles it inherits those that are named and no others. Throws FailedJob.
    explicit ChildProcess(const ChildStart& start);
    // Ends it when it still runs.
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    HANDLE Handle() const noexcept { return process.get(); }
    // Waits for its end; true when that has come, within so many milliseconds.
    bool EndsWithin(DWORD milliseconds) const noexcept;
    // Its exit status; STILL_ACTIVE before its end.
    DWORD Status() const noexcept;
    // Takes it out of the system's hands at once; it is over when this returns, or after 5 s.
    void End(DWORD status) const noexcept;

private:
    UniqueProcess process;
};

} // namespace vixahost
