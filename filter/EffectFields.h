// An effect's fields: written from the host's property set by any thread, read whole by the streaming thread.
#pragma once

#include "parameters/BlockReader.h"

#include <type_traits>

namespace vixa {

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
