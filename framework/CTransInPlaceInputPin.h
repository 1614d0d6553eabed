// The input of an in-place filter: it speaks for the downstream pin as far as it can.
#pragma once

#include "framework/Batch.h"
#include "framework/CTransformInputPin.h"

class CTransInPlaceFilter;

class CTransInPlaceInputPin : public CTransformInputPin, public vixa::IBatchInput
{
public:
    DECLARE_IUNKNOWN

    CTransInPlaceInputPin(LPCTSTR objectName, CTransInPlaceFilter* filter, HRESULT* result, LPCWSTR name) noexcept;

    // IBatchInput besides those of the base.
    HRESULT STDMETHODCALLTYPE NonDelegatingQueryInterface(REFIID riid, void** ppv) noexcept override;

    // The types that the downstream pin prefers; VFW_E_NOT_CONNECTED while there is none.
    HRESULT STDMETHODCALLTYPE EnumMediaTypes(IEnumMediaTypes** types) noexcept override;
    // The filter and the downstream pin, when connected, must both take the type.
    HRESULT CheckMediaType(const CMediaType* type) override;

    // The downstream pin's allocator, when it is connected and has one; else this pin's own.
    HRESULT STDMETHODCALLTYPE GetAllocator(IMemAllocator** allocator) noexcept override;
    // As the base, and lets the output follow. A failure, when the output can agree on nothing, leaves what was.
    HRESULT STDMETHODCALLTYPE NotifyAllocator(IMemAllocator* allocator, BOOL readOnly) noexcept override;
    // The downstream pin's; E_NOTIMPL while there is none.
    HRESULT STDMETHODCALLTYPE GetAllocatorRequirements(ALLOCATOR_PROPERTIES* properties) noexcept override;

    const void* STDMETHODCALLTYPE Module() noexcept override { return ThisModule(); }
    bool STDMETHODCALLTYPE IsFace(const IMemInputPin* face) noexcept override { return face == this; }
    bool STDMETHODCALLTYPE TakesBatches() noexcept override;
    HRESULT STDMETHODCALLTYPE ReceiveBatch(IMediaSample* sample, vixa::Batch& batch) noexcept override;

    static const void* ThisModule() noexcept;

private:
    CTransInPlaceFilter* const m_pTIPFilter;
};
