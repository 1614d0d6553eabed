// vixahost effects
#pragma once

namespace vixahost::commands {

struct EffectsCommand
{
};

// Lists the effects, their identifiers and their parameters on standard output. Throws HostError.
void Run(const EffectsCommand& command);

} // namespace vixahost::commands
