// vixahost, without words
#pragma once

namespace vixahost::commands {

struct ShowAllCommand
{
};

// Applies every effect to the sample picture; a picture for each, and one of them all, in the folder "out" of the
// current directory. Throws HostError; COM must be running.
void Run(const ShowAllCommand& command);

} // namespace vixahost::commands
