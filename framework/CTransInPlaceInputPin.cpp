#include "framework/CTransInPlaceInputPin.h"

#include "framework/CMemAllocator.h"
#include "framework/CTransInPlaceFilter.h"

#include <algorithm>

CTransInPlaceInputPin::CTransInPlaceInputPin(LPCTSTR objectName, CTransInPlaceFilter* filter, HRESULT* result,
                                             LPCWSTR name) noexcept
    : CTransformInputPin(objectName, filter, result, name), m_pTIPFilter(filter)
{
}

HRESULT CTransInPlaceInputPin::EnumMediaTypes(IEnumMediaTypes** types) noexcept
{
    if (!types)
        return E_POINTER;
    *types = nullptr;
    const ComPtr<IPin> downstream = m_pTIPFilter->m_pOutput->Peer();
    return downstream ? downstream->EnumMediaTypes(types) : VFW_E_NOT_CONNECTED;
}

HRESULT CTransInPlaceInputPin::CheckMediaType(const CMediaType* type)
{
    const HRESULT result = m_pTIPFilter->CheckInputType(type);
    if (result != S_OK)
        return result;
    const ComPtr<IPin> downstream = m_pTIPFilter->m_pOutput->Peer();
    return downstream ? downstream->QueryAccept(type) : S_OK;
}

HRESULT CTransInPlaceInputPin::GetAllocator(IMemAllocator** allocator) noexcept
{
    if (!allocator)
        return E_POINTER;
    *allocator = nullptr;
    CAutoLock lock(m_pLock);
    IMemInputPin* const downstream = m_pTIPFilter->OutputPin()->ConnectedIMemInputPin();
    return downstream ? downstream->GetAllocator(allocator) : CTransformInputPin::GetAllocator(allocator);
}

HRESULT CTransInPlaceInputPin::NotifyAllocator(IMemAllocator* allocator, BOOL readOnly) noexcept
{
    if (!allocator)
        return E_POINTER;
    CAutoLock lock(m_pLock);
    CTransInPlaceOutputPin& output = *m_pTIPFilter->OutputPin();
    if (IMemInputPin* const downstream = output.ConnectedIMemInputPin()) {
        HRESULT result;
        if (readOnly && m_pTIPFilter->m_bModifiesData) {
            result = GiveOutputItsOwnAllocator(allocator);
        } else {
            result = downstream->NotifyAllocator(allocator, readOnly);
            if (SUCCEEDED(result))
                output.SetAllocator(allocator);
        }
        if (FAILED(result))
            return result;
    }
    return CTransformInputPin::NotifyAllocator(allocator, readOnly);
}

// The copies go there: buffers as many and as large as upstream's, in what downstream offers or else in memory of the
// filter's own. Never in upstream's, also when that one came from downstream in the first place.
HRESULT CTransInPlaceInputPin::GiveOutputItsOwnAllocator(IMemAllocator* upstream)
{
    CTransInPlaceOutputPin& output = *m_pTIPFilter->OutputPin();
    IMemInputPin* const downstream = output.ConnectedIMemInputPin();
    ALLOCATOR_PROPERTIES wanted = {};
    HRESULT result = upstream->GetProperties(&wanted);
    if (FAILED(result))
        return result;
    ALLOCATOR_PROPERTIES needed = {};
    downstream->GetAllocatorRequirements(&needed);
    wanted.cBuffers = std::max(wanted.cBuffers, 1L);
    wanted.cbBuffer = std::max(wanted.cbBuffer, 1L);
    wanted.cbAlign = std::max({wanted.cbAlign, needed.cbAlign, 1L});
    wanted.cbPrefix = std::max(wanted.cbPrefix, needed.cbPrefix);

    result = VFW_E_NO_ALLOCATOR;
    for (const bool own : {false, true}) {
        ComPtr<IMemAllocator> candidate;
        result = own ? CreateMemoryAllocator(&candidate) : downstream->GetAllocator(&candidate);
        if (FAILED(result) || !candidate || candidate.Get() == upstream)
            continue;
        ALLOCATOR_PROPERTIES granted = {};
        result = candidate->SetProperties(&wanted, &granted);
        if (SUCCEEDED(result) && (granted.cBuffers < wanted.cBuffers || granted.cbBuffer < wanted.cbBuffer ||
                                  granted.cbAlign < wanted.cbAlign))
            result = E_FAIL;
        if (SUCCEEDED(result))
            result = downstream->NotifyAllocator(candidate.Get(), FALSE);
        if (SUCCEEDED(result)) {
            output.SetAllocator(candidate.Get());
            return S_OK;
        }
    }
    return FAILED(result) ? result : VFW_E_NO_ALLOCATOR;
}

HRESULT CTransInPlaceInputPin::GetAllocatorRequirements(ALLOCATOR_PROPERTIES* properties) noexcept
{
    if (!properties)
        return E_POINTER;
    CAutoLock lock(m_pLock);
    IMemInputPin* const downstream = m_pTIPFilter->OutputPin()->ConnectedIMemInputPin();
    return downstream ? downstream->GetAllocatorRequirements(properties) : E_NOTIMPL;
}
