// The bounded read of a host's property set.
#pragma once

#include <windows.h>

#include <vixavideofx/PropertySets.h>

#include <cstddef>
#include <span>
#include <type_traits>

namespace vixa {

// What GetData answered: its result code, and the size it reported (0 when it reported none).
struct GetDataAnswer
{
    HRESULT result;
    int size;
};

// Lets the property set write over `block`, which keeps its bytes where GetData writes none. GetData is not told how
// much room there is; it gets 64 KiB followed by an inaccessible page, and what lies beyond `block` is dropped. So a
// longer block of any usual length harms nothing, and an absurd one faults in the host's own copy instead of
// overwriting memory. May be called inside a GetData and on several threads at once; only such overlapping reads need
// address space of their own. E_OUTOFMEMORY (nothing read, and a line of debug text) when that can't be had,
// E_UNEXPECTED when GetData throws.
GetDataAnswer ReadBytes(IDataPropertySet& propertySet, std::span<std::byte> block) noexcept;

// A block as one GetData left it.
template <typename Block>
struct BlockRead
{
    static_assert(std::is_trivially_copyable_v<Block>);

    GetDataAnswer answer;
    Block before; // what stood in the room when GetData was called
    Block block;  // and afterwards

    // Whether GetData succeeded with at least one byte.
    bool HasData() const noexcept { return SUCCEEDED(answer.result) && answer.size > 0; }

    // Writes the bytes that GetData gave, and no others, over `current`: those it changed, and after a success as many
    // as it reported.
    void LayOver(Block& current) const noexcept
    {
        const auto to = std::as_writable_bytes(std::span(&current, 1));
        const auto from = std::as_bytes(std::span(&block, 1)), old = std::as_bytes(std::span(&before, 1));
        const std::size_t reported = HasData() ? static_cast<std::size_t>(answer.size) : 0;
        for (std::size_t i = 0; i < to.size(); ++i)
            if (i < reported || from[i] != old[i])
                to[i] = from[i];
    }
};

// Reads the property set's block with `before` in the room.
template <typename Block>
BlockRead<Block> ReadBlock(IDataPropertySet& propertySet, const Block& before) noexcept
{
    BlockRead<Block> read{{}, before, before};
    read.answer = ReadBytes(propertySet, std::as_writable_bytes(std::span(&read.block, 1)));
    return read;
}

} // namespace vixa
