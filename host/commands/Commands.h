// What the host does, one function per command. Each throws HostError when it can't; COM must be running.
#pragma once

#include "host/commands/CommandLine.h"

namespace vixahost::commands {

// Lists the effects on standard output.
void ListEffects();

// Sends one picture or clip through a stack of effects. The output appears only when it is whole.
void Apply(const ApplyCommand& command);

// Opens the browser's window and returns when it is closed.
void Browse(const BrowseCommand& command);

// Applies every effect to the sample picture; fourteen pictures in the folder "out" of the current directory.
void ShowAllEffects();

// Lists what the library's catalogue says of each effect.
void ListCatalogue(const ListCommand& command);

// Writes one effect's icon, or all of them, as PNG.
void WriteIcons(const IconCommand& command);

// Opens an effect's settings panel in a window and writes its picture. Needs a display.
void PicturePanel(const PanelCommand& command);

// Checks a library. Throws FailedJob when a check fails, after the report was written.
void ValidateLibrary(const ValidateCommand& command);
void RunChecksAsChild(const ChildCommand& command);

} // namespace vixahost::commands
