// The pin that sends samples: it decides the allocator and delivers.
#pragma once

#include "framework/CBasePin.h"

// A derived class supplies CheckMediaType, GetMediaType and DecideBufferSize. The delivering operations are for the
// streaming thread and take no lock.
class CBaseOutputPin : public CBasePin
{
public:
    CBaseOutputPin(LPCTSTR objectName, CBaseFilter* filter, CCritSec* lock, HRESULT* result, LPCWSTR name) noexcept;

    // VFW_E_NO_TRANSPORT when the peer takes no samples.
    HRESULT CheckConnect(IPin* pin) override;
    HRESULT BreakConnect() override;
    HRESULT CompleteConnect(IPin* receivePin) override;
    // Commits and decommits the allocator. VFW_E_NO_ALLOCATOR without one.
    HRESULT Active() override;
    HRESULT Inactive() override;

    // Agrees with the peer on an allocator: the peer's own, else one of this pin's. `*allocator` is null on failure.
    virtual HRESULT DecideAllocator(IMemInputPin* pin, IMemAllocator** allocator);
    // Sets the allocator up; `request` holds what the peer needs.
    virtual HRESULT DecideBufferSize(IMemAllocator* allocator, ALLOCATOR_PROPERTIES* request) = 0;
    // Makes the pin's own allocator.
    virtual HRESULT InitAllocator(IMemAllocator** allocator);
    // A buffer with a reference; E_NOINTERFACE without an allocator, else as IMemAllocator::GetBuffer.
    virtual HRESULT GetDeliveryBuffer(IMediaSample** sample, REFERENCE_TIME* start, REFERENCE_TIME* end, DWORD flags);

    // VFW_E_NOT_CONNECTED without a peer, else the peer's answer.
    virtual HRESULT Deliver(IMediaSample* sample);
    virtual HRESULT DeliverEndOfStream();
    virtual HRESULT DeliverBeginFlush();
    virtual HRESULT DeliverEndFlush();
    virtual HRESULT DeliverNewSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate);

    // Only an input pin is told of these: E_UNEXPECTED.
    HRESULT STDMETHODCALLTYPE EndOfStream() noexcept override;
    HRESULT STDMETHODCALLTYPE BeginFlush() noexcept override;
    HRESULT STDMETHODCALLTYPE EndFlush() noexcept override;

protected:
    ComPtr<IMemAllocator> m_pAllocator;
    ComPtr<IMemInputPin> m_pInputPin;
};
