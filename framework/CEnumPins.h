// The list of a filter's pins, as a graph reads it.
#pragma once

#include "framework/CBaseObject.h"

class CBaseFilter;

// Holds a reference on the filter. When the filter's pins changed since the start (its pin version did), Next, Skip and
// Clone answer VFW_E_ENUM_OUT_OF_SYNC until Reset. Starts with one reference, the creator's.
class CEnumPins : public IEnumPins, public CBaseObject
{
public:
    // A second enumerator stands where `other` does; without one it stands at the first pin.
    CEnumPins(CBaseFilter* filter, const CEnumPins* other) noexcept;
    virtual ~CEnumPins();

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** ppv) noexcept override;
    ULONG STDMETHODCALLTYPE AddRef() noexcept override;
    ULONG STDMETHODCALLTYPE Release() noexcept override;

    // S_OK when all that were asked for were had, S_FALSE when fewer. E_INVALIDARG when more than one is asked for and
    // their number is not.
    HRESULT STDMETHODCALLTYPE Next(ULONG count, IPin** pins, ULONG* fetched) noexcept override;
    HRESULT STDMETHODCALLTYPE Skip(ULONG count) noexcept override;
    HRESULT STDMETHODCALLTYPE Reset() noexcept override;
    HRESULT STDMETHODCALLTYPE Clone(IEnumPins** copy) noexcept override;

private:
    bool OutOfSync() const noexcept;

    CBaseFilter* const m_pFilter;
    LONG m_cRef = 1;
    int m_position = 0;
    int m_pinCount = 0;
    LONG m_version = 0;
};
