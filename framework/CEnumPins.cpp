#include "framework/CEnumPins.h"

#include "framework/Answered.h"
#include "framework/CBasePin.h"

#include <algorithm>

CEnumPins::CEnumPins(CBaseFilter* filter, const CEnumPins* other) noexcept : m_pFilter(filter)
{
    m_pFilter->AddRef();
    if (other) {
        m_position = other->m_position;
        m_pinCount = other->m_pinCount;
        m_version = other->m_version;
    } else {
        Reset();
    }
}

CEnumPins::~CEnumPins()
{
    m_pFilter->Release();
}

HRESULT CEnumPins::QueryInterface(REFIID riid, void** ppv) noexcept
{
    if (!ppv)
        return E_POINTER;
    if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IEnumPins))
        return GetInterface(static_cast<IEnumPins*>(this), ppv);
    *ppv = nullptr;
    return E_NOINTERFACE;
}

ULONG CEnumPins::AddRef() noexcept
{
    return static_cast<ULONG>(InterlockedIncrement(&m_cRef));
}

ULONG CEnumPins::Release() noexcept
{
    const LONG left = InterlockedDecrement(&m_cRef);
    if (left == 0)
        delete this;
    return static_cast<ULONG>(left);
}

HRESULT CEnumPins::Next(ULONG count, IPin** pins, ULONG* fetched) noexcept
{
    if (!pins)
        return E_POINTER;
    if (fetched)
        *fetched = 0;
    else if (count > 1)
        return E_INVALIDARG;
    if (OutOfSync())
        return VFW_E_ENUM_OUT_OF_SYNC;

    ULONG had = 0;
    const HRESULT result = vixa::Answered([&] {
        while (had < count && m_position < m_pinCount) {
            CBasePin* const pin = m_pFilter->GetPin(m_position);
            if (!pin)
                return E_OUTOFMEMORY;
            ++m_position;
            pins[had++] = pin;
            pin->AddRef();
        }
        return had == count ? S_OK : S_FALSE;
    });
    if (FAILED(result)) {
        // A caller that is told of a failure does not release pins.
        m_position -= static_cast<int>(had);
        while (had > 0)
            pins[--had]->Release();
        return result;
    }
    if (fetched)
        *fetched = had;
    return result;
}

HRESULT CEnumPins::Skip(ULONG count) noexcept
{
    if (OutOfSync())
        return VFW_E_ENUM_OUT_OF_SYNC;
    const auto left = static_cast<ULONG>(m_pinCount - m_position);
    m_position += static_cast<int>(std::min(count, left));
    return count <= left ? S_OK : S_FALSE;
}

HRESULT CEnumPins::Reset() noexcept
{
    return vixa::Answered([&] {
        m_version = m_pFilter->GetPinVersion();
        m_pinCount = std::max(m_pFilter->GetPinCount(), 0);
        m_position = 0;
        return S_OK;
    });
}

HRESULT CEnumPins::Clone(IEnumPins** copy) noexcept
{
    if (!copy)
        return E_POINTER;
    *copy = nullptr;
    if (OutOfSync())
        return VFW_E_ENUM_OUT_OF_SYNC;
    *copy = new (std::nothrow) CEnumPins(m_pFilter, this);
    return *copy ? S_OK : E_OUTOFMEMORY;
}

bool CEnumPins::OutOfSync() const noexcept
{
    return FAILED(vixa::Answered([&] { return m_pFilter->GetPinVersion() == m_version ? S_OK : E_FAIL; }));
}
