#include "host/browse/Presets.h"

#include "host/base/HostError.h"
#include "host/browse/Ids.h"
#include "host/browse/UserFiles.h"
#include "host/effects/StackFile.h"

namespace vixahost::browse {

std::vector<ShippedPreset> ShippedPresets()
{
    std::vector<ShippedPreset> presets;
    for (int i = 0; IDT_PRESET_WARM + i < IDT_END; ++i)
        presets.push_back({IDT_PRESET_WARM + i, IDR_PRESETS + i});
    return presets;
}

effects::EffectStack LoadPreset(const ShippedPreset& preset, const std::vector<effects::CatalogueEntry>& catalogue)
{
    const HINSTANCE program = GetModuleHandleW(nullptr);
    const HRSRC found = FindResourceW(program, MAKEINTRESOURCEW(preset.resource), RT_RCDATA);
    const HGLOBAL loaded = found ? LoadResource(program, found) : nullptr;
    if (!loaded)
        throw FailedJob("The program's presets can't be read; install it anew.");
    return effects::ParseStack({static_cast<const char*>(LockResource(loaded)), SizeofResource(program, found)},
                               catalogue);
}

std::filesystem::path PresetFolder()
{
    const std::filesystem::path folder = UserFolder();
    return folder.empty() ? folder : folder / L"Presets";
}

} // namespace vixahost::browse
