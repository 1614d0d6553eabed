// The input of a transform filter: everything it is told goes to the filter.
#pragma once

#include "framework/CBaseInputPin.h"

class CTransformFilter;

class CTransformInputPin : public CBaseInputPin
{
public:
    CTransformInputPin(LPCTSTR objectName, CTransformFilter* filter, HRESULT* result, LPCWSTR name) noexcept;

    HRESULT STDMETHODCALLTYPE QueryId(LPWSTR* id) noexcept override; // "In"

    HRESULT CheckConnect(IPin* pin) override;
    HRESULT BreakConnect() override;
    HRESULT CompleteConnect(IPin* receivePin) override;
    // CheckInputType, then CheckTransform when the output is connected.
    HRESULT CheckMediaType(const CMediaType* type) override;
    HRESULT SetMediaType(const CMediaType* type) override;
    // VFW_E_NOT_CONNECTED also when the output is not connected.
    HRESULT CheckStreaming() override;

    HRESULT STDMETHODCALLTYPE EndOfStream() noexcept override;
    HRESULT STDMETHODCALLTYPE BeginFlush() noexcept override;
    HRESULT STDMETHODCALLTYPE EndFlush() noexcept override;
    HRESULT STDMETHODCALLTYPE NewSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate) noexcept override;
    HRESULT STDMETHODCALLTYPE Receive(IMediaSample* sample) noexcept override;

protected:
    CTransformFilter* const m_pTransformFilter;
};
