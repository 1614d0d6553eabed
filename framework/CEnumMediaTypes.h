// The list of the media types that a pin prefers.
#pragma once

#include "framework/CBaseObject.h"

class CBasePin;

// Holds a reference on the pin. When the pin's list changed since the start (its type version did), Next, Skip and
// Clone answer VFW_E_ENUM_OUT_OF_SYNC until Reset. Starts with one reference, the creator's.
class CEnumMediaTypes : public IEnumMediaTypes, public CBaseObject
{
public:
    // A second enumerator stands where `other` does; without one it stands at the first type.
    CEnumMediaTypes(CBasePin* pin, const CEnumMediaTypes* other) noexcept;
    virtual ~CEnumMediaTypes();

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** ppv) noexcept override;
    ULONG STDMETHODCALLTYPE AddRef() noexcept override;
    ULONG STDMETHODCALLTYPE Release() noexcept override;

    // The types are the caller's, to be freed with DeleteMediaType. S_OK when all that were asked for were had, S_FALSE
    // when fewer. E_INVALIDARG when more than one is asked for and their number is not.
    HRESULT STDMETHODCALLTYPE Next(ULONG count, AM_MEDIA_TYPE** types, ULONG* fetched) noexcept override;
    HRESULT STDMETHODCALLTYPE Skip(ULONG count) noexcept override;
    HRESULT STDMETHODCALLTYPE Reset() noexcept override;
    HRESULT STDMETHODCALLTYPE Clone(IEnumMediaTypes** copy) noexcept override;

private:
    bool OutOfSync() const noexcept;

    CBasePin* const m_pPin;
    LONG m_cRef = 1;
    int m_position = 0;
    LONG m_version = 0;
};
