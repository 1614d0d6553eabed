// Something that happens in the midst of a call: runs once, inside this program's next call of a system function.
#pragma once

#include <windows.h>

#include <atomic>
#include <functional>
#include <thread>
#include <utility>

namespace test {

// Lets another thread do something on the way. Where it has to wait for a lock that this thread holds, a moment must
// do.
class OnAnotherThread
{
public:
    template <typename Action>
    void Run(Action action)
    {
        thread = std::jthread([this, action] {
            action();
            done = true;
        });
        for (const ULONGLONG end = GetTickCount64() + 300; !done && GetTickCount64() < end;)
            SwitchToThread();
    }
    void Join() { thread.join(); }

private:
    std::atomic<bool> done = false;
    std::jthread thread;
};

// Works on the program's own import entry, so that the code under test is the code that ships.
template <auto Function>
class Meanwhile;

template <typename Result, typename Argument, Result(WINAPI* Function)(Argument)>
class Meanwhile<Function>
{
public:
    // `name` is the function's, in a library that is loaded; `run` may call it.
    Meanwhile(const wchar_t* library, const char* name, std::function<void()> run)
    {
        original = reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(library), name));
        action = std::move(run);
        Exchange(original, reinterpret_cast<void*>(&Call));
    }
    ~Meanwhile() { Exchange(reinterpret_cast<void*>(&Call), original); }
    Meanwhile(const Meanwhile&) = delete;
    Meanwhile& operator=(const Meanwhile&) = delete;

private:
    static Result WINAPI Call(Argument argument)
    {
        if (const auto run = std::exchange(action, nullptr))
            run();
        return reinterpret_cast<Result(WINAPI*)(Argument)>(original)(argument);
    }
    static void Exchange(const void* from, void* to)
    {
        const auto* const base = reinterpret_cast<const BYTE*>(GetModuleHandleW(nullptr));
        const auto* const headers =
            reinterpret_cast<const IMAGE_NT_HEADERS*>(base + reinterpret_cast<const IMAGE_DOS_HEADER*>(base)->e_lfanew);
        const auto& table = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IAT];
        auto* const entries = reinterpret_cast<void**>(const_cast<BYTE*>(base) + table.VirtualAddress);
        DWORD before = 0;
        VirtualProtect(entries, table.Size, PAGE_READWRITE, &before);
        for (std::size_t i = 0; i < table.Size / sizeof *entries; ++i)
            if (entries[i] == from)
                entries[i] = to;
        VirtualProtect(entries, table.Size, before, &before);
    }

    static inline void* original;
    static inline std::function<void()> action;
};

} // namespace test
