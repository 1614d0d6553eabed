// What the library tells about its effects: everything a host needs to list, name, draw and open them.
#pragma once

#include "host/effects/EffectLibrary.h"
#include "host/effects/Languages.h"

#include <cstdint>
#include <string>
#include <vector>

namespace vixahost::effects {

struct CatalogueEntry
{
    GUID classId = {};
    Microsoft::WRL::ComPtr<IEffectInfo> info;
    std::string englishName; // UTF-8; what stack files and the command line call it
    std::wstring name;       // in the catalogue's language
    std::wstring group;
    ULONG groupId = 0;
    ULONG sortKey = 0;
    std::vector<std::uint8_t> icon;     // a packed DIB
    std::vector<std::int32_t> defaults; // the data block of an untouched effect
};

// All effects in the library's groups and order: by group, then sort key, then name. The library speaks `language` from
// then on, also in its panels. One thread; the library must outlive the entries. Throws FailedJob.
std::vector<CatalogueEntry> ReadCatalogue(const EffectLibrary& library, LANGID language = englishLanguage);

// The entry of a class identifier, or null.
const CatalogueEntry* FindEntry(const std::vector<CatalogueEntry>& catalogue, const GUID& classId);

// The entry of an English name, whatever the case of its ASCII letters, or of a class identifier in braces; or null.
const CatalogueEntry* FindEntry(const std::vector<CatalogueEntry>& catalogue, std::string_view nameOrIdentifier);

// The same, but throws WrongWords that offers the nearest names when there is none.
const CatalogueEntry& RequireEntry(const std::vector<CatalogueEntry>& catalogue, std::string_view name);

// "Add pixel" as "add-pixel": a file name that needs no quoting.
std::string FileStem(const CatalogueEntry& entry);

} // namespace vixahost::effects
