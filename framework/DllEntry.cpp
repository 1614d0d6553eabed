#include "framework/DllEntry.h"

HINSTANCE g_hInst = nullptr;

namespace {

void RunInitRoutines(BOOL loading)
{
    for (int i = 0; i < g_cTemplates; ++i)
        if (g_Templates[i].m_lpfnInit)
            g_Templates[i].m_lpfnInit(loading, g_Templates[i].m_ClsID);
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
