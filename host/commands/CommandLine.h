// The words after the program's name, understood.
#pragma once

#include "host/effects/EffectStack.h"

#include <windows.h>

#include <filesystem>
#include <string>
#include <variant>
#include <vector>

namespace vixahost::commands {

// No words: every effect on a sample picture.
struct ShowCommand
{
};

struct EffectsCommand
{
};

struct ApplyCommand
{
    effects::EffectStack stack;      // at least one effect, unless a stack file is named
    std::filesystem::path stackFile; // empty, or where the stack is
    std::filesystem::path input;
    std::filesystem::path output;
    unsigned long level = 3; // the best instruction set to use, as IInstructionCeiling counts them
};

// A window with everything to try: `file` (a picture or a clip) may be empty.
struct BrowseCommand
{
    std::filesystem::path file;
    std::filesystem::path stackFile;  // empty, or the stack to begin with
    std::filesystem::path screenshot; // empty, or the picture of the window to write before it closes by itself
    std::string language;             // empty, or a code such as "de-DE" or "de"
    int width = 0, height = 0;        // pixels of the window; 0: as the system likes
};

struct ListCommand
{
    LANGID language;
    bool json;
};

struct IconCommand
{
    std::string effect; // empty: all, into the folder `target`
    std::filesystem::path target;
};

struct PanelCommand
{
    std::string effect;
    std::filesystem::path target;
    LANGID language;
    std::vector<std::string> settings; // name=value
};

struct ValidateCommand
{
    std::filesystem::path dll;       // empty: the one beside the program
    std::vector<std::string> groups; // empty: all
    bool json, list;
    int secondsPerCheck;
};

// One group of checks in a process of its own; what `validate` starts, not for people.
struct ChildCommand
{
    std::filesystem::path dll;
    std::string group;
    int firstCheck;
    UINT_PTR report; // an inherited pipe handle
};

// A text that was asked for (--help, --version) and is printed as it stands.
struct TextCommand
{
    std::string text;
};

using Command = std::variant<ShowCommand, EffectsCommand, ApplyCommand, BrowseCommand, ListCommand, IconCommand,
                             PanelCommand, ValidateCommand, ChildCommand, TextCommand>;

// `words` are UTF-8, without the program's name. Throws WrongWords.
Command ParseCommandLine(const std::vector<std::string>& words);

} // namespace vixahost::commands
