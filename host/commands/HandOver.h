// A library of the other width is looked at by the host program of that width.
#pragma once

#include <filesystem>

namespace vixahost::commands {

// Does nothing and answers false when this program can load the library, or when the file is none. Otherwise the host
// of the library's width does this process's job, with the same words, output and interrupts. Throws FailedJob when
// there is no such host or the system doesn't start it, and HostError with that host's exit status, which has said
// why, when it fails.
bool HandOver(const std::filesystem::path& library);

} // namespace vixahost::commands
