// The output of an in-place filter: it offers what the upstream pin offers.
#pragma once

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
    // The input's allocator when it may be written to and the downstream pin takes it; else as the base.
    HRESULT DecideAllocator(IMemInputPin* pin, IMemAllocator** allocator) override;
    // Has the graph reconnect the input when the downstream pin's allocator should be used there too.
    HRESULT CompleteConnect(IPin* receivePin) override;

    void SetAllocator(IMemAllocator* allocator) noexcept { m_pAllocator = allocator; }
    // Without references.
    IMemInputPin* ConnectedIMemInputPin() const noexcept { return m_pInputPin.Get(); }
    IMemAllocator* PeekAllocator() const noexcept { return m_pAllocator.Get(); }

private:
    CTransInPlaceFilter* const m_pTIPFilter;
};
