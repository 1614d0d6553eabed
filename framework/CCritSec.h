// Locks and events.
#pragma once

#include "framework/Handles.h"
#include "framework/Platform.h"

// A lock that its holder may take again.
class CCritSec
{
public:
    CCritSec() noexcept { InitializeCriticalSection(&section); }
    CCritSec(const CCritSec&) = delete;
    CCritSec& operator=(const CCritSec&) = delete;
    ~CCritSec() { DeleteCriticalSection(&section); }

    void Lock() noexcept { EnterCriticalSection(&section); }
    void Unlock() noexcept { LeaveCriticalSection(&section); }

private:
    CRITICAL_SECTION section;
};

// Holds a lock for the length of a block.
class CAutoLock
{
public:
    explicit CAutoLock(CCritSec* lock) noexcept : m_pLock(lock) { m_pLock->Lock(); }
    CAutoLock(const CAutoLock&) = delete;
    CAutoLock& operator=(const CAutoLock&) = delete;
    ~CAutoLock() { m_pLock->Unlock(); }

private:
    CCritSec* m_pLock;
};

// An event, unsignalled at first. `result`, when given, becomes E_OUTOFMEMORY if the system has none left.
class CAMEvent
{
public:
    explicit CAMEvent(bool manualReset = false, HRESULT* result = nullptr) noexcept
        : m_hEvent(CreateEventW(nullptr, manualReset, FALSE, nullptr))
    {
        if (!m_hEvent && result)
            *result = E_OUTOFMEMORY;
    }

    operator HANDLE() const noexcept { return m_hEvent.get(); }
    void Set() noexcept { SetEvent(m_hEvent.get()); }
    void Reset() noexcept { ResetEvent(m_hEvent.get()); }
    // True when the event was signalled within the time.
    bool Wait(DWORD milliseconds = INFINITE) noexcept
    {
        return WaitForSingleObject(m_hEvent.get(), milliseconds) == WAIT_OBJECT_0;
    }
    bool Check() noexcept { return Wait(0); }

private:
    vixa::UniqueEvent m_hEvent;
};
