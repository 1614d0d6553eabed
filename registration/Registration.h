// Makes the module's effects known to the host and to the component system, and removes them again. The module's
// exports DllRegisterServer and DllUnregisterServer are these two.
#pragma once

#include "sxs/SxsConfiguration.h"

#include <windows.h>

namespace vixa {

// Writes every row of the module's template table into the host's categories "Effects" and "Effects7" and enters its
// class under HKEY_CLASSES_ROOT. S_OK; SELFREG_E_CLASS, with no class key touched, when the host's location or the
// category "Effects" cannot be had or one of its values cannot be written (the others are); otherwise what the
// framework's AMovieDllRegisterServer2 answers. A repeat completes what a failure left undone. documentText: the
// configuration that says where the host's location is.
HRESULT RegisterLibrary(const char* documentText = sxs::familyDocument) noexcept;

// Deletes what RegisterLibrary writes and nothing else; the category keys stay. Values and keys that aren't there don't
// count as failures. Results as above.
HRESULT UnregisterLibrary(const char* documentText = sxs::familyDocument) noexcept;

} // namespace vixa
