// What the host does, one function per command. Each throws HostError when it can't; COM must be running.
#pragma once

#include "host/CommandLine.h"

namespace vixa::host {

// Lists the effects on standard output.
void ListEffects();

// Sends one picture or clip through a stack of effects. The output appears only when it is whole.
void Apply(const ApplyCommand& command);

// Opens the browser's window and returns when it is closed.
void Browse(const BrowseCommand& command);

// Applies every effect to the sample picture; fourteen pictures in the folder "out" of the current directory.
void ShowAllEffects();

} // namespace vixa::host
