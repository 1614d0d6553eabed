// The words after the program's name, understood.
#pragma once

#include "host/commands/Apply.h"
#include "host/commands/Browse.h"
#include "host/commands/Decode.h"
#include "host/commands/Effects.h"
#include "host/commands/Icon.h"
#include "host/commands/List.h"
#include "host/commands/Manifest.h"
#include "host/commands/Panel.h"
#include "host/commands/ShowAll.h"
#include "host/commands/Validate.h"

#include <string>
#include <variant>
#include <vector>

namespace vixahost::commands {

// A text that was asked for (--help, --version) and is printed as it stands.
struct TextCommand
{
    std::string text;
};
void Run(const TextCommand& command);

using Command = std::variant<ShowAllCommand, EffectsCommand, ApplyCommand, BrowseCommand, ListCommand, IconCommand,
                             PanelCommand, ManifestCommand, ValidateCommand, ChildCommand, DecodeCommand, TextCommand>;

// `words` are UTF-8, without the program's name. Throws WrongWords. The library is not loaded: whether an effect or a
// parameter exists is for the command to find out.
Command ParseCommandLine(const std::vector<std::string>& words);

} // namespace vixahost::commands
