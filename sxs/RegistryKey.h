// One registry key: a root, a path below it and the rights wanted. The handles are obtained by the first operation that
// needs them.
#pragma once

#include "framework/Handles.h"

#include <windows.h>

#include <string>

// A link at the path's end is never followed: it is opened itself, and the registry refuses values in it.
//
// For one thread at a time. Failures of the registry throw CVixaSXSError with the system's code in AREA_REGISTRY.
class RegistryKey
{
public:
    RegistryKey() noexcept = default;

    // A description; nothing is opened. root: a vixa::sxs::RootKind; the path below it without a leading backslash.
    RegistryKey(long root, std::wstring pathBelow, REGSAM rights);

    // Assigning closes the handles held before.
    RegistryKey(RegistryKey&&) noexcept = default;
    RegistryKey& operator=(RegistryKey&&) noexcept = default;

    // A description of a key below this one, with the same root and rights.
    RegistryKey SubKey(const std::wstring& name) const;

    // Creates the key, or opens it when it exists; nothing when a handle is held.
    void Create();

    // Opens the key when it exists; nothing when a handle is held.
    void Open();

    // Open() with its exception turned into a result: S_OK, or 0x80070006 when the key is not open.
    HRESULT TryOpen();

    // Writes a REG_SZ value with its terminator; opens the key first when it isn't open.
    void SetString(const std::wstring& name, const std::wstring& value);

    // Deletes a value; opens the key first when it isn't open.
    void DeleteValue(const std::wstring& name);

private:
    HKEY Root();

    std::wstring path;
    vixa::UniqueKey handle;
    REGSAM access = 0;
    long rootKind = 0;
    vixa::UniqueKey rootHandle; // may hold a predefined root, for which the release is as good as nothing
};
