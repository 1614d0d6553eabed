// vixahost panel
#pragma once

#include "host/effects/EffectStack.h"

#include <windows.h>

#include <filesystem>

namespace vixahost::commands {

struct PanelCommand
{
    effects::EffectWords effect;
    std::filesystem::path target;
    LANGID language;
};

// Opens an effect's settings panel in a window and writes its picture. Needs a display. Throws HostError; COM must be
// running.
void Run(const PanelCommand& command);

} // namespace vixahost::commands
