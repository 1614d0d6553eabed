// The pin: how a connection is made, kept and broken, in both directions.
#pragma once

#include "framework/CBaseFilter.h"
#include "framework/CEnumMediaTypes.h"
#include "framework/Rings.h"

// A copy of a text in task memory, which is the caller's. E_OUTOFMEMORY.
HRESULT AMGetWideString(LPCWSTR text, LPWSTR* copy) noexcept;

// A pin lives as long as its filter: its references are the filter's. A derived class supplies CheckMediaType, usually
// GetMediaType, and the streaming operations of its direction. The filter lock guards everything but streaming.
class CBasePin : public CUnknown, public IPin, public IQualityControl
{
public:
    DECLARE_IUNKNOWN
    // The name is cut to 127 characters.
    CBasePin(LPCTSTR objectName, CBaseFilter* filter, CCritSec* lock, HRESULT* result, LPCWSTR name,
             PIN_DIRECTION direction) noexcept;
    ~CBasePin() override;

    // IPin and IQualityControl besides IUnknown.
    HRESULT STDMETHODCALLTYPE NonDelegatingQueryInterface(REFIID riid, void** ppv) noexcept override;
    ULONG STDMETHODCALLTYPE NonDelegatingAddRef() noexcept override;
    ULONG STDMETHODCALLTYPE NonDelegatingRelease() noexcept override;

    // S_OK for a type that the pin takes; anything else refuses it.
    virtual HRESULT CheckMediaType(const CMediaType* type) = 0;
    // Takes the connection's type over; E_OUTOFMEMORY.
    virtual HRESULT SetMediaType(const CMediaType* type);
    // Whether that pin may be a peer at all: VFW_E_INVALID_DIRECTION, VFW_E_CIRCULAR_GRAPH when samples could come
    // back.
    virtual HRESULT CheckConnect(IPin* pin);
    // Undoes CheckConnect and CompleteConnect; also called after an attempt that failed.
    virtual HRESULT BreakConnect();
    // Called when both sides have agreed on the type; a failure takes the connection back.
    virtual HRESULT CompleteConnect(IPin* receivePin);
    // The preferred types, by index. VFW_S_NO_MORE_ITEMS beyond the last, E_INVALIDARG for a negative index.
    virtual HRESULT GetMediaType(int index, CMediaType* type);
    // Changes whenever the list of preferred types does.
    virtual LONG GetMediaTypeVersion();
    // The filter leaves the stopped state; starts running; comes back to it.
    virtual HRESULT Active();
    virtual HRESULT Run(REFERENCE_TIME start);
    virtual HRESULT Inactive();

    // IPin. Null pointers get E_POINTER.
    HRESULT STDMETHODCALLTYPE Connect(IPin* receivePin, const AM_MEDIA_TYPE* type) noexcept override;
    HRESULT STDMETHODCALLTYPE ReceiveConnection(IPin* connector, const AM_MEDIA_TYPE* type) noexcept override;
    HRESULT STDMETHODCALLTYPE Disconnect() noexcept override;
    HRESULT STDMETHODCALLTYPE ConnectedTo(IPin** pin) noexcept override;
    HRESULT STDMETHODCALLTYPE ConnectionMediaType(AM_MEDIA_TYPE* type) noexcept override;
    HRESULT STDMETHODCALLTYPE QueryPinInfo(PIN_INFO* info) noexcept override;
    HRESULT STDMETHODCALLTYPE QueryDirection(PIN_DIRECTION* direction) noexcept override;
    HRESULT STDMETHODCALLTYPE QueryId(LPWSTR* id) noexcept override;
    // S_OK or S_FALSE.
    HRESULT STDMETHODCALLTYPE QueryAccept(const AM_MEDIA_TYPE* type) noexcept override;
    HRESULT STDMETHODCALLTYPE EnumMediaTypes(IEnumMediaTypes** types) noexcept override;
    // E_NOTIMPL: every input pin feeds every output pin.
    HRESULT STDMETHODCALLTYPE QueryInternalConnections(IPin** pins, ULONG* count) noexcept override;
    HRESULT STDMETHODCALLTYPE EndOfStream() noexcept override;
    HRESULT STDMETHODCALLTYPE NewSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate) noexcept override;

    // IQualityControl.
    HRESULT STDMETHODCALLTYPE Notify(IBaseFilter* sender, Quality quality) noexcept override; // E_NOTIMPL
    HRESULT STDMETHODCALLTYPE SetSink(IQualityControl* sink) noexcept override;

    bool IsConnected() const noexcept { return m_Connected != nullptr; }
    // The peer, without a reference; null when unconnected.
    IPin* GetConnected() const noexcept { return m_Connected.Get(); }
    // The peer with a reference; for threads that hold no lock against a disconnection.
    ComPtr<IPin> Peer() noexcept;
    bool IsStopped() const noexcept { return m_pFilter->IsStopped(); }
    LPCWSTR Name() const noexcept { return m_Name; }
    // Only for a time when the type cannot change: under the filter lock while stopped, or on the streaming thread.
    const CMediaType& CurrentMediaType() const noexcept { return m_mt; }
    REFERENCE_TIME CurrentStartTime() const noexcept { return m_tStart; }
    REFERENCE_TIME CurrentStopTime() const noexcept { return m_tStop; }
    double CurrentRate() const noexcept { return m_dRate; }
    void SetReconnectWhenActive(bool can) noexcept { m_bCanReconnectWhenActive = can; }
    bool CanReconnectWhenActive() const noexcept { return m_bCanReconnectWhenActive; }
    void IncrementTypeVersion() noexcept { InterlockedIncrement(&m_TypeVersion); }

protected:
    // Tries a type, or what a null or partial one leaves open: the peer's types, then this pin's (the other way round
    // with m_bTryMyTypesFirst). VFW_E_NO_ACCEPTABLE_TYPES when none is left.
    HRESULT AgreeMediaType(IPin* receivePin, const CMediaType* type);
    HRESULT TryMediaTypes(IPin* receivePin, const CMediaType* partial, IEnumMediaTypes* types);
    HRESULT AttemptConnection(IPin* receivePin, const CMediaType* type);
    HRESULT DisconnectInternal();

    WCHAR m_Name[MAX_PIN_NAME] = {};
    ComPtr<IPin> m_Connected;
    const PIN_DIRECTION m_dir;
    CCritSec* const m_pLock;
    volatile bool m_bRunTimeError = false; // the stream ended in an error; until the filter stops
    bool m_bCanReconnectWhenActive = false;
    bool m_bTryMyTypesFirst = false;
    CBaseFilter* const m_pFilter;
    // Not counted: who sets a sink takes it away before it dies.
    IQualityControl* m_pQSink = nullptr;
    LONG m_TypeVersion = 1;
    CMediaType m_mt;
    // The segment that the samples belong to.
    REFERENCE_TIME m_tStart = 0;
    REFERENCE_TIME m_tStop = MAXLONGLONG;
    double m_dRate = 1.0;
    vixa::Asking::Mark asker = 0;

private:
    void SetConnected(IPin* pin) noexcept;
    // Lets a peer go without asking whether the filter is stopped: after an attempt that failed.
    void Abandon() noexcept;

    // Guards the peer and the type; taken last and only for a copy. A streaming thread asks for both, and changes the
    // type, and may not wait for the filter lock.
    CCritSec connectionLock;
};
