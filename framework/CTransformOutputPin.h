// The output of a transform filter.
#pragma once

#include "framework/CBaseOutputPin.h"

class CTransformFilter;

class CTransformOutputPin : public CBaseOutputPin
{
public:
    CTransformOutputPin(LPCTSTR objectName, CTransformFilter* filter, HRESULT* result, LPCWSTR name) noexcept;

    // IMediaPosition and IMediaSeeking besides those of CBasePin: they pass the calls to the filter upstream.
    HRESULT STDMETHODCALLTYPE NonDelegatingQueryInterface(REFIID riid, void** ppv) noexcept override;

    HRESULT STDMETHODCALLTYPE QueryId(LPWSTR* id) noexcept override; // "Out"

    // E_UNEXPECTED as long as the input is not connected: its type decides the output's.
    HRESULT CheckConnect(IPin* pin) override;
    HRESULT BreakConnect() override;
    HRESULT CompleteConnect(IPin* receivePin) override;
    HRESULT CheckMediaType(const CMediaType* type) override;
    HRESULT SetMediaType(const CMediaType* type) override;
    HRESULT GetMediaType(int index, CMediaType* type) override;
    HRESULT DecideBufferSize(IMemAllocator* allocator, ALLOCATOR_PROPERTIES* request) override;

    // AlterQuality first; a message that it passes on goes to the input's PassNotify.
    HRESULT STDMETHODCALLTYPE Notify(IBaseFilter* sender, Quality quality) noexcept override;

protected:
    CTransformFilter* const m_pTransformFilter;

private:
    HRESULT MakePosition() noexcept;

    CCritSec positionLock;
    ComPtr<IUnknown> m_pPosition; // made when first asked for
};
