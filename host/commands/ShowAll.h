// vixahost, without words
#pragma once

namespace vixahost::commands {

struct ShowAllCommand
{
};

// Applies every effect to the sample picture; fourteen pictures in the folder "out" of the current directory. Throws
// HostError; COM must be running.
void Run(const ShowAllCommand& command);

} // namespace vixahost::commands
