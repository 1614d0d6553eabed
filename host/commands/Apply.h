// vixahost apply
#pragma once

#include "host/effects/EffectStack.h"
#include "host/media/YuvPixels.h"

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
    media::YuvChoice colours = {};                     // what a clip of YUV is taken for
};

// Sends one picture or clip through a stack of effects. The output appears only when it is whole. Throws HostError; COM
// must be running.
void Run(const ApplyCommand& command);

} // namespace vixahost::commands
