#include "parameters/BlockReader.h"

#include <cstring>

namespace vixa {

namespace {

constexpr std::size_t roomBytes = 1 << 16;
constexpr std::size_t pageBytes = 4096;

// The room that comes with the library: reading a property set needs no free address space, unless reads overlap.
alignas(pageBytes) constinit std::byte libraryRoom[roomBytes + pageBytes] = {};

// Who has the library's room. A host's exception that is none of this compiler's leaves a reader's frame without
// running its destructor. Such a reader is seen to have gone when its thread reads again from where that frame was, or
// from farther up its stack. (A handler in the system's list of frames would hear of it, but this library tells the
// system that it has none.)
class LibraryRoom
{
public:
    // `reader` lives on the stack of the calling thread until it gives the room back.
    bool Take(const void* reader) noexcept
    {
        AcquireSRWLockExclusive(&lock);
        const DWORD self = GetCurrentThreadId();
        const bool taken = !owner || (ownersThread == self && owner <= reader && OnOneStack(owner, reader));
        if (taken) {
            owner = reader;
            ownersThread = self;
        }
        ReleaseSRWLockExclusive(&lock);
        return taken;
    }

    void GiveBack() noexcept
    {
        AcquireSRWLockExclusive(&lock);
        owner = nullptr;
        ReleaseSRWLockExclusive(&lock);
    }

private:
    // A thread may have several, one for each fiber.
    static bool OnOneStack(const void* one, const void* other) noexcept
    {
        MEMORY_BASIC_INFORMATION ofOne = {}, ofOther = {};
        return VirtualQuery(one, &ofOne, sizeof ofOne) && VirtualQuery(other, &ofOther, sizeof ofOther) &&
               ofOne.AllocationBase == ofOther.AllocationBase;
    }

    SRWLOCK lock = SRWLOCK_INIT;
    const void* owner = nullptr;
    DWORD ownersThread = 0;
};
constinit LibraryRoom libraryRoomOf;

// Room for one GetData, with a page behind it that nobody can touch. Lives on the stack.
class Room
{
public:
    Room() noexcept : takesLibraryRoom(libraryRoomOf.Take(this))
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
    ~Room()
    {
        if (made)
            VirtualFree(made, 0, MEM_RELEASE);
        if (takesLibraryRoom)
            libraryRoomOf.GiveBack();
    }
    Room(const Room&) = delete;
    Room& operator=(const Room&) = delete;

    void* Start() const noexcept { return start; }

private:
    const bool takesLibraryRoom;
    void* made = nullptr;
    void* start = nullptr;
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
        // Only an exception of the same compiler's run-time library arrives here; others pass this frame by.
    }
    std::memcpy(block.data(), room.Start(), block.size());
    return answer;
}

} // namespace vixa
