// The pin that takes samples.
#pragma once

#include "framework/CBasePin.h"

// A derived class supplies CheckMediaType and extends Receive. The streaming operations (Receive, EndOfStream) come on
// the upstream filter's thread; BeginFlush and EndFlush may come on another at the same time.
class CBaseInputPin : public CBasePin, public IMemInputPin
{
public:
    DECLARE_IUNKNOWN
    CBaseInputPin(LPCTSTR objectName, CBaseFilter* filter, CCritSec* lock, HRESULT* result, LPCWSTR name) noexcept;
    ~CBaseInputPin() override;

    // IMemInputPin besides those of CBasePin.
    HRESULT STDMETHODCALLTYPE NonDelegatingQueryInterface(REFIID riid, void** ppv) noexcept override;

    HRESULT BreakConnect() override;
    // Ends the run-time error and the flush, and decommits the allocator.
    HRESULT Inactive() override;
    // S_OK when samples may come; S_FALSE while flushing, VFW_E_NOT_CONNECTED, VFW_E_WRONG_STATE when stopped,
    // VFW_E_RUNTIME_ERROR after the stream ended in an error.
    virtual HRESULT CheckStreaming();

    // IMemInputPin.
    // The pin's allocator, made when first asked for. E_OUTOFMEMORY.
    HRESULT STDMETHODCALLTYPE GetAllocator(IMemAllocator** allocator) noexcept override;
    // VFW_E_NOT_STOPPED while samples may come, unless the pin can be reconnected then.
    HRESULT STDMETHODCALLTYPE NotifyAllocator(IMemAllocator* allocator, BOOL readOnly) noexcept override;
    HRESULT STDMETHODCALLTYPE GetAllocatorRequirements(ALLOCATOR_PROPERTIES* properties) noexcept override; // E_NOTIMPL
    // Reads the sample's properties (SampleProps). A type that is attached becomes the connection's when this pin takes
    // it; when it refuses, the stream is ended, the graph gets EC_ERRORABORT, and the answer is VFW_E_INVALIDMEDIATYPE.
    HRESULT STDMETHODCALLTYPE Receive(IMediaSample* sample) noexcept override;
    // Stops at the first sample whose Receive is not S_OK, and answers what that one did.
    HRESULT STDMETHODCALLTYPE ReceiveMultiple(IMediaSample** samples, LONG count, LONG* processed) noexcept override;
    // S_OK when a downstream filter may block (or cannot be asked), S_FALSE when none does.
    HRESULT STDMETHODCALLTYPE ReceiveCanBlock() noexcept override;

    HRESULT STDMETHODCALLTYPE BeginFlush() noexcept override;
    HRESULT STDMETHODCALLTYPE EndFlush() noexcept override;

    bool IsReadOnly() const noexcept { return m_bReadOnly; }
    bool IsFlushing() const noexcept { return m_bFlushing; }
    // The properties of the sample that Receive works on; only for the streaming thread. The pointers in it are the
    // sample's.
    AM_SAMPLE2_PROPERTIES* SampleProps() noexcept { return &m_SampleProps; }
    // Hands a quality message to the sink, else to the upstream pin. VFW_E_NOT_FOUND when nobody takes it.
    HRESULT PassNotify(Quality& quality) noexcept;
    // Without a reference.
    IMemAllocator* PeekAllocator() const noexcept { return m_pAllocator.Get(); }

protected:
    ComPtr<IMemAllocator> m_pAllocator;
    volatile bool m_bReadOnly = false;
    volatile bool m_bFlushing = false;
    AM_SAMPLE2_PROPERTIES m_SampleProps = {};

private:
    void ReadProperties(IMediaSample& sample);
    HRESULT TakeAttachedType();

    UniqueMediaType attachedType; // what m_SampleProps points to when the sample only hands out copies
};
