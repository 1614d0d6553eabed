// The threads that the compiler's run-time library asks for, on the platform's own primitives.
//
// That library (exceptions, static initialisation, data per thread) is written on POSIX threads. The implementation
// that comes with the compiler keeps a TLS index, two semaphores and two handles of each thread that ever called it,
// and gives none of them back when the module is unloaded: every load would cost a process four handles, and a process
// has no index left after some thousand loads and is ended. Little of it is called, and that needs nothing which
// outlives the module.
//
// A DLL links this file itself, not through a library of objects that programs link too: a program that starts threads
// the standard library's way needs the whole of the other implementation. Should the run-time library ever call a
// function that is not here, the linker takes the other one in and complains of names defined twice.
#include "framework/Platform.h"

#include <pthread.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <utility>

namespace __gnu_cxx {
// The standard library's own, without a header: gives the memory back that it holds for exceptions when there is none.
void __freeres(); // NOLINT(readability-identifier-naming,clang-diagnostic-reserved-identifier): not ours
} // namespace __gnu_cxx

namespace {

// The platform's locks are a word that starts at 0; a POSIX object that is initialised statically starts at a small
// negative number, which no lock's word ever is.
template <typename Lock>
Lock* In(intptr_t* word) noexcept
{
    static_assert(sizeof(Lock) == sizeof *word);
    auto* const pointer = reinterpret_cast<void* volatile*>(word);
    if (const intptr_t start = *word; start < 0 && start >= GENERIC_RECURSIVE_INITIALIZER)
        InterlockedCompareExchangePointer(pointer, nullptr, reinterpret_cast<void*>(start));
    return reinterpret_cast<Lock*>(word);
}

enum OnceState : long
{
    untouched = PTHREAD_ONCE_INIT,
    underWay,
    done
};
SRWLOCK onceLock = SRWLOCK_INIT;
CONDITION_VARIABLE onceDone = CONDITION_VARIABLE_INIT;

// A fibre-local index has what a thread-local one lacks: a destructor, which also runs for every living thread when the
// index is given back.
struct Key
{
    DWORD index = FLS_OUT_OF_INDEXES;
    void (*destroy)(void*) = nullptr;
};
constexpr std::size_t mostKeys = 4;
std::array<Key, mostKeys> keys;
LONG keysUsed = 0;

template <std::size_t key>
void CALLBACK Destroy(void* value) noexcept
{
    if (value && keys[key].destroy)
        keys[key].destroy(value);
}

template <std::size_t... key>
constexpr std::array<PFLS_CALLBACK_FUNCTION, sizeof...(key)> Destructors(std::index_sequence<key...>) noexcept
{
    return {Destroy<key>...};
}

void GiveAllBack() noexcept
{
    __gnu_cxx::__freeres();
    for (Key& key : keys)
        if (key.index != FLS_OUT_OF_INDEXES)
            FlsFree(std::exchange(key.index, FLS_OUT_OF_INDEXES));
}

// The first to be registered is the last to run when the module goes: destructors of static objects may throw and
// catch.
[[gnu::constructor(101)]] void GiveAllBackInTheEnd() noexcept
{
    std::atexit(GiveAllBack);
}

} // namespace

extern "C" {

int pthread_mutex_init(pthread_mutex_t* mutex, const pthread_mutexattr_t*)
{
    *mutex = 0; // NOLINT(misc-non-copyable-objects): a number on this platform
    return 0;
}

int pthread_mutex_destroy(pthread_mutex_t*)
{
    return 0;
}

// Recursive ones included: nothing in the run-time library takes one that it holds.
int pthread_mutex_lock(pthread_mutex_t* mutex)
{
    AcquireSRWLockExclusive(In<SRWLOCK>(mutex));
    return 0;
}

int pthread_mutex_unlock(pthread_mutex_t* mutex)
{
    ReleaseSRWLockExclusive(In<SRWLOCK>(mutex));
    return 0;
}

int pthread_cond_wait(pthread_cond_t* cv, pthread_mutex_t* mutex)
{
    return SleepConditionVariableSRW(In<CONDITION_VARIABLE>(cv), In<SRWLOCK>(mutex), INFINITE, 0) ? 0 : EINVAL;
}

int pthread_cond_broadcast(pthread_cond_t* cv)
{
    WakeAllConditionVariable(In<CONDITION_VARIABLE>(cv));
    return 0;
}

int pthread_once(pthread_once_t* once, void (*func)())
{
    if (InterlockedCompareExchange(once, done, done) == done)
        return 0;
    AcquireSRWLockExclusive(&onceLock);
    while (*once == underWay)
        SleepConditionVariableSRW(&onceDone, &onceLock, INFINITE, 0);
    if (*once == untouched) {
        *once = underWay;
        ReleaseSRWLockExclusive(&onceLock);
        func(); // may ask for another once
        AcquireSRWLockExclusive(&onceLock);
        InterlockedExchange(once, done);
        WakeAllConditionVariable(&onceDone);
    }
    ReleaseSRWLockExclusive(&onceLock);
    return 0;
}

int pthread_key_create(pthread_key_t* key, void (*destroy)(void*))
{
    static constexpr auto destructors = Destructors(std::make_index_sequence<mostKeys>());
    const auto slot = static_cast<std::size_t>(InterlockedIncrement(&keysUsed) - 1);
    if (slot >= mostKeys)
        return EAGAIN;
    keys[slot].destroy = destroy;
    keys[slot].index = FlsAlloc(destructors[slot]);
    *key = static_cast<pthread_key_t>(slot);
    return keys[slot].index == FLS_OUT_OF_INDEXES ? EAGAIN : 0;
}

void* pthread_getspecific(pthread_key_t key)
{
    const DWORD error = GetLastError(); // of a call that the caller may still ask about
    void* const value = FlsGetValue(keys[key].index);
    SetLastError(error);
    return value;
}

int pthread_setspecific(pthread_key_t key, const void* value)
{
    return FlsSetValue(keys[key].index, const_cast<void*>(value)) ? 0 : ENOMEM;
}

} // extern "C"
