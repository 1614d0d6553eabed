// The words after the program's name, understood.
#pragma once

#include "host/EffectStack.h"

#include <filesystem>
#include <string>
#include <variant>
#include <vector>

namespace vixa::host {

// No words: every effect on a sample picture.
struct ShowCommand
{
};

struct EffectsCommand
{
};

struct ApplyCommand
{
    EffectStack stack;               // at least one effect, unless a stack file is named
    std::filesystem::path stackFile; // empty, or where the stack is
    std::filesystem::path input;
    std::filesystem::path output;
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

// A text that was asked for (--help, --version) and is printed as it stands.
struct TextCommand
{
    std::string text;
};

using Command = std::variant<ShowCommand, EffectsCommand, ApplyCommand, BrowseCommand, TextCommand>;

// `words` are UTF-8, without the program's name. Throws WrongWords.
Command ParseCommandLine(const std::vector<std::string>& words);

} // namespace vixa::host
