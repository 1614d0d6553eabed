// Stacks to begin with: those that ship with the program, and the user's own.
#pragma once

#include "host/browse/Texts.h"
#include "host/effects/EffectStack.h"

#include <filesystem>
#include <vector>

namespace vixahost::browse {

// A stack that ships: its name and its file's content, both in the program.
struct ShippedPreset
{
    int name;     // an IDT_ number
    int resource; // an IDR_ number
};
std::vector<ShippedPreset> ShippedPresets();
// Throws FailedJob.
effects::EffectStack LoadPreset(const ShippedPreset& preset, const std::vector<effects::CatalogueEntry>& catalogue);

// The folder of the user's own: stack files under the name that the menu shows. Empty when the system names none.
std::filesystem::path PresetFolder();

} // namespace vixahost::browse
