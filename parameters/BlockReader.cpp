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
    ~Room()
    {
        if (made)
            VirtualFree(made, 0, MEM_RELEASE);
        if (takesLibraryRoom)
            libraryRoomTaken.clear(std::memory_order_release);
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
