// vixahost icon
#pragma once

#include <filesystem>
#include <string>

namespace vixahost::commands {

struct IconCommand
{
    std::string effect; // empty: all, into the folder `target`
    std::filesystem::path target;
};

// Writes one effect's icon, or all of them, as PNG. Throws HostError; COM must be running.
void Run(const IconCommand& command);

} // namespace vixahost::commands
