#include "parameters/BlockReader.h"

#include <atomic>
#include <cstring>

namespace vixa {

namespace {

constexpr std::size_t roomBytes = 1 << 16;
constexpr std::size_t pageBytes = 4096;

// The room that comes with the library: reading a property set needs no free address space, unless reads overlap.
alignas(pageBytes) constinit std::byte libraryRoom[roomBytes + pageBytes] = {};
constinit std::atomic_flag libraryRoomTaken;

// Calls back when somebody's exception unwinds the stack past the place where this stands: a structured one, or one of
// another compiler's run-time library, for which no destructor of this compiler's runs.
class UnwindWatch
{
public:
    UnwindWatch(const UnwindWatch&) = delete;
    UnwindWatch& operator=(const UnwindWatch&) = delete;

#ifdef _WIN64
    // There is no list of frames to join. What is lost then is a little address space, of which there is enough.
    UnwindWatch(void (*)(void*) noexcept, void*) noexcept {}
#else
    UnwindWatch(void (*whenUnwound)(void*) noexcept, void* argument) noexcept : call(whenUnwound), with(argument)
    {
        __asm__ volatile("movl %%fs:0, %0" : "=r"(link.Next)); // the thread's list of frames
        link.Handler = reinterpret_cast<PEXCEPTION_ROUTINE>(reinterpret_cast<void*>(&OnException));
        Enter(&link);
    }
    ~UnwindWatch()
    {
        Enter(link.Next);
    }

private:
    static void Enter(EXCEPTION_REGISTRATION_RECORD* first) noexcept
    {
        __asm__ volatile("movl %0, %%fs:0" : : "r"(first) : "memory");
    }
    static EXCEPTION_DISPOSITION __cdecl OnException(EXCEPTION_RECORD* exception, void* frame, CONTEXT*, void*) noexcept
    {
        const auto* const self = static_cast<const UnwindWatch*>(frame); // the link is its first member
        if (exception->ExceptionFlags & (EXCEPTION_UNWINDING | EXCEPTION_EXIT_UNWIND))
            self->call(self->with);
        return ExceptionContinueSearch;
    }

    EXCEPTION_REGISTRATION_RECORD link;
    void (*call)(void*) noexcept;
    void* with;
#endif
};

// Room for one GetData, with a page behind it that nobody can touch.
class Room
{
public:
    Room() noexcept : takesLibraryRoom(!libraryRoomTaken.test_and_set(std::memory_order_acquire))
    {
        DWORD before = 0;
        if (!takesLibraryRoom)
            made = VirtualAlloc(nullptr, sizeof libraryRoom, MEM_RESERVE, PAGE_NOACCESS);
        else if (VirtualProtect(libraryRoom + roomBytes, pageBytes, PAGE_NOACCESS, &before))
            start = libraryRoom;
        if (made)
            start = VirtualAlloc(made, roomBytes, MEM_COMMIT, PAGE_READWRITE);
        if (!start)
            OutputDebugStringA("VixaVideoFX: no memory to read a property set, its values are not used\n");
    }
    ~Room() { GiveBack(); }
    Room(const Room&) = delete;
    Room& operator=(const Room&) = delete;

    void* Start() const noexcept { return start; }

private:
    void GiveBack() const noexcept
    {
        if (made)
            VirtualFree(made, 0, MEM_RELEASE);
        if (takesLibraryRoom)
            libraryRoomTaken.clear(std::memory_order_release);
    }

    const bool takesLibraryRoom;
    void* made = nullptr;
    void* start = nullptr;
    const UnwindWatch watch{[](void* room) noexcept { static_cast<Room*>(room)->GiveBack(); }, this};
};

} // namespace

GetDataAnswer ReadBytes(IDataPropertySet& propertySet, std::span<std::byte> block) noexcept
{
    const Room room;
    if (!room.Start())
        return {E_OUTOFMEMORY, 0};
    std::memcpy(room.Start(), block.data(), block.size());
    GetDataAnswer answer{E_UNEXPECTED, 0};
    try {
        answer.result = propertySet.GetData(room.Start(), &answer.size);
    } catch (...) {
        // Only an exception of the same compiler's run-time library arrives here; others pass this frame by, and the
        // room hears of it.
    }
    std::memcpy(block.data(), room.Start(), block.size());
    return answer;
}

} // namespace vixa
