#include "framework/CTransInPlaceInputPin.h"

#include "framework/Answered.h"
#include "framework/CTransInPlaceFilter.h"

CTransInPlaceInputPin::CTransInPlaceInputPin(LPCTSTR objectName, CTransInPlaceFilter* filter, HRESULT* result,
                                             LPCWSTR name) noexcept
    : CTransformInputPin(objectName, filter, result, name), m_pTIPFilter(filter)
{
}

HRESULT CTransInPlaceInputPin::NonDelegatingQueryInterface(REFIID riid, void** ppv) noexcept
{
    if (IsEqualIID(riid, vixa::IID_IBatchInput))
        return GetInterface(static_cast<vixa::IBatchInput*>(this), ppv);
    return CTransformInputPin::NonDelegatingQueryInterface(riid, ppv);
}

HRESULT CTransInPlaceInputPin::EnumMediaTypes(IEnumMediaTypes** types) noexcept
{
    if (!types)
        return E_POINTER;
    *types = nullptr;
    const vixa::Asking asking(asker);
    const ComPtr<IPin> downstream = m_pTIPFilter->m_pOutput->Peer();
    if (!downstream || asking.Again())
        return VFW_E_NOT_CONNECTED;
    return vixa::Answered([&] { return downstream->EnumMediaTypes(types); });
}

HRESULT CTransInPlaceInputPin::CheckMediaType(const CMediaType* type)
{
    const HRESULT result = m_pTIPFilter->CheckInputType(type);
    if (result != S_OK)
        return result;
    const vixa::Asking asking(asker);
    const ComPtr<IPin> downstream = m_pTIPFilter->m_pOutput->Peer();
    return downstream && !asking.Again() ? downstream->QueryAccept(type) : S_OK;
}

HRESULT CTransInPlaceInputPin::GetAllocator(IMemAllocator** allocator) noexcept
{
    if (!allocator)
        return E_POINTER;
    *allocator = nullptr;
    CAutoLock lock(m_pLock);
    const vixa::Asking asking(asker);
    const ComPtr<IMemInputPin> downstream(m_pTIPFilter->OutputPin()->ConnectedIMemInputPin());
    if (downstream && !asking.Again() &&
        SUCCEEDED(vixa::Answered([&] { return downstream->GetAllocator(allocator); })) && *allocator)
        return S_OK;
    return CTransformInputPin::GetAllocator(allocator);
}

HRESULT CTransInPlaceInputPin::NotifyAllocator(IMemAllocator* allocator, BOOL readOnly) noexcept
{
    CAutoLock lock(m_pLock);
    ComPtr<IMemAllocator> before = m_pAllocator;
    const bool readOnlyBefore = m_bReadOnly;
    HRESULT result = CTransformInputPin::NotifyAllocator(allocator, readOnly);
    if (FAILED(result))
        return result;
    const vixa::Asking asking(asker);
    if (!asking.Again())
        result = vixa::Answered([&] { return m_pTIPFilter->OutputPin()->FollowInput(); });
    if (FAILED(result)) {
        m_pAllocator.Swap(before);
        m_bReadOnly = readOnlyBefore;
    }
    return result;
}

HRESULT CTransInPlaceInputPin::GetAllocatorRequirements(ALLOCATOR_PROPERTIES* properties) noexcept
{
    if (!properties)
        return E_POINTER;
    CAutoLock lock(m_pLock);
    const vixa::Asking asking(asker);
    const ComPtr<IMemInputPin> downstream(m_pTIPFilter->OutputPin()->ConnectedIMemInputPin());
    if (!downstream || asking.Again())
        return E_NOTIMPL;
    return vixa::Answered([&] { return downstream->GetAllocatorRequirements(properties); });
}

bool CTransInPlaceInputPin::TakesBatches() noexcept
{
    return m_pTIPFilter->batchWorker && m_pTIPFilter->batchWorker->TakesBatches();
}

HRESULT CTransInPlaceInputPin::ReceiveBatch(IMediaSample* sample, vixa::Batch& batch) noexcept
{
    CAutoLock lock(&m_pTIPFilter->m_csReceive);
    // NOLINTNEXTLINE(bugprone-parent-virtual-call): the class between would work on the sample at once
    HRESULT result = CBaseInputPin::Receive(sample);
    if (result == S_OK)
        result = vixa::Answered([&] { return m_pTIPFilter->ReceiveWith(sample, &batch); });
    // Work that was not done may use what this filter's lock guards.
    batch.Finish();
    return result;
}

const void* CTransInPlaceInputPin::ThisModule() noexcept
{
    static const char here = 0;
    return &here;
}
