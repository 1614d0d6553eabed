// vixahost list
#pragma once

#include <windows.h>

namespace vixahost::commands {

struct ListCommand
{
    LANGID language;
    bool json;
};

// Lists what the library's catalogue says of each effect. Throws HostError.
void Run(const ListCommand& command);

} // namespace vixahost::commands
