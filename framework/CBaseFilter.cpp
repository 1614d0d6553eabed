#include "framework/CBaseFilter.h"

#include "framework/Answered.h"
#include "framework/CBasePin.h"
#include "framework/FilterMapper.h"

CBaseFilter::CBaseFilter(LPCTSTR name, IUnknown* outer, CCritSec* lock, REFCLSID classId) noexcept
    : CUnknown(name, outer), m_clsid(classId), m_pLock(lock)
{
}

CBaseFilter::~CBaseFilter() = default;

HRESULT CBaseFilter::NonDelegatingQueryInterface(REFIID riid, void** ppv) noexcept
{
    if (IsEqualIID(riid, IID_IBaseFilter) || IsEqualIID(riid, IID_IMediaFilter) || IsEqualIID(riid, IID_IPersist))
        return GetInterface(static_cast<IBaseFilter*>(this), ppv);
    if (IsEqualIID(riid, IID_IAMovieSetup))
        return GetInterface(static_cast<IAMovieSetup*>(this), ppv);
    return CUnknown::NonDelegatingQueryInterface(riid, ppv);
}

HRESULT CBaseFilter::StreamTime(CRefTime& streamTime)
{
    ComPtr<IReferenceClock> clock;
    GetSyncSource(&clock);
    if (!clock)
        return VFW_E_NO_CLOCK;
    REFERENCE_TIME now = 0;
    const HRESULT result = clock->GetTime(&now);
    if (FAILED(result))
        return result;
    CAutoLock lock(&clockLock);
    streamTime = now - m_tStart;
    return S_OK;
}

LONG CBaseFilter::GetPinVersion()
{
    return InterlockedCompareExchange(&m_PinVersion, 0, 0);
}

AMOVIESETUP_FILTER* CBaseFilter::GetSetupData()
{
    return nullptr;
}

HRESULT CBaseFilter::GetClassID(CLSID* classId) noexcept
{
    if (!classId)
        return E_POINTER;
    *classId = m_clsid;
    return S_OK;
}

// Pins may be added while the filter is alive, so their number is asked for anew each time.
template <typename Call>
HRESULT CBaseFilter::ForConnectedPins(Call call)
{
    for (int index = 0; index < GetPinCount(); ++index) {
        CBasePin* const pin = GetPin(index);
        if (!pin || !pin->IsConnected())
            continue;
        const HRESULT result = call(*pin);
        if (FAILED(result))
            return result;
    }
    return S_OK;
}

HRESULT CBaseFilter::Stop() noexcept
{
    CAutoLock lock(m_pLock);
    if (m_State == State_Stopped)
        return S_OK;
    // A pin that complains does not keep the others, or the filter, from stopping.
    HRESULT first = S_OK;
    const HRESULT result = vixa::Answered([&] {
        return ForConnectedPins([&](CBasePin& pin) {
            const HRESULT stopped = vixa::Answered([&] { return pin.Inactive(); });
            if (FAILED(stopped) && SUCCEEDED(first))
                first = stopped;
            return S_OK;
        });
    });
    m_State = State_Stopped;
    return FAILED(first) ? first : result;
}

HRESULT CBaseFilter::Pause() noexcept
{
    CAutoLock lock(m_pLock);
    if (m_State == State_Stopped) {
        CBasePin* refusing = nullptr;
        const HRESULT result = vixa::Answered([&] {
            return ForConnectedPins([&](CBasePin& pin) {
                refusing = &pin;
                return pin.Active();
            });
        });
        if (FAILED(result)) {
            // Those before it are active already.
            vixa::Answered([&] {
                return ForConnectedPins([&](CBasePin& pin) {
                    if (&pin == refusing)
                        return E_ABORT;
                    pin.Inactive();
                    return S_OK;
                });
            });
            return result;
        }
    }
    m_State = State_Paused;
    return S_OK;
}

HRESULT CBaseFilter::Run(REFERENCE_TIME start) noexcept
{
    CAutoLock lock(m_pLock);
    {
        CAutoLock guard(&clockLock);
        m_tStart = start;
    }
    if (m_State == State_Stopped) {
        const HRESULT result = Pause();
        if (FAILED(result))
            return result;
    }
    if (m_State != State_Running) {
        const HRESULT result =
            vixa::Answered([&] { return ForConnectedPins([&](CBasePin& pin) { return pin.Run(start); }); });
        if (FAILED(result))
            return result;
    }
    m_State = State_Running;
    return S_OK;
}

HRESULT CBaseFilter::GetState(DWORD, FILTER_STATE* state) noexcept
{
    if (!state)
        return E_POINTER;
    *state = m_State;
    return S_OK;
}

HRESULT CBaseFilter::SetSyncSource(IReferenceClock* clock) noexcept
{
    ComPtr<IReferenceClock> given(clock);
    CAutoLock lock(m_pLock);
    CAutoLock guard(&clockLock);
    m_pClock.Swap(given);
    return S_OK;
}

HRESULT CBaseFilter::GetSyncSource(IReferenceClock** clock) noexcept
{
    if (!clock)
        return E_POINTER;
    CAutoLock lock(&clockLock);
    return m_pClock.CopyTo(clock);
}

HRESULT CBaseFilter::EnumPins(IEnumPins** pins) noexcept
{
    if (!pins)
        return E_POINTER;
    *pins = new (std::nothrow) CEnumPins(this);
    return *pins ? S_OK : E_OUTOFMEMORY;
}

HRESULT CBaseFilter::FindPin(LPCWSTR id, IPin** pin) noexcept
{
    if (!id || !pin)
        return E_POINTER;
    *pin = nullptr;
    return vixa::Answered([&]() -> HRESULT {
        for (int index = 0; index < GetPinCount(); ++index) {
            CBasePin* const candidate = GetPin(index);
            if (candidate && lstrcmpW(candidate->Name(), id) == 0) {
                candidate->AddRef();
                *pin = candidate;
                return S_OK;
            }
        }
        return VFW_E_NOT_FOUND;
    });
}

HRESULT CBaseFilter::QueryFilterInfo(FILTER_INFO* info) noexcept
{
    if (!info)
        return E_POINTER;
    CAutoLock lock(m_pLock);
    lstrcpynW(info->achName, m_Name, MAX_FILTER_NAME);
    info->pGraph = m_pGraph;
    if (m_pGraph)
        m_pGraph->AddRef();
    return S_OK;
}

HRESULT CBaseFilter::JoinFilterGraph(IFilterGraph* graph, LPCWSTR name) noexcept
{
    CAutoLock lock(m_pLock);
    m_pGraph = graph;
    m_pSink = nullptr;
    if (graph) {
        ComPtr<IMediaEventSink> sink;
        if (SUCCEEDED(graph->QueryInterface(IID_IMediaEventSink, reinterpret_cast<void**>(sink.GetAddressOf()))))
            m_pSink = sink.Get();
    }
    lstrcpynW(m_Name, name ? name : L"", MAX_FILTER_NAME);
    return S_OK;
}

HRESULT CBaseFilter::QueryVendorInfo(LPWSTR* vendorInfo) noexcept
{
    return vendorInfo ? E_NOTIMPL : E_POINTER;
}

HRESULT CBaseFilter::Register() noexcept
{
    return vixa::Answered([&] {
        const AMOVIESETUP_FILTER* const setup = GetSetupData();
        return setup ? vixa::FilterMapper::EnterOne(*setup, true) : S_FALSE;
    });
}

HRESULT CBaseFilter::Unregister() noexcept
{
    return vixa::Answered([&] {
        const AMOVIESETUP_FILTER* const setup = GetSetupData();
        return setup ? vixa::FilterMapper::EnterOne(*setup, false) : S_FALSE;
    });
}

bool CBaseFilter::IsActive() const noexcept
{
    const FILTER_STATE state = m_State;
    return state == State_Paused || state == State_Running;
}

HRESULT CBaseFilter::NotifyEvent(long code, LONG_PTR parameter1, LONG_PTR parameter2) noexcept
{
    IMediaEventSink* const sink = m_pSink;
    if (!sink)
        return E_NOTIMPL;
    if (code == EC_COMPLETE)
        parameter2 = reinterpret_cast<LONG_PTR>(static_cast<IBaseFilter*>(this));
    return vixa::Answered([&] { return sink->Notify(code, parameter1, parameter2); });
}

HRESULT CBaseFilter::ReconnectPin(IPin* pin, const AM_MEDIA_TYPE* type) noexcept
{
    if (!m_pGraph)
        return VFW_E_NOT_IN_GRAPH;
    return vixa::Answered([&] {
        ComPtr<IFilterGraph2> graph;
        if (SUCCEEDED(m_pGraph->QueryInterface(IID_IFilterGraph2, reinterpret_cast<void**>(graph.GetAddressOf()))))
            return graph->ReconnectEx(pin, type);
        return m_pGraph->Reconnect(pin);
    });
}
