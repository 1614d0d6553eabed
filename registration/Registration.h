// Makes the module's effects known to the host and to the component system, and removes them again. The module's
// exports DllRegisterServer, DllUnregisterServer and DllInstall are these two.
#pragma once

#include "sxs/SxsConfiguration.h"

#include <windows.h>

#include <span>

namespace vixa {

// An entry of the host's second category: an identifier that stands for an effect.
struct EffectAlias
{
    const wchar_t* alias; // in braces, upper-case
    const CLSID* effect;
};

// Whom the effects are registered for.
enum class Scope
{
    Machine, // HKEY_LOCAL_MACHINE and HKEY_CLASSES_ROOT, which takes an administrator
    User,    // the current user's hive
};

// Writes every row of the module's template table into the host's category "Effects" and every alias into "Effects7",
// and enters the rows' classes under HKEY_CLASSES_ROOT. S_OK; SELFREG_E_CLASS, with no class key touched, when the
// host's location or the category "Effects" cannot be had or one of its values cannot be written (the others are);
// otherwise what the framework's AMovieDllRegisterServer2 answers. A repeat completes what a failure left undone. For a
// user the same is written below the user's own hive: the classes below Software\Classes.
// documentText: the configuration that says where the host's location is.
HRESULT RegisterLibrary(std::span<const EffectAlias> aliases, Scope scope = Scope::Machine,
                        const char* documentText = sxs::familyDocument) noexcept;

// Deletes what RegisterLibrary writes and nothing else; the category keys stay. Values and keys that aren't there don't
// count as failures. Results as above. For a user the class keys go first, and the list of effects stays while the
// library of the other width, which has class keys of its own and the same list, is registered for the same user.
HRESULT UnregisterLibrary(std::span<const EffectAlias> aliases, Scope scope = Scope::Machine,
                          const char* documentText = sxs::familyDocument) noexcept;

} // namespace vixa
