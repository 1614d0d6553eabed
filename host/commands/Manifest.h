// vixahost manifest
#pragma once

#include <filesystem>

namespace vixahost::commands {

struct ManifestCommand
{
    std::filesystem::path dll; // empty: the one beside the program
};

// Writes the assembly manifest with which programs create the library's effects without a registration. Throws
// HostError.
void Run(const ManifestCommand& command);

} // namespace vixahost::commands
