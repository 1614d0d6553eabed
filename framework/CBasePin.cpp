#include "framework/CBasePin.h"

#include "framework/Answered.h"

#include <cstring>
#include <cwchar>

HRESULT AMGetWideString(LPCWSTR text, LPWSTR* copy) noexcept
{
    const std::size_t bytes = (std::wcslen(text) + 1) * sizeof(WCHAR);
    *copy = static_cast<LPWSTR>(CoTaskMemAlloc(bytes));
    if (!*copy)
        return E_OUTOFMEMORY;
    std::memcpy(*copy, text, bytes);
    return S_OK;
}

CBasePin::CBasePin(LPCTSTR objectName, CBaseFilter* filter, CCritSec* lock, HRESULT*, LPCWSTR name,
                   PIN_DIRECTION direction) noexcept
    : CUnknown(objectName, nullptr), m_dir(direction), m_pLock(lock), m_pFilter(filter)
{
    lstrcpynW(m_Name, name, MAX_PIN_NAME);
}

CBasePin::~CBasePin() = default;

HRESULT CBasePin::NonDelegatingQueryInterface(REFIID riid, void** ppv) noexcept
{
    if (IsEqualIID(riid, IID_IPin))
        return GetInterface(static_cast<IPin*>(this), ppv);
    if (IsEqualIID(riid, IID_IQualityControl))
        return GetInterface(static_cast<IQualityControl*>(this), ppv);
    return CUnknown::NonDelegatingQueryInterface(riid, ppv);
}

ULONG CBasePin::NonDelegatingAddRef() noexcept
{
    return m_pFilter->AddRef();
}

ULONG CBasePin::NonDelegatingRelease() noexcept
{
    return m_pFilter->Release();
}

HRESULT CBasePin::SetMediaType(const CMediaType* type)
{
    CMediaType copy;
    const HRESULT result = copy.Set(*type);
    if (FAILED(result))
        return result;
    CAutoLock lock(&connectionLock);
    m_mt = std::move(copy);
    return S_OK;
}

HRESULT CBasePin::CheckConnect(IPin* pin)
{
    PIN_DIRECTION direction = m_dir;
    const HRESULT result = pin->QueryDirection(&direction);
    if (FAILED(result))
        return result;
    if (direction == m_dir)
        return VFW_E_INVALID_DIRECTION;
    const bool sends = m_dir == PINDIR_OUTPUT;
    return vixa::WouldCloseARing(sends ? this : pin, sends ? pin : this) ? VFW_E_CIRCULAR_GRAPH : S_OK;
}

HRESULT CBasePin::BreakConnect()
{
    return S_OK;
}

HRESULT CBasePin::CompleteConnect(IPin*)
{
    return S_OK;
}

HRESULT CBasePin::GetMediaType(int index, CMediaType*)
{
    return index < 0 ? E_INVALIDARG : VFW_S_NO_MORE_ITEMS;
}

LONG CBasePin::GetMediaTypeVersion()
{
    return InterlockedCompareExchange(&m_TypeVersion, 0, 0);
}

HRESULT CBasePin::Active()
{
    return S_OK;
}

HRESULT CBasePin::Run(REFERENCE_TIME)
{
    return S_OK;
}

HRESULT CBasePin::Inactive()
{
    m_bRunTimeError = false;
    return S_OK;
}

ComPtr<IPin> CBasePin::Peer() noexcept
{
    CAutoLock lock(&connectionLock);
    return m_Connected;
}

void CBasePin::SetConnected(IPin* pin) noexcept
{
    // The old peer goes outside the lock: that may be its last reference.
    ComPtr<IPin> peer(pin);
    CAutoLock lock(&connectionLock);
    m_Connected.Swap(peer);
}

void CBasePin::Abandon() noexcept
{
    vixa::Answered([&] { return BreakConnect(); });
    SetConnected(nullptr);
}

HRESULT CBasePin::Connect(IPin* receivePin, const AM_MEDIA_TYPE* type) noexcept
{
    if (!receivePin)
        return E_POINTER;
    CAutoLock lock(m_pLock);
    if (IsConnected())
        return VFW_E_ALREADY_CONNECTED;
    if (!IsStopped() && !m_bCanReconnectWhenActive)
        return VFW_E_NOT_STOPPED;
    const HRESULT result = vixa::Answered([&] {
        if (!type)
            return AgreeMediaType(receivePin, nullptr);
        const CMediaType wanted(*type);
        return AgreeMediaType(receivePin, &wanted);
    });
    if (FAILED(result))
        Abandon();
    return result;
}

HRESULT CBasePin::AgreeMediaType(IPin* receivePin, const CMediaType* type)
{
    if (type && !type->IsPartiallySpecified())
        return AttemptConnection(receivePin, type);

    HRESULT failure = VFW_E_NO_ACCEPTABLE_TYPES;
    for (const bool own : {m_bTryMyTypesFirst, !m_bTryMyTypesFirst}) {
        ComPtr<IEnumMediaTypes> types;
        if (FAILED(own ? EnumMediaTypes(&types) : receivePin->EnumMediaTypes(&types)) || !types)
            continue;
        const HRESULT result = TryMediaTypes(receivePin, type, types.Get());
        if (SUCCEEDED(result))
            return result;
        if (result != VFW_E_NO_ACCEPTABLE_TYPES && failure == VFW_E_NO_ACCEPTABLE_TYPES)
            failure = result;
    }
    return failure;
}

HRESULT CBasePin::TryMediaTypes(IPin* receivePin, const CMediaType* partial, IEnumMediaTypes* types)
{
    types->Reset();
    HRESULT failure = VFW_E_NO_ACCEPTABLE_TYPES;
    for (;;) {
        AM_MEDIA_TYPE* next = nullptr;
        ULONG fetched = 0;
        if (types->Next(1, &next, &fetched) != S_OK || !next)
            return failure;
        const UniqueMediaType owner(next);
        const CMediaType candidate(*next);
        if (partial && !candidate.MatchesPartial(partial))
            continue;
        const HRESULT result = AttemptConnection(receivePin, &candidate);
        if (SUCCEEDED(result))
            return result;
        // A refused type says nothing new; the first other reason is what the caller wants to hear.
        if (failure == VFW_E_NO_ACCEPTABLE_TYPES && result != E_FAIL && result != E_INVALIDARG &&
            result != VFW_E_TYPE_NOT_ACCEPTED)
            failure = result;
    }
}

namespace {

// What a check of a type that did not say S_OK means to the other side.
HRESULT Refusal(HRESULT checked) noexcept
{
    return SUCCEEDED(checked) || checked == E_FAIL || checked == E_INVALIDARG ? VFW_E_TYPE_NOT_ACCEPTED : checked;
}

} // namespace

HRESULT CBasePin::AttemptConnection(IPin* receivePin, const CMediaType* type)
{
    HRESULT result = CheckConnect(receivePin);
    if (SUCCEEDED(result)) {
        result = CheckMediaType(type);
        result = result == S_OK ? S_OK : Refusal(result);
    }
    if (SUCCEEDED(result)) {
        SetConnected(receivePin);
        result = SetMediaType(type);
        if (SUCCEEDED(result))
            result = receivePin->ReceiveConnection(this, type);
        if (SUCCEEDED(result)) {
            result = vixa::Answered([&] { return CompleteConnect(receivePin); });
            if (SUCCEEDED(result))
                return result;
            receivePin->Disconnect();
        }
    }
    Abandon();
    return result;
}

HRESULT CBasePin::ReceiveConnection(IPin* connector, const AM_MEDIA_TYPE* type) noexcept
{
    if (!connector || !type)
        return E_POINTER;
    CAutoLock lock(m_pLock);
    if (IsConnected())
        return VFW_E_ALREADY_CONNECTED;
    if (!IsStopped() && !m_bCanReconnectWhenActive)
        return VFW_E_NOT_STOPPED;
    const HRESULT result = vixa::Answered([&] {
        const CMediaType offered(*type);
        HRESULT step = CheckConnect(connector);
        if (FAILED(step))
            return step;
        step = CheckMediaType(&offered);
        if (step != S_OK)
            return Refusal(step);
        SetConnected(connector);
        step = SetMediaType(&offered);
        return FAILED(step) ? step : CompleteConnect(connector);
    });
    if (FAILED(result))
        Abandon();
    return result;
}

HRESULT CBasePin::Disconnect() noexcept
{
    CAutoLock lock(m_pLock);
    if (!IsStopped())
        return VFW_E_NOT_STOPPED;
    return DisconnectInternal();
}

HRESULT CBasePin::DisconnectInternal()
{
    if (!IsConnected())
        return S_FALSE;
    const HRESULT result = vixa::Answered([&] { return BreakConnect(); });
    if (FAILED(result))
        return result;
    SetConnected(nullptr);
    return S_OK;
}

HRESULT CBasePin::ConnectedTo(IPin** pin) noexcept
{
    if (!pin)
        return E_POINTER;
    *pin = Peer().Detach();
    return *pin ? S_OK : VFW_E_NOT_CONNECTED;
}

HRESULT CBasePin::ConnectionMediaType(AM_MEDIA_TYPE* type) noexcept
{
    if (!type)
        return E_POINTER;
    CAutoLock lock(&connectionLock);
    if (m_Connected)
        return CopyMediaType(type, &m_mt);
    *type = AM_MEDIA_TYPE{};
    return VFW_E_NOT_CONNECTED;
}

HRESULT CBasePin::QueryPinInfo(PIN_INFO* info) noexcept
{
    if (!info)
        return E_POINTER;
    info->pFilter = m_pFilter;
    m_pFilter->AddRef();
    lstrcpynW(info->achName, m_Name, MAX_PIN_NAME);
    info->dir = m_dir;
    return S_OK;
}

HRESULT CBasePin::QueryDirection(PIN_DIRECTION* direction) noexcept
{
    if (!direction)
        return E_POINTER;
    *direction = m_dir;
    return S_OK;
}

HRESULT CBasePin::QueryId(LPWSTR* id) noexcept
{
    return id ? AMGetWideString(m_Name, id) : E_POINTER;
}

HRESULT CBasePin::QueryAccept(const AM_MEDIA_TYPE* type) noexcept
{
    if (!type)
        return E_POINTER;
    const HRESULT result = vixa::Answered([&] {
        const CMediaType asked(*type);
        return CheckMediaType(&asked);
    });
    // A pin is asked for yes or no here; why not is for a connection to tell.
    return result == S_OK ? S_OK : S_FALSE;
}

HRESULT CBasePin::EnumMediaTypes(IEnumMediaTypes** types) noexcept
{
    if (!types)
        return E_POINTER;
    *types = new (std::nothrow) CEnumMediaTypes(this);
    return *types ? S_OK : E_OUTOFMEMORY;
}

HRESULT CBasePin::QueryInternalConnections(IPin**, ULONG* count) noexcept
{
    return count ? E_NOTIMPL : E_POINTER;
}

HRESULT CBasePin::EndOfStream() noexcept
{
    return S_OK;
}

HRESULT CBasePin::NewSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate) noexcept
{
    m_tStart = start;
    m_tStop = stop;
    m_dRate = rate;
    return S_OK;
}

HRESULT CBasePin::Notify(IBaseFilter*, Quality) noexcept
{
    return E_NOTIMPL;
}

HRESULT CBasePin::SetSink(IQualityControl* sink) noexcept
{
    CAutoLock lock(m_pLock);
    m_pQSink = sink;
    return S_OK;
}
