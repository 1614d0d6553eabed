// Runs the real vixahost.exe.
#pragma once

#include "tests/host/TestFiles.h"

#include <filesystem>
#include <string>
#include <vector>

namespace vixahost::test {

struct Outcome
{
    unsigned long status = 0;
    std::string out; // what it wrote to standard output
    std::string err;
};

// Starts the host that lies beside this test program, in `folder`, and waits for its end. `interruptWhen`: as soon as
// a file of that name's beginning exists in the folder, Ctrl-C is sent to it. Output goes through files outside the
// folder.
// `input`: what stands on its standard input.
Outcome RunHost(const std::filesystem::path& folder, const std::vector<std::wstring>& words,
                const std::wstring& interruptWhen = L"", const Bytes& input = {});

} // namespace vixahost::test
