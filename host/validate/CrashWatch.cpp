#include "host/validate/CrashWatch.h"

#include "host/base/Text.h"

#include <atomic>
#include <cinttypes>
#include <cstddef>
#include <cstdio>

namespace vixahost::validate {

namespace {

void (*tellOwner)(const char*) = nullptr;
std::atomic<HMODULE> watched = nullptr;
HMODULE program = nullptr, runtime = nullptr; // this program and the C run-time library

// "VixaVideoFX.dll+0x1234".
void DescribePlace(const void* address, char* text, std::size_t size)
{
    HMODULE module = nullptr;
    char file[MAX_PATH] = "";
    if (GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                           static_cast<LPCSTR>(address), &module))
        GetModuleFileNameA(module, file, MAX_PATH);
    const char* name = file;
    for (const char* at = file; *at; ++at)
        if (*at == '\\' || *at == '/')
            name = at + 1;
    if (*name)
        std::snprintf(text, size, "%s+0x%" PRIXPTR, name,
                      reinterpret_cast<std::uintptr_t>(address) - reinterpret_cast<std::uintptr_t>(module));
    else
        std::snprintf(text, size, "%p", address);
}

const char* CrashWords(const EXCEPTION_RECORD& record) noexcept
{
    static char place[MAX_PATH + 32], words[MAX_PATH + 128];
    DescribePlace(record.ExceptionAddress, place, sizeof place);
    if (record.ExceptionCode == EXCEPTION_ACCESS_VIOLATION && record.NumberParameters >= 2)
        std::snprintf(words, sizeof words, "access violation at %s, %s address 0x%08" PRIXPTR, place,
                      record.ExceptionInformation[0] == 1   ? "writing to"
                      : record.ExceptionInformation[0] == 8 ? "executing"
                                                            : "reading from",
                      static_cast<std::uintptr_t>(record.ExceptionInformation[1]));
    else
        std::snprintf(words, sizeof words, "exception 0x%08lX at %s", static_cast<unsigned long>(record.ExceptionCode),
                      place);
    return words;
}

LONG WINAPI TellAndEnd(EXCEPTION_POINTERS* fault)
{
    tellOwner(CrashWords(*fault->ExceptionRecord));
    TerminateProcess(GetCurrentProcess(), 3);
    return EXCEPTION_EXECUTE_HANDLER;
}

// Access violations and the like: errors of the system's own numbering, which C++ exceptions of any compiler are not.
bool IsFault(DWORD code) noexcept
{
    constexpr DWORD error = 3UL << 30, customer = 1UL << 29;
    return (code & (error | customer)) == error;
}

// Asks for the pages instead of the list of modules, whose lock another thread may hold.
bool IsOurPlace(const void* address) noexcept
{
    MEMORY_BASIC_INFORMATION pages = {};
    if (!VirtualQuery(address, &pages, sizeof pages) || pages.State != MEM_COMMIT || pages.Type != MEM_IMAGE)
        return true;
    return pages.AllocationBase == watched || pages.AllocationBase == program || pages.AllocationBase == runtime;
}

LONG WINAPI FirstLook(EXCEPTION_POINTERS* fault)
{
    const EXCEPTION_RECORD& record = *fault->ExceptionRecord;
    if (IsFault(record.ExceptionCode) && IsOurPlace(record.ExceptionAddress))
        return TellAndEnd(fault);
    return EXCEPTION_CONTINUE_SEARCH;
}

} // namespace

void WatchForCrashes(void (*tell)(const char* words)) noexcept
{
    tellOwner = tell;
    program = GetModuleHandleW(nullptr);
    runtime = GetModuleHandleW(L"msvcrt.dll");
    SetUnhandledExceptionFilter(TellAndEnd);
    AddVectoredExceptionHandler(TRUE, FirstLook);
}

void SayCrash(const char* words)
{
    Say("crash: ");
    Say(words);
    Say("\n");
}

void WatchModule(HMODULE module) noexcept
{
    watched = module;
}

} // namespace vixahost::validate
