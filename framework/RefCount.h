// The one reference count of every component object.
#pragma once

#include <windows.h>

#include <atomic>

namespace vixa {

// A component object keeps one as a member, answers AddRef with Add() and Release with Drop([this] { delete this; }).
// It starts at 0 where the first taker's reference is the first one, at 1 where the creator holds one already. Any
// thread may call anything. A copy of an object is another object: it has to say itself where its count starts.
class RefCount
{
public:
    constexpr explicit RefCount(ULONG start) noexcept : count(start) {}
    RefCount(const RefCount&) = delete;
    RefCount& operator=(const RefCount&) = delete;

    // The references there are now.
    ULONG Get() const noexcept { return count; }
    ULONG Add() noexcept { return ++count; }

    // Adds one unless the last has gone: for those who reach the object without holding it, through a pointer that its
    // destructor takes back.
    bool TryAdd() noexcept
    {
        for (ULONG seen = count; seen != 0;)
            if (count.compare_exchange_weak(seen, seen + 1))
                return true;
        return false;
    }

    // Answers how many are left. With the last one it calls `last`, which may end the object and this count with it.
    template <typename Last>
    ULONG Drop(Last last) noexcept
    {
        const ULONG left = --count;
        if (left == 0)
            last();
        return left;
    }

private:
    std::atomic<ULONG> count;
};

} // namespace vixa
