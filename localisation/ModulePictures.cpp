#include "localisation/ModulePictures.h"

#include "localisation/Texts.h"

namespace vixa {

std::span<const std::byte> ModulePictures::FindBitmapResource(UINT id) noexcept
{
    const ModuleBase* const module = TextModule();
    DWORD size = 0;
    const HGLOBAL resource = module ? module->FindModuleResource(id, RT_BITMAP, &size) : nullptr;
    const void* const bytes = resource ? LockResource(resource) : nullptr;
    return bytes ? std::span(static_cast<const std::byte*>(bytes), size) : std::span<const std::byte>();
}

} // namespace vixa
