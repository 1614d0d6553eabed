#include "framework/CEnumMediaTypes.h"

#include "framework/Answered.h"
#include "framework/CBasePin.h"

#include <climits>

CEnumMediaTypes::CEnumMediaTypes(CBasePin* pin, const CEnumMediaTypes* other) noexcept : m_pPin(pin)
{
    m_pPin->AddRef();
    if (other) {
        m_position = other->m_position;
        m_version = other->m_version;
    } else {
        Reset();
    }
}

CEnumMediaTypes::~CEnumMediaTypes()
{
    m_pPin->Release();
}

HRESULT CEnumMediaTypes::QueryInterface(REFIID riid, void** ppv) noexcept
{
    if (!ppv)
        return E_POINTER;
    if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IEnumMediaTypes))
        return GetInterface(static_cast<IEnumMediaTypes*>(this), ppv);
    *ppv = nullptr;
    return E_NOINTERFACE;
}

ULONG CEnumMediaTypes::AddRef() noexcept
{
    return static_cast<ULONG>(InterlockedIncrement(&m_cRef));
}

ULONG CEnumMediaTypes::Release() noexcept
{
    const LONG left = InterlockedDecrement(&m_cRef);
    if (left == 0)
        delete this;
    return static_cast<ULONG>(left);
}

HRESULT CEnumMediaTypes::Next(ULONG count, AM_MEDIA_TYPE** types, ULONG* fetched) noexcept
{
    if (!types)
        return E_POINTER;
    if (fetched)
        *fetched = 0;
    else if (count > 1)
        return E_INVALIDARG;
    if (OutOfSync())
        return VFW_E_ENUM_OUT_OF_SYNC;

    ULONG had = 0;
    const HRESULT result = vixa::Answered([&] {
        for (; had < count; ++had, ++m_position) {
            CMediaType type;
            if (m_pPin->GetMediaType(m_position, &type) != S_OK)
                return S_FALSE;
            types[had] = CreateMediaType(&type);
            if (!types[had])
                return E_OUTOFMEMORY;
        }
        return S_OK;
    });
    if (FAILED(result)) {
        m_position -= static_cast<int>(had);
        while (had > 0)
            DeleteMediaType(types[--had]);
        return result;
    }
    if (fetched)
        *fetched = had;
    return result;
}

HRESULT CEnumMediaTypes::Skip(ULONG count) noexcept
{
    if (OutOfSync())
        return VFW_E_ENUM_OUT_OF_SYNC;
    return vixa::Answered([&] {
        for (; count > 0; --count, ++m_position) {
            CMediaType type;
            if (m_position == INT_MAX || m_pPin->GetMediaType(m_position, &type) != S_OK)
                return S_FALSE;
        }
        return S_OK;
    });
}

HRESULT CEnumMediaTypes::Reset() noexcept
{
    return vixa::Answered([&] {
        m_version = m_pPin->GetMediaTypeVersion();
        m_position = 0;
        return S_OK;
    });
}

HRESULT CEnumMediaTypes::Clone(IEnumMediaTypes** copy) noexcept
{
    if (!copy)
        return E_POINTER;
    *copy = nullptr;
    if (OutOfSync())
        return VFW_E_ENUM_OUT_OF_SYNC;
    *copy = new (std::nothrow) CEnumMediaTypes(m_pPin, this);
    return *copy ? S_OK : E_OUTOFMEMORY;
}

bool CEnumMediaTypes::OutOfSync() const noexcept
{
    return FAILED(vixa::Answered([&] { return m_pPin->GetMediaTypeVersion() == m_version ? S_OK : E_FAIL; }));
}
