// A stack of effects as a text file; docs/stack-files.md describes the format.
#pragma once

#include "host/effects/EffectStack.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace vixahost::effects {

// Effects by their English names, parameters by name.
std::string WriteStack(const EffectStack& stack);

// Throws FailedJob that names the line and what could stand there.
EffectStack ParseStack(std::string_view text, const std::vector<CatalogueEntry>& catalogue);

// Whole files, UTF-8 with or without a byte order mark. Throw FailedJob; a file that can't be written stays as it was.
void SaveStackFile(const std::filesystem::path& file, const EffectStack& stack);
EffectStack LoadStackFile(const std::filesystem::path& file, const std::vector<CatalogueEntry>& catalogue);

} // namespace vixahost::effects
