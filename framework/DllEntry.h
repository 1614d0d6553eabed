// A module's entry routine, its handle, and its registration as a component server.
#pragma once

#include "framework/CFactoryTemplate.h"

// The module's own handle; the module sets it at attach, before it calls DllEntryPoint.
extern HINSTANCE g_hInst;

// To be called at DLL_PROCESS_ATTACH (asks not to be told of threads, then runs every row's init routine with TRUE) and
// at DLL_PROCESS_DETACH (runs them with FALSE). TRUE for every reason.
// The platform goes on telling: it refuses that wish to a module with thread-local storage, which the C run-time
// library gives to all that this compiler makes. That is right, because that library must hear of a thread's end to
// clear up after it. Nothing here may rely on either: for threads this routine does nothing. Not extern "C": the C
// runtime's own start-up calls a routine of that plain name, and would call this one as well.
BOOL WINAPI DllEntryPoint(HINSTANCE instance, ULONG reason, LPVOID reserved) noexcept;

// Writes (TRUE) or deletes (FALSE) the class keys of every row of the table under HKEY_CLASSES_ROOT, and enters or
// removes the rows that have a filter setup with the filter mapper. Registration stops at the first key that cannot be
// written and answers HRESULT_FROM_WIN32 of its error; the rows before it stay. A module whose path has more than 259
// characters is not registered: HRESULT_FROM_WIN32(ERROR_FILENAME_EXCED_RANGE). Without a filter mapper its failure is
// the answer, with the class keys left as they are then.
STDAPI AMovieDllRegisterServer2(BOOL registering) noexcept;

// The same below HKEY_CURRENT_USER\Software\Classes, for the current user alone. The filter mapper, which is the
// machine's, is left out of it.
HRESULT RegisterServerForUser(bool registering) noexcept;

// Whether a module of the other width serves the table's first class for the current user. Systems of one width have
// one set of class keys, so there this module's own count: ask when they are gone.
bool OtherWidthServesUser() noexcept;
