#include "framework/CBaseOutputPin.h"

#include "framework/CMemAllocator.h"

CBaseOutputPin::CBaseOutputPin(LPCTSTR objectName, CBaseFilter* filter, CCritSec* lock, HRESULT* result,
                               LPCWSTR name) noexcept
    : CBasePin(objectName, filter, lock, result, name, PINDIR_OUTPUT)
{
}

HRESULT CBaseOutputPin::CheckConnect(IPin* pin)
{
    const HRESULT result = CBasePin::CheckConnect(pin);
    if (FAILED(result))
        return result;
    if (FAILED(pin->QueryInterface(IID_IMemInputPin, reinterpret_cast<void**>(m_pInputPin.ReleaseAndGetAddressOf()))))
        return VFW_E_NO_TRANSPORT;
    return S_OK;
}

HRESULT CBaseOutputPin::BreakConnect()
{
    if (m_pAllocator)
        m_pAllocator->Decommit();
    m_pAllocator.Reset();
    m_pInputPin.Reset();
    return S_OK;
}

HRESULT CBaseOutputPin::CompleteConnect(IPin*)
{
    ComPtr<IMemAllocator> allocator;
    const HRESULT result = DecideAllocator(m_pInputPin.Get(), &allocator);
    if (SUCCEEDED(result))
        m_pAllocator = allocator;
    return result;
}

HRESULT CBaseOutputPin::Active()
{
    return m_pAllocator ? m_pAllocator->Commit() : VFW_E_NO_ALLOCATOR;
}

HRESULT CBaseOutputPin::Inactive()
{
    m_bRunTimeError = false;
    return m_pAllocator ? m_pAllocator->Decommit() : VFW_E_NO_ALLOCATOR;
}

HRESULT CBaseOutputPin::DecideAllocator(IMemInputPin* pin, IMemAllocator** allocator)
{
    *allocator = nullptr;
    if (!pin)
        return VFW_E_NO_TRANSPORT;
    ALLOCATOR_PROPERTIES needed = {};
    pin->GetAllocatorRequirements(&needed);
    if (needed.cbAlign == 0)
        needed.cbAlign = 1;

    HRESULT result = VFW_E_NO_ALLOCATOR;
    for (const bool own : {false, true}) {
        ComPtr<IMemAllocator> candidate;
        result = own ? InitAllocator(&candidate) : pin->GetAllocator(&candidate);
        if (SUCCEEDED(result) && !candidate)
            result = VFW_E_NO_ALLOCATOR;
        if (SUCCEEDED(result))
            result = DecideBufferSize(candidate.Get(), &needed);
        if (SUCCEEDED(result))
            result = pin->NotifyAllocator(candidate.Get(), FALSE);
        if (SUCCEEDED(result)) {
            *allocator = candidate.Detach();
            return S_OK;
        }
    }
    return result;
}

HRESULT CBaseOutputPin::InitAllocator(IMemAllocator** allocator)
{
    return CreateMemoryAllocator(allocator);
}

HRESULT CBaseOutputPin::GetDeliveryBuffer(IMediaSample** sample, REFERENCE_TIME* start, REFERENCE_TIME* end,
                                          DWORD flags)
{
    return m_pAllocator ? m_pAllocator->GetBuffer(sample, start, end, flags) : E_NOINTERFACE;
}

// The peer cannot go while samples may come: a disconnection needs the stopped state.
HRESULT CBaseOutputPin::Deliver(IMediaSample* sample)
{
    return m_pInputPin ? m_pInputPin->Receive(sample) : VFW_E_NOT_CONNECTED;
}

HRESULT CBaseOutputPin::DeliverEndOfStream()
{
    const ComPtr<IPin> peer = Peer();
    return peer ? peer->EndOfStream() : VFW_E_NOT_CONNECTED;
}

HRESULT CBaseOutputPin::DeliverBeginFlush()
{
    const ComPtr<IPin> peer = Peer();
    return peer ? peer->BeginFlush() : VFW_E_NOT_CONNECTED;
}

HRESULT CBaseOutputPin::DeliverEndFlush()
{
    const ComPtr<IPin> peer = Peer();
    return peer ? peer->EndFlush() : VFW_E_NOT_CONNECTED;
}

HRESULT CBaseOutputPin::DeliverNewSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate)
{
    const ComPtr<IPin> peer = Peer();
    return peer ? peer->NewSegment(start, stop, rate) : VFW_E_NOT_CONNECTED;
}

HRESULT CBaseOutputPin::EndOfStream() noexcept
{
    return E_UNEXPECTED;
}

HRESULT CBaseOutputPin::BeginFlush() noexcept
{
    return E_UNEXPECTED;
}

HRESULT CBaseOutputPin::EndFlush() noexcept
{
    return E_UNEXPECTED;
}
