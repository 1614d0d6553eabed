#include "framework/CTransInPlaceOutputPin.h"

#include "framework/Answered.h"
#include "framework/CTransInPlaceFilter.h"

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
    const vixa::Asking asking(asker);
    const ComPtr<IPin> upstream = m_pTIPFilter->m_pInput->Peer();
    if (!upstream || asking.Again())
        return VFW_E_NOT_CONNECTED;
    return vixa::Answered([&] { return upstream->EnumMediaTypes(types); });
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
    const vixa::Asking asking(asker);
    const ComPtr<IPin> upstream = m_pTIPFilter->m_pInput->Peer();
    return upstream && !asking.Again() ? upstream->QueryAccept(type) : S_OK;
}

HRESULT CTransInPlaceOutputPin::DecideBufferSize(IMemAllocator* allocator, ALLOCATOR_PROPERTIES* request)
{
    // Upstream has set that one up. It is to be used as it is, or not at all: copies do not go where they come from.
    if (allocator == m_pTIPFilter->InputPin()->PeekAllocator())
        return m_pTIPFilter->MustCopy() ? VFW_E_NO_ALLOCATOR : S_OK;
    return CTransformOutputPin::DecideBufferSize(allocator, request);
}

HRESULT CTransInPlaceOutputPin::DecideAllocator(IMemInputPin* pin, IMemAllocator** allocator)
{
    // The input has been reconnected while this connection is made, and downstream knows what was agreed on.
    if (m_pAllocator)
        return m_pAllocator.CopyTo(allocator);
    return CTransformOutputPin::DecideAllocator(pin, allocator);
}

HRESULT CTransInPlaceOutputPin::FollowInput()
{
    const ComPtr<IMemInputPin> downstream = m_pInputPin;
    if (!downstream)
        return S_OK;
    const CTransInPlaceInputPin& input = *m_pTIPFilter->InputPin();
    ComPtr<IMemAllocator> chosen(input.PeekAllocator());
    if (m_pTIPFilter->MustCopy() || FAILED(downstream->NotifyAllocator(chosen.Get(), input.IsReadOnly()))) {
        const HRESULT result = CTransformOutputPin::DecideAllocator(downstream.Get(), chosen.ReleaseAndGetAddressOf());
        if (FAILED(result))
            return result;
    }
    m_pAllocator = chosen;
    return S_OK;
}

HRESULT CTransInPlaceOutputPin::CompleteConnect(IPin* receivePin)
{
    const HRESULT result = CTransformOutputPin::CompleteConnect(receivePin);
    if (FAILED(result))
        return result;
    FindBatchPeer();
    // Types that differ have had the input reconnected, or will have.
    CTransInPlaceInputPin& input = *m_pTIPFilter->InputPin();
    if (!input.IsConnected() || !m_pTIPFilter->UsingDifferentAllocators() || !m_pTIPFilter->TypesMatch())
        return result;
    const HRESULT reconnected = m_pTIPFilter->Reconnect(input, CMediaType(CurrentMediaType()));
    // A graph that does not reconnect leaves a filter that copies; one that could not has lost the input.
    return FAILED(reconnected) && !input.IsConnected() ? reconnected : result;
}

HRESULT CTransInPlaceOutputPin::BreakConnect()
{
    batchPeer.Reset();
    return CTransformOutputPin::BreakConnect();
}

void CTransInPlaceOutputPin::FindBatchPeer() noexcept
{
    ComPtr<vixa::IBatchInput> found;
    if (SUCCEEDED(m_pInputPin->QueryInterface(vixa::IID_IBatchInput, reinterpret_cast<void**>(found.GetAddressOf()))) &&
        found && found->Module() == CTransInPlaceInputPin::ThisModule() && found->IsFace(m_pInputPin.Get()))
        batchPeer = found;
}
