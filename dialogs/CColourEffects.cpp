#include "dialogs/CColourEffects.h"

HINSTANCE CColourEffects::GetInstance()
{
    return instance;
}

void CColourEffects::SetInstance(HINSTANCE handle)
{
    instance = handle;
}

void CColourEffects::CopyValue(const std::int32_t* value)
{
    if (value)
        block = std::make_unique<std::array<std::int32_t, 2>>(std::array<std::int32_t, 2>{*value, 0});
}

void CColourEffects::SetPointer(void* newPointer)
{
    if (newPointer)
        pointer = newPointer;
}

void* CColourEffects::GetPointer()
{
    return pointer;
}
