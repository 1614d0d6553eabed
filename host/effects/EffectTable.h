// The effects by name, with the data blocks they start with, as the library beside the program tells them.
#pragma once

#include <guiddef.h>

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace vixahost::effects {

struct EffectEntry
{
    const char* name; // English
    const GUID* classId;
    std::span<const std::int32_t> defaults; // the effect's data block before the user has set anything
};

// By group, sort key and name. The first call reads the catalogue, which leaves the library speaking English. Throws
// FailedJob when the library can't be loaded.
std::span<const EffectEntry> Effects();

// The effect of that name, whatever the case of its ASCII letters; throws WrongWords that offers the nearest names.
const EffectEntry& FindEffect(std::string_view name);

// "Add pixel" as "add-pixel": a file name that needs no quoting.
std::string FileStem(const EffectEntry& effect);

} // namespace vixahost::effects
