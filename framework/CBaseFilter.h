// The filter that knows its graph, its clock, its state and its pins.
#pragma once

#include "framework/CCritSec.h"
#include "framework/CEnumPins.h"
#include "framework/CFactoryTemplate.h"
#include "framework/CMediaType.h"
#include "framework/CRefTime.h"
#include "framework/CUnknown.h"

class CBasePin;

// A derived class supplies the pins (GetPinCount, GetPin). The lock that it hands in is the filter lock: it guards the
// state and the connections and outlives the filter's pins. Who takes it together with a streaming lock takes it first.
class CBaseFilter : public CUnknown, public IBaseFilter, public IAMovieSetup
{
    friend class CBasePin;

public:
    CBaseFilter(LPCTSTR name, IUnknown* outer, CCritSec* lock, REFCLSID classId) noexcept;
    ~CBaseFilter() override;

    // IBaseFilter, IMediaFilter, IPersist, IAMovieSetup besides IUnknown.
    HRESULT STDMETHODCALLTYPE NonDelegatingQueryInterface(REFIID riid, void** ppv) noexcept override;

    // The time since the graph's start, in units of 100 ns. VFW_E_NO_CLOCK without a clock.
    virtual HRESULT StreamTime(CRefTime& streamTime);
    // Changes whenever pins come or go; enumerators compare it.
    virtual LONG GetPinVersion();
    virtual int GetPinCount() = 0;
    // The pin, without a reference; null when there is none of that index. Also null when there is no memory.
    virtual CBasePin* GetPin(int index) = 0;
    // What Register and Unregister enter; null for a filter that does not register itself.
    virtual AMOVIESETUP_FILTER* GetSetupData();

    DECLARE_IUNKNOWN

    // IPersist. Null out pointers get E_POINTER here and in everything below.
    HRESULT STDMETHODCALLTYPE GetClassID(CLSID* classId) noexcept override;

    // IMediaFilter. Each connected pin is told: Active and Run in the order of the pins, Inactive on Stop. A pin that
    // refuses Active or Run keeps the filter in its old state, and its code is the answer.
    HRESULT STDMETHODCALLTYPE Stop() noexcept override;
    HRESULT STDMETHODCALLTYPE Pause() noexcept override;
    HRESULT STDMETHODCALLTYPE Run(REFERENCE_TIME start) noexcept override;
    HRESULT STDMETHODCALLTYPE GetState(DWORD timeout, FILTER_STATE* state) noexcept override;
    HRESULT STDMETHODCALLTYPE SetSyncSource(IReferenceClock* clock) noexcept override;
    HRESULT STDMETHODCALLTYPE GetSyncSource(IReferenceClock** clock) noexcept override;

    // IBaseFilter.
    HRESULT STDMETHODCALLTYPE EnumPins(IEnumPins** pins) noexcept override;
    // VFW_E_NOT_FOUND when no pin has that name.
    HRESULT STDMETHODCALLTYPE FindPin(LPCWSTR id, IPin** pin) noexcept override;
    // The graph in the structure carries a reference, which is the caller's.
    HRESULT STDMETHODCALLTYPE QueryFilterInfo(FILTER_INFO* info) noexcept override;
    HRESULT STDMETHODCALLTYPE JoinFilterGraph(IFilterGraph* graph, LPCWSTR name) noexcept override;
    HRESULT STDMETHODCALLTYPE QueryVendorInfo(LPWSTR* vendorInfo) noexcept override; // E_NOTIMPL

    // IAMovieSetup: S_FALSE without setup data.
    HRESULT STDMETHODCALLTYPE Register() noexcept override;
    HRESULT STDMETHODCALLTYPE Unregister() noexcept override;

    bool IsActive() const noexcept;
    bool IsStopped() const noexcept { return m_State == State_Stopped; }
    FILTER_STATE State() const noexcept { return m_State; }

    // Sends the graph an event. EC_COMPLETE gets this filter in its second parameter. E_NOTIMPL outside a graph or when
    // the graph takes no events.
    HRESULT NotifyEvent(long code, LONG_PTR parameter1, LONG_PTR parameter2) noexcept;
    // Without a reference; null outside a graph.
    IFilterGraph* GetFilterGraph() const noexcept { return m_pGraph; }
    // Asks the graph to connect a pin again with the same peer, with that type (null: any).
    // VFW_E_NOT_IN_GRAPH outside a graph.
    HRESULT ReconnectPin(IPin* pin, const AM_MEDIA_TYPE* type) noexcept;
    void IncrementPinVersion() noexcept { InterlockedIncrement(&m_PinVersion); }
    CCritSec* FilterLock() const noexcept { return m_pLock; }

protected:
    // Tells every connected pin; stops at the first that refuses.
    template <typename Call>
    HRESULT ForConnectedPins(Call call);

    volatile FILTER_STATE m_State = State_Stopped;
    ComPtr<IReferenceClock> m_pClock;
    CRefTime m_tStart; // the clock's time when the graph started
    const CLSID m_clsid;
    CCritSec* const m_pLock;
    WCHAR m_Name[MAX_FILTER_NAME] = {};
    // Not counted: the graph owns the filter, and leaves it through JoinFilterGraph(null) before it dies.
    IFilterGraph* m_pGraph = nullptr;
    IMediaEventSink* m_pSink = nullptr;
    LONG m_PinVersion = 1;

private:
    // Taken last, for the clock and the start only: a streaming thread asks for the time and may not wait for the
    // filter lock.
    CCritSec clockLock;
};
