// The registry location of the library's own application (130 of product line 1025), and what may be done below it.
#pragma once

#include "sxs/RegistryKey.h"
#include "sxs/SxsConfiguration.h"

// For one thread at a time. No operation throws: failures are false. No key stays open between operations.
class CRegistrySxs
{
public:
    // Computes the location below a root (a vixa::sxs::RootKind); touches no key. The text as in SxsConfiguration.
    explicit CRegistrySxs(long rootKind, const char* text = vixa::sxs::familyDocument);
    virtual ~CRegistrySxs();
    CRegistrySxs(const CRegistrySxs&) = delete;
    CRegistrySxs& operator=(const CRegistrySxs&) = delete;

    // Whether the location could be computed. When it could not, every operation below answers false.
    bool Resolved() const noexcept { return resolved; }

    // Creates a key below the location, or finds it there. False for a null name.
    bool CreateSubKey(const wchar_t* name);

    // Writes a REG_SZ value into an existing key below the location. False for a null argument.
    bool SetStringValue(const wchar_t* subkey, const wchar_t* name, const wchar_t* value);

    // Deletes a value of an existing key below the location; false also when there is no such value, or a null
    // argument.
    bool DeleteValue(const wchar_t* subkey, const wchar_t* name);

private:
    bool resolved = false;
    SxsConfiguration configuration;
    RegistryKey key;
};
