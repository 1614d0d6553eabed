#include "framework/CTransInPlaceOutputPin.h"

#include "framework/CTransInPlaceFilter.h"

namespace {

bool Satisfies(const ALLOCATOR_PROPERTIES& has, const ALLOCATOR_PROPERTIES& needed) noexcept
{
    return has.cBuffers >= needed.cBuffers && has.cbBuffer >= needed.cbBuffer && has.cbPrefix >= needed.cbPrefix &&
           (needed.cbAlign <= 1 || has.cbAlign % needed.cbAlign == 0);
}

} // namespace

CTransInPlaceOutputPin::CTransInPlaceOutputPin(LPCTSTR objectName, CTransInPlaceFilter* filter, HRESULT* result,
                                               LPCWSTR name) noexcept
    : CTransformOutputPin(objectName, filter, result, name), m_pTIPFilter(filter)
{
}

HRESULT CTransInPlaceOutputPin::EnumMediaTypes(IEnumMediaTypes** types) noexcept
{
    if (!types)
        return E_POINTER;
    *types = nullptr;
    const ComPtr<IPin> upstream = m_pTIPFilter->m_pInput->Peer();
    return upstream ? upstream->EnumMediaTypes(types) : VFW_E_NOT_CONNECTED;
}

HRESULT CTransInPlaceOutputPin::CheckMediaType(const CMediaType* type)
{
    if (!m_pFilter->IsStopped() && m_pTIPFilter->UsingDifferentAllocators()) {
        CMediaType present;
        const HRESULT result = ConnectionMediaType(&present);
        if (FAILED(result))
            return result;
        return *type == present ? S_OK : VFW_E_TYPE_NOT_ACCEPTED;
    }
    const HRESULT result = m_pTIPFilter->CheckInputType(type);
    if (result != S_OK)
        return result;
    const ComPtr<IPin> upstream = m_pTIPFilter->m_pInput->Peer();
    return upstream ? upstream->QueryAccept(type) : S_OK;
}

HRESULT CTransInPlaceOutputPin::DecideAllocator(IMemInputPin* pin, IMemAllocator** allocator)
{
    CTransInPlaceInputPin& input = *m_pTIPFilter->InputPin();
    IMemAllocator* const upstream = input.PeekAllocator();
    if (pin && upstream && input.IsConnected() && !m_pTIPFilter->MustCopy()) {
        ALLOCATOR_PROPERTIES needed = {};
        ALLOCATOR_PROPERTIES has = {};
        pin->GetAllocatorRequirements(&needed);
        if (SUCCEEDED(upstream->GetProperties(&has)) && Satisfies(has, needed) &&
            SUCCEEDED(pin->NotifyAllocator(upstream, input.IsReadOnly()))) {
            upstream->AddRef();
            *allocator = upstream;
            return S_OK;
        }
    }
    return CTransformOutputPin::DecideAllocator(pin, allocator);
}

HRESULT CTransInPlaceOutputPin::CompleteConnect(IPin* receivePin)
{
    const HRESULT result = CTransformOutputPin::CompleteConnect(receivePin);
    if (FAILED(result))
        return result;
    // Upstream is asked once more when it could use the allocator that this side has settled for.
    CTransInPlaceInputPin& input = *m_pTIPFilter->InputPin();
    if (!input.IsConnected() || !m_pTIPFilter->UsingDifferentAllocators() || m_pTIPFilter->MustCopy())
        return result;
    const CMediaType type(CurrentMediaType());
    return m_pTIPFilter->ReconnectPin(&input, &type);
}
