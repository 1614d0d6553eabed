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
    EffectStack stack; // at least one effect
    std::filesystem::path input;
    std::filesystem::path output;
};

// A text that was asked for (--help, --version) and is printed as it stands.
struct TextCommand
{
    std::string text;
};

using Command = std::variant<ShowCommand, EffectsCommand, ApplyCommand, TextCommand>;

// `words` are UTF-8, without the program's name. Throws WrongWords.
Command ParseCommandLine(const std::vector<std::string>& words);

} // namespace vixa::host
