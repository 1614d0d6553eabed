#include "host/base/Interrupt.h"

#include <windows.h>

#include <atomic>

namespace vixahost {

namespace {

std::atomic<bool> interrupted = false;

BOOL WINAPI OnConsoleEvent(DWORD event) noexcept
{
    interrupted = true;
    // After these the system ends the process as soon as the handler returns: leave the job time to tidy up.
    if (event == CTRL_CLOSE_EVENT || event == CTRL_LOGOFF_EVENT || event == CTRL_SHUTDOWN_EVENT)
        Sleep(4000);
    return TRUE;
}

} // namespace

void CatchInterrupts()
{
    // A parent may have switched Ctrl-C off for its children.
    SetConsoleCtrlHandler(nullptr, FALSE);
    SetConsoleCtrlHandler(OnConsoleEvent, TRUE);
}

bool Interrupted() noexcept
{
    return interrupted;
}

} // namespace vixahost
