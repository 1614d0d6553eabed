#include "host/validate/CrashWords.h"

#include <cinttypes>
#include <cstddef>
#include <cstdio>

namespace vixahost::validate {

namespace {

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

} // namespace

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

} // namespace vixahost::validate
