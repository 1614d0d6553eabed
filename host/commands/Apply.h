// vixahost apply
#pragma once

#include "host/commands/FrameEnds.h"
#include "host/effects/EffectStack.h"

#include <vixavideofx/IInstructionCeiling.h>

#include <filesystem>
#include <vector>

namespace vixahost::commands {

struct ApplyCommand
{
    std::vector<effects::EffectWords> steps; // at least one effect, unless a stack file is named
    std::filesystem::path stackFile = {};    // empty, or where the stack is
    std::filesystem::path input = {};
    std::filesystem::path output = {};
    unsigned long level = IInstructionCeiling::Avx512; // the best instruction set to use
    FrameWords frames = {};                            // of a clip
};

// Sends one picture or clip through a stack of effects. The output appears only when it is whole. Throws HostError; COM
// must be running.
void Run(const ApplyCommand& command);

} // namespace vixahost::commands
