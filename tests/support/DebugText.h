// The text that code under test gives to a debugger.
#pragma once

#include <windows.h>

#include <string>

namespace test {

// Keeps the last debug text of the process while it exists. One at a time.
class DebugText
{
public:
    DebugText() : handler(AddVectoredExceptionHandler(1, Catch)) { last.clear(); }
    ~DebugText() { RemoveVectoredExceptionHandler(handler); }
    DebugText(const DebugText&) = delete;
    DebugText& operator=(const DebugText&) = delete;

    static inline std::string last;

private:
    static LONG CALLBACK Catch(EXCEPTION_POINTERS* exception)
    {
        constexpr DWORD printed = 0x40010006; // what OutputDebugString raises: length, address
        const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
        if (record.ExceptionCode != printed)
            return EXCEPTION_CONTINUE_SEARCH;
        last = reinterpret_cast<const char*>(record.ExceptionInformation[1]);
        return EXCEPTION_CONTINUE_EXECUTION;
    }

    void* handler;
};

} // namespace test
