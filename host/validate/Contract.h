// What the library promises of each effect: the values that the checks hold it to.
#pragma once

#include <guiddef.h>
#include <windows.h>

#include <cstdint>
#include <span>
#include <vector>

namespace vixahost::validate {

struct Promise
{
    const char* name; // English, as the catalogue answers it
    const GUID* classId;
    ULONG group;
    const char* groupName; // English
    ULONG sortKey;
    UINT nameId, groupNameId; // of the texts in a language file
    std::vector<std::int32_t> defaults;
    std::vector<std::int32_t> working; // a block with which the effect changes most frames
};

// The thirteen effects.
std::span<const Promise> Promises();

// The promise of one class identifier, which must be served.
const Promise& PromiseOf(const GUID& classId);

} // namespace vixahost::validate
