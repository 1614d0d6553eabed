// vixahost list
#pragma once

#include <windows.h>

#include <filesystem>

namespace vixahost::commands {

struct ListCommand
{
    LANGID language;
    bool json;
    std::filesystem::path dll; // empty: the one beside the program
};

// Lists what the library's catalogue says of each effect. Throws HostError.
void Run(const ListCommand& command);

} // namespace vixahost::commands
