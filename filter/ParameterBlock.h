// How parameters come from the host's property set into a filter: read with a bound, stored whole.
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

// A value that the streaming thread reads whole while any thread replaces it. The lock is held for a copy only.
template <typename Value>
class Guarded
{
    static_assert(std::is_trivially_copyable_v<Value>);

public:
    explicit Guarded(const Value& initial) noexcept : value(initial) {}

    Value Get() const noexcept
    {
        AcquireSRWLockShared(&lock);
        const Value copy = value;
        ReleaseSRWLockShared(&lock);
        return copy;
    }

    void Set(const Value& replacement) noexcept
    {
        Change([&](Value& current) { current = replacement; });
    }

    // Runs `change` on the value under the lock; it must not call out.
    template <typename Function>
    void Change(Function change) noexcept
    {
        AcquireSRWLockExclusive(&lock);
        change(value);
        ReleaseSRWLockExclusive(&lock);
    }

private:
    Value value;
    mutable SRWLOCK lock = SRWLOCK_INIT;
};

// SetPropertySet of an effect whose fields are its data block: the bytes that the set gives land on them, whatever
// GetData answers. Always S_OK; a null set changes nothing.
template <typename Block>
HRESULT TakeBlock(IUnknown* propertySet, Guarded<Block>& fields) noexcept
{
    if (propertySet) {
        // Read outside the lock: GetData is the host's code.
        Block block = fields.Get();
        ReadBlock(*static_cast<IDataPropertySet*>(propertySet), block);
        fields.Set(block);
    }
    return S_OK;
}

} // namespace vixa
