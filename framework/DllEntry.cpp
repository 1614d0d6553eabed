#include "framework/DllEntry.h"

HINSTANCE g_hInst = nullptr;

namespace {

void RunInitRoutines(BOOL loading)
{
    for (const CFactoryTemplate& row : g_Templates)
        if (row.m_lpfnInit)
            row.m_lpfnInit(loading, row.m_ClsID);
}

} // namespace

BOOL WINAPI DllEntryPoint(HINSTANCE instance, ULONG reason, LPVOID) noexcept
{
    switch (reason) {
    case DLL_PROCESS_ATTACH:
        DisableThreadLibraryCalls(instance);
        RunInitRoutines(TRUE);
        break;
    case DLL_PROCESS_DETACH:
        RunInitRoutines(FALSE);
        break;
    }
    return TRUE;
}
