// A value that threads share.
#pragma once

#include <windows.h>

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

} // namespace vixa
