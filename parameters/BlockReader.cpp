#include "parameters/BlockReader.h"

#include <cstring>
#include <memory>

namespace vixa {

namespace {

constexpr std::size_t roomSize = 1 << 20;
constexpr std::size_t guardSize = 4096;

struct VirtualMemoryDeleter
{
    void operator()(void* memory) const noexcept { VirtualFree(memory, 0, MEM_RELEASE); }
};

} // namespace

BlockRead ReadBlock(IDataPropertySet& propertySet, std::span<std::byte> block) noexcept
{
    // Pages that GetData does not touch are never backed by memory. The guard stays reserved, not committed: no access.
    const std::unique_ptr<void, VirtualMemoryDeleter> reserved(
        VirtualAlloc(nullptr, roomSize + guardSize, MEM_RESERVE, PAGE_NOACCESS));
    void* const room = reserved ? VirtualAlloc(reserved.get(), roomSize, MEM_COMMIT, PAGE_READWRITE) : nullptr;
    if (!room)
        return {E_OUTOFMEMORY, 0};

    std::memcpy(room, block.data(), block.size());
    BlockRead read{E_FAIL, 0};
    read.result = propertySet.GetData(room, &read.size);
    std::memcpy(block.data(), room, block.size());
    return read;
}

} // namespace vixa
