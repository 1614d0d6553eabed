#include "host/effects/EffectTable.h"

#include "host/base/HostError.h"
#include "host/base/NearestNames.h"
#include "host/base/Text.h"
#include "host/effects/EffectCatalogue.h"

namespace vixahost::effects {

namespace {

// The catalogue's entries without its objects, so that the library may go.
struct Table
{
    std::vector<CatalogueEntry> catalogue;
    std::vector<EffectEntry> entries;

    Table()
    {
        const EffectLibrary library;
        catalogue = ReadCatalogue(library);
        for (CatalogueEntry& entry : catalogue) {
            entry.info.Reset();
            entries.push_back({entry.englishName.c_str(), &entry.classId, entry.defaults});
        }
    }
};

} // namespace

std::span<const EffectEntry> Effects()
{
    static const Table table;
    return table.entries;
}

const EffectEntry& FindEffect(std::string_view name)
{
    const std::string wanted = LowerCase(name);
    std::vector<std::string> names;
    for (const EffectEntry& effect : Effects()) {
        if (LowerCase(effect.name) == wanted)
            return effect;
        names.emplace_back(effect.name);
    }
    throw WrongWords("There is no effect \"" + std::string(name) + "\"; did you mean " +
                     Alternatives(NearestNames(name, names)) + "? `vixahost effects` lists all.");
}

std::string FileStem(const EffectEntry& effect)
{
    std::string stem = LowerCase(effect.name);
    for (char& letter : stem)
        if (letter == ' ')
            letter = '-';
    return stem;
}

} // namespace vixahost::effects
