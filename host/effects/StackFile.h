// A stack of effects as a text file; docs/stack-files.md describes the format.
#pragma once

#include "host/effects/EffectCatalogue.h"
#include "host/effects/EffectStack.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace vixahost::effects {

// One effect of a stack with its parameters, apart from any library object.
struct StackItem
{
    GUID classId = {};
    std::vector<std::int32_t> block;
    bool on = true;

    friend bool operator==(const StackItem& a, const StackItem& b)
    {
        return IsEqualGUID(a.classId, b.classId) && a.block == b.block && a.on == b.on;
    }
};

// Effects by their English names, parameters by name. Every effect must be in the catalogue.
std::string WriteStack(const std::vector<StackItem>& stack, const std::vector<CatalogueEntry>& catalogue);

// Throws FailedJob that names the line and what could stand there.
std::vector<StackItem> ParseStack(std::string_view text, const std::vector<CatalogueEntry>& catalogue);

// Whole files, UTF-8 with or without a byte order mark. Throw FailedJob; a file that can't be written stays as it was.
void SaveStackFile(const std::filesystem::path& file, const std::vector<StackItem>& stack,
                   const std::vector<CatalogueEntry>& catalogue);
std::vector<StackItem> LoadStackFile(const std::filesystem::path& file, const std::vector<CatalogueEntry>& catalogue);

// The effects that are switched on, as a graph takes them.
EffectStack StackToRun(const std::vector<StackItem>& stack, const std::vector<CatalogueEntry>& catalogue);

} // namespace vixahost::effects
