// The resource context of one settings panel: where its template and its texts are found.
#pragma once

#include "ui/ResourceContext.h"

#include <windows.h>

#include <array>
#include <cstdint>
#include <memory>

class CColourEffects : public ResourceContext
{
public:
    HINSTANCE GetInstance() override;
    virtual void SetInstance(HINSTANCE handle);
    // Replaces the context's own block by a new one of 8 bytes that begins with the value. Null changes nothing.
    virtual void CopyValue(const std::int32_t* value);
    // The pointer is not owned. Null changes nothing.
    virtual void SetPointer(void* newPointer);
    virtual void* GetPointer();

private:
    HINSTANCE instance = nullptr;
    void* pointer = nullptr;
    std::unique_ptr<std::array<std::int32_t, 2>> block;
};
