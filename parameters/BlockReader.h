// The bounded read of a host's property set.
#pragma once

#include <windows.h>

#include <vixavideofx/PropertySets.h>

#include <cstddef>
#include <span>
#include <type_traits>

namespace vixa {

// What GetData answered: its result code, and the size it reported (0 when it reported none).
struct BlockRead
{
    HRESULT result;
    int size;
};

// Reads the property set's block over `block`, which keeps its bytes where GetData writes none. GetData is not told how
// much room there is; it gets room for 1 MiB followed by an inaccessible page, and what lies beyond `block` is dropped.
// So a host's block of any usual length harms nothing, and a longer one faults in the host's own copy instead of
// overwriting memory. E_OUTOFMEMORY (nothing read) when that room can't be had.
BlockRead ReadBlock(IDataPropertySet& propertySet, std::span<std::byte> block) noexcept;

template <typename Block>
BlockRead ReadBlock(IDataPropertySet& propertySet, Block& block) noexcept
{
    static_assert(std::is_trivially_copyable_v<Block>);
    return ReadBlock(propertySet, std::as_writable_bytes(std::span(&block, 1)));
}

} // namespace vixa
