// The life of an allocator's buffers: committed, handed out, waited for, decommitted.
#pragma once

#include "framework/CCritSec.h"
#include "framework/CMediaSample.h"
#include "framework/CUnknown.h"

// A derived class makes the samples (Alloc, which extends this one's) and takes them away (Free). Any thread may call
// anything. Each sample that is out holds a reference on the allocator.
class CBaseAllocator : public CUnknown, public IMemAllocatorCallbackTemp, public CCritSec
{
    friend class CMediaSample;

public:
    DECLARE_IUNKNOWN
    // `result`, when given, becomes E_OUTOFMEMORY when the system has no semaphore left.
    CBaseAllocator(LPCTSTR name, IUnknown* outer, HRESULT* result) noexcept;
    ~CBaseAllocator() override;

    // IMemAllocator and IMemAllocatorCallbackTemp besides IUnknown.
    HRESULT STDMETHODCALLTYPE NonDelegatingQueryInterface(REFIID riid, void** ppv) noexcept override;

    // VFW_E_ALREADY_COMMITTED while committed, VFW_E_BUFFERS_OUTSTANDING while buffers are out.
    HRESULT STDMETHODCALLTYPE SetProperties(ALLOCATOR_PROPERTIES* request,
                                            ALLOCATOR_PROPERTIES* actual) noexcept override;
    HRESULT STDMETHODCALLTYPE GetProperties(ALLOCATOR_PROPERTIES* actual) noexcept override;
    // VFW_E_SIZENOTSET before SetProperties, E_OUTOFMEMORY.
    HRESULT STDMETHODCALLTYPE Commit() noexcept override;
    // Wakes who waits for a buffer. Buffers that are out stay good until they come back.
    HRESULT STDMETHODCALLTYPE Decommit() noexcept override;
    // Waits for a buffer unless AM_GBF_NOWAIT (VFW_E_TIMEOUT). VFW_E_NOT_COMMITTED, also when decommitted meanwhile.
    HRESULT STDMETHODCALLTYPE GetBuffer(IMediaSample** sample, REFERENCE_TIME* start, REFERENCE_TIME* end,
                                        DWORD flags) noexcept override;
    // For the last Release of one of this allocator's samples only.
    HRESULT STDMETHODCALLTYPE ReleaseBuffer(IMediaSample* sample) noexcept override;
    HRESULT STDMETHODCALLTYPE SetNotify(IMemAllocatorNotifyCallbackTemp* notify) noexcept override;
    HRESULT STDMETHODCALLTYPE GetFreeCount(LONG* count) noexcept override;

protected:
    // Checks that the sizes are set. S_FALSE: the buffers of the last commit still fit.
    virtual HRESULT Alloc();
    // Called with no buffer out, after Decommit.
    virtual void Free() = 0;

    void PutFree(CMediaSample* sample) noexcept;
    CMediaSample* TakeFree() noexcept;
    // They look again for a buffer, or see that there will be none.
    void WakeWaiters() noexcept;

    CMediaSample* freeSamples = nullptr; // the buffers at home, a list through m_pNext
    LONG m_lFree = 0;
    LONG m_lAllocated = 0;
    LONG m_lWaiting = 0;
    vixa::UniqueSemaphore m_hSem; // one count per waiter to wake
    LONG m_lCount = 0;
    LONG m_lSize = 0;
    LONG m_lAlignment = 1;
    LONG m_lPrefix = 0;
    bool m_bChanged = false; // the properties, since the buffers were made
    bool m_bCommitted = false;
    bool m_bDecommitInProgress = false;
    ComPtr<IMemAllocatorNotifyCallbackTemp> m_pNotify;
};
