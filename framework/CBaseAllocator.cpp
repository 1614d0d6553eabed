#include "framework/CBaseAllocator.h"

#include "framework/Answered.h"

CBaseAllocator::CBaseAllocator(LPCTSTR name, IUnknown* outer, HRESULT* result) noexcept
    : CUnknown(name, outer), m_hSem(CreateSemaphoreW(nullptr, 0, MAXLONG, nullptr))
{
    if (!m_hSem && result)
        *result = E_OUTOFMEMORY;
}

CBaseAllocator::~CBaseAllocator() = default;

HRESULT CBaseAllocator::NonDelegatingQueryInterface(REFIID riid, void** ppv) noexcept
{
    if (IsEqualIID(riid, IID_IMemAllocator) || IsEqualIID(riid, IID_IMemAllocatorCallbackTemp))
        return GetInterface(static_cast<IMemAllocatorCallbackTemp*>(this), ppv);
    return CUnknown::NonDelegatingQueryInterface(riid, ppv);
}

HRESULT CBaseAllocator::SetProperties(ALLOCATOR_PROPERTIES* request, ALLOCATOR_PROPERTIES* actual) noexcept
{
    if (!request || !actual)
        return E_POINTER;
    const ALLOCATOR_PROPERTIES asked = *request; // both pointers may be the same
    CAutoLock lock(this);
    *actual = {};
    if (m_bCommitted)
        return VFW_E_ALREADY_COMMITTED;
    if (m_lFree < m_lAllocated)
        return VFW_E_BUFFERS_OUTSTANDING;
    if (asked.cBuffers < 0 || asked.cbBuffer < 0 || asked.cbPrefix < 0)
        return E_INVALIDARG;
    m_lCount = asked.cBuffers;
    m_lSize = asked.cbBuffer;
    m_lAlignment = asked.cbAlign;
    m_lPrefix = asked.cbPrefix;
    m_bChanged = true;
    *actual = {m_lCount, m_lSize, m_lAlignment, m_lPrefix};
    return S_OK;
}

HRESULT CBaseAllocator::GetProperties(ALLOCATOR_PROPERTIES* actual) noexcept
{
    if (!actual)
        return E_POINTER;
    CAutoLock lock(this);
    *actual = {m_lCount, m_lSize, m_lAlignment, m_lPrefix};
    return S_OK;
}

HRESULT CBaseAllocator::Commit() noexcept
{
    CAutoLock lock(this);
    if (m_bCommitted)
        return S_OK;
    if (m_bDecommitInProgress) {
        // The buffers are all there still: those that are out come back as if nothing had been.
        m_bDecommitInProgress = false;
        m_bCommitted = true;
        return S_OK;
    }
    const HRESULT result = vixa::Answered([&] { return Alloc(); });
    if (FAILED(result))
        return result;
    m_bCommitted = true;
    return S_OK;
}

HRESULT CBaseAllocator::Decommit() noexcept
{
    CAutoLock lock(this);
    if (!m_bCommitted)
        return S_OK;
    m_bCommitted = false;
    if (m_lFree < m_lAllocated)
        m_bDecommitInProgress = true;
    else
        Free();
    WakeWaiters();
    return S_OK;
}

HRESULT CBaseAllocator::GetBuffer(IMediaSample** sample, REFERENCE_TIME*, REFERENCE_TIME*, DWORD flags) noexcept
{
    if (!sample)
        return E_POINTER;
    *sample = nullptr;
    for (;;) {
        {
            CAutoLock lock(this);
            if (!m_bCommitted)
                return VFW_E_NOT_COMMITTED;
            if (CMediaSample* const taken = TakeFree()) {
                taken->AddRef();
                *sample = taken;
                break;
            }
            if (flags & AM_GBF_NOWAIT)
                return VFW_E_TIMEOUT;
            ++m_lWaiting;
        }
        WaitForSingleObject(m_hSem.get(), INFINITE);
    }
    AddRef(); // the sample's; it goes when the sample is back
    return S_OK;
}

HRESULT CBaseAllocator::ReleaseBuffer(IMediaSample* sample) noexcept
{
    if (!sample)
        return E_POINTER;
    ComPtr<IMemAllocatorNotifyCallbackTemp> notify;
    {
        CAutoLock lock(this);
        PutFree(static_cast<CMediaSample*>(sample));
        WakeWaiters();
        if (m_bDecommitInProgress && m_lFree == m_lAllocated) {
            m_bDecommitInProgress = false;
            Free();
        }
        notify = m_pNotify;
    }
    if (notify)
        notify->NotifyRelease();
    Release();
    return S_OK;
}

HRESULT CBaseAllocator::SetNotify(IMemAllocatorNotifyCallbackTemp* notify) noexcept
{
    ComPtr<IMemAllocatorNotifyCallbackTemp> given(notify);
    CAutoLock lock(this);
    m_pNotify.Swap(given);
    return S_OK;
}

HRESULT CBaseAllocator::GetFreeCount(LONG* count) noexcept
{
    if (!count)
        return E_POINTER;
    CAutoLock lock(this);
    *count = m_lCount - m_lAllocated + m_lFree;
    return S_OK;
}

HRESULT CBaseAllocator::Alloc()
{
    if (m_lCount <= 0 || m_lSize <= 0 || m_lAlignment <= 0)
        return VFW_E_SIZENOTSET;
    return m_bChanged ? S_OK : S_FALSE;
}

void CBaseAllocator::PutFree(CMediaSample* sample) noexcept
{
    sample->m_pNext = freeSamples;
    freeSamples = sample;
    ++m_lFree;
}

CMediaSample* CBaseAllocator::TakeFree() noexcept
{
    CMediaSample* const sample = freeSamples;
    if (sample) {
        freeSamples = sample->m_pNext;
        sample->m_pNext = nullptr;
        --m_lFree;
    }
    return sample;
}

void CBaseAllocator::WakeWaiters() noexcept
{
    if (m_lWaiting > 0)
        ReleaseSemaphore(m_hSem.get(), m_lWaiting, nullptr);
    m_lWaiting = 0;
}
