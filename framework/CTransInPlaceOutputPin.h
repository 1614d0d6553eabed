// The output of an in-place filter: it offers what the upstream pin offers.
#pragma once

#include "framework/Batch.h"
#include "framework/CTransformOutputPin.h"

class CTransInPlaceFilter;

class CTransInPlaceOutputPin : public CTransformOutputPin
{
public:
    CTransInPlaceOutputPin(LPCTSTR objectName, CTransInPlaceFilter* filter, HRESULT* result, LPCWSTR name) noexcept;

    // The types that the upstream pin offers; VFW_E_NOT_CONNECTED while there is none.
    HRESULT STDMETHODCALLTYPE EnumMediaTypes(IEnumMediaTypes** types) noexcept override;
    // The filter and the upstream pin, when connected, must both take the type. While samples are copied and the filter
    // is not stopped only the present type is taken: the input's buffers are sized already.
    HRESULT CheckMediaType(const CMediaType* type) override;
    // The input's allocator is not set up anew, and is refused (VFW_E_NO_ALLOCATOR) where samples must be copied.
    HRESULT DecideBufferSize(IMemAllocator* allocator, ALLOCATOR_PROPERTIES* request) override;
    // As the base, unless the input has led to an allocator already.
    HRESULT DecideAllocator(IMemInputPin* pin, IMemAllocator** allocator) override;
    // Has the graph reconnect the input when it uses another allocator.
    HRESULT CompleteConnect(IPin* receivePin) override;
    HRESULT BreakConnect() override;

    // The input's allocator has changed: it is passed on downstream. Where that cannot be, the output gets another one
    // of the same sizes, as the base decides. Does nothing while unconnected; a failure leaves the present one.
    HRESULT FollowInput();
    // Without references.
    IMemInputPin* ConnectedIMemInputPin() const noexcept { return m_pInputPin.Get(); }
    IMemAllocator* PeekAllocator() const noexcept { return m_pAllocator.Get(); }

    // The peer, when it is of this module and takes work over now; else null. Without a reference.
    vixa::IBatchInput* BatchPeer() const noexcept
    {
        return batchPeer && batchPeer->TakesBatches() ? batchPeer.Get() : nullptr;
    }

private:
    void FindBatchPeer() noexcept;

    CTransInPlaceFilter* const m_pTIPFilter;
    ComPtr<vixa::IBatchInput> batchPeer; // the peer, when it is of this module
};
