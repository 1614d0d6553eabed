#include "framework/CBaseInputPin.h"

#include "framework/Answered.h"
#include "framework/CMemAllocator.h"

CBaseInputPin::CBaseInputPin(LPCTSTR objectName, CBaseFilter* filter, CCritSec* lock, HRESULT* result,
                             LPCWSTR name) noexcept
    : CBasePin(objectName, filter, lock, result, name, PINDIR_INPUT)
{
}

CBaseInputPin::~CBaseInputPin() = default;

HRESULT CBaseInputPin::NonDelegatingQueryInterface(REFIID riid, void** ppv) noexcept
{
    if (IsEqualIID(riid, IID_IMemInputPin))
        return GetInterface(static_cast<IMemInputPin*>(this), ppv);
    return CBasePin::NonDelegatingQueryInterface(riid, ppv);
}

HRESULT CBaseInputPin::BreakConnect()
{
    if (m_pAllocator)
        m_pAllocator->Decommit();
    m_pAllocator.Reset();
    m_bReadOnly = false;
    return S_OK;
}

HRESULT CBaseInputPin::Inactive()
{
    m_bRunTimeError = false;
    m_bFlushing = false;
    return m_pAllocator ? m_pAllocator->Decommit() : S_OK;
}

HRESULT CBaseInputPin::CheckStreaming()
{
    if (!IsConnected())
        return VFW_E_NOT_CONNECTED;
    if (IsStopped())
        return VFW_E_WRONG_STATE;
    if (m_bFlushing)
        return S_FALSE;
    return m_bRunTimeError ? VFW_E_RUNTIME_ERROR : S_OK;
}

HRESULT CBaseInputPin::GetAllocator(IMemAllocator** allocator) noexcept
{
    if (!allocator)
        return E_POINTER;
    *allocator = nullptr;
    CAutoLock lock(m_pLock);
    if (!m_pAllocator) {
        const HRESULT result = CreateMemoryAllocator(&m_pAllocator);
        if (FAILED(result))
            return result;
    }
    return m_pAllocator.CopyTo(allocator);
}

HRESULT CBaseInputPin::NotifyAllocator(IMemAllocator* allocator, BOOL readOnly) noexcept
{
    if (!allocator)
        return E_POINTER;
    CAutoLock lock(m_pLock);
    // A thread that waits for a buffer of the old one would not be woken by a stop.
    if (!IsStopped() && !m_bCanReconnectWhenActive)
        return VFW_E_NOT_STOPPED;
    m_pAllocator = allocator;
    m_bReadOnly = readOnly != FALSE;
    return S_OK;
}

HRESULT CBaseInputPin::GetAllocatorRequirements(ALLOCATOR_PROPERTIES* properties) noexcept
{
    return properties ? E_NOTIMPL : E_POINTER;
}

void CBaseInputPin::ReadProperties(IMediaSample& sample)
{
    attachedType.reset();
    m_SampleProps = {};
    ComPtr<IMediaSample2> sample2;
    if (SUCCEEDED(sample.QueryInterface(IID_IMediaSample2, reinterpret_cast<void**>(sample2.GetAddressOf()))) &&
        SUCCEEDED(sample2->GetProperties(sizeof m_SampleProps, reinterpret_cast<BYTE*>(&m_SampleProps))))
        return;

    m_SampleProps = {};
    m_SampleProps.cbData = sizeof m_SampleProps;
    m_SampleProps.dwStreamId = AM_STREAM_MEDIA;
    DWORD& flags = m_SampleProps.dwSampleFlags;
    if (sample.IsDiscontinuity() == S_OK)
        flags |= AM_SAMPLE_DATADISCONTINUITY;
    if (sample.IsPreroll() == S_OK)
        flags |= AM_SAMPLE_PREROLL;
    if (sample.IsSyncPoint() == S_OK)
        flags |= AM_SAMPLE_SPLICEPOINT;
    const HRESULT timed = sample.GetTime(&m_SampleProps.tStart, &m_SampleProps.tStop);
    if (SUCCEEDED(timed))
        flags |= AM_SAMPLE_TIMEVALID;
    if (timed == S_OK)
        flags |= AM_SAMPLE_STOPVALID;
    AM_MEDIA_TYPE* type = nullptr;
    if (sample.GetMediaType(&type) == S_OK && type) {
        attachedType.reset(type);
        m_SampleProps.pMediaType = type;
        flags |= AM_SAMPLE_TYPECHANGED;
    }
    sample.GetPointer(&m_SampleProps.pbBuffer);
    m_SampleProps.lActual = sample.GetActualDataLength();
    m_SampleProps.cbBuffer = sample.GetSize();
}

// The refusing code, when either side does not take the sample's type.
HRESULT CBaseInputPin::TakeAttachedType()
{
    const CMediaType type(*m_SampleProps.pMediaType);
    const HRESULT checked = CheckMediaType(&type);
    if (checked != S_OK)
        return VFW_E_TYPE_NOT_ACCEPTED;
    return SetMediaType(&type);
}

HRESULT CBaseInputPin::Receive(IMediaSample* sample) noexcept
{
    if (!sample)
        return E_POINTER;
    HRESULT result = vixa::Answered([&] { return CheckStreaming(); });
    if (result != S_OK)
        return result;
    result = vixa::Answered([&] {
        ReadProperties(*sample);
        const bool typed = (m_SampleProps.dwSampleFlags & AM_SAMPLE_TYPECHANGED) && m_SampleProps.pMediaType;
        return typed && m_SampleProps.dwStreamId == AM_STREAM_MEDIA ? TakeAttachedType() : S_OK;
    });
    if (SUCCEEDED(result))
        return S_OK;
    // The end of the stream goes out before the error state, which would hold it back.
    EndOfStream();
    m_bRunTimeError = true;
    m_pFilter->NotifyEvent(EC_ERRORABORT, result, 0);
    return result == VFW_E_TYPE_NOT_ACCEPTED ? VFW_E_INVALIDMEDIATYPE : result;
}

HRESULT CBaseInputPin::ReceiveMultiple(IMediaSample** samples, LONG count, LONG* processed) noexcept
{
    if (!processed)
        return E_POINTER;
    *processed = 0;
    if (!samples)
        return E_POINTER;
    while (*processed < count) {
        const HRESULT result = Receive(samples[*processed]);
        if (result != S_OK)
            return result;
        ++*processed;
    }
    return S_OK;
}

HRESULT CBaseInputPin::ReceiveCanBlock() noexcept
{
    const vixa::Asking asking(asker);
    if (asking.Again())
        return S_OK;
    return vixa::Answered([&] {
        bool sends = false;
        for (int index = 0; index < m_pFilter->GetPinCount(); ++index) {
            CBasePin* const pin = m_pFilter->GetPin(index);
            PIN_DIRECTION direction = PINDIR_INPUT;
            if (!pin || FAILED(pin->QueryDirection(&direction)) || direction != PINDIR_OUTPUT)
                continue;
            const ComPtr<IPin> peer = pin->Peer();
            if (!peer)
                continue;
            sends = true;
            ComPtr<IMemInputPin> input;
            if (FAILED(peer->QueryInterface(IID_IMemInputPin, reinterpret_cast<void**>(input.GetAddressOf()))) ||
                input->ReceiveCanBlock() != S_FALSE)
                return S_OK;
        }
        // A filter that sends nothing on is where samples end, and an end may wait for their time.
        return sends ? S_FALSE : S_OK;
    });
}

HRESULT CBaseInputPin::BeginFlush() noexcept
{
    CAutoLock lock(m_pLock);
    m_bFlushing = true;
    return S_OK;
}

HRESULT CBaseInputPin::EndFlush() noexcept
{
    CAutoLock lock(m_pLock);
    m_bFlushing = false;
    m_bRunTimeError = false;
    return S_OK;
}

HRESULT CBaseInputPin::PassNotify(Quality& quality) noexcept
{
    return vixa::Answered([&]() -> HRESULT {
        if (IQualityControl* const sink = m_pQSink)
            return sink->Notify(m_pFilter, quality);
        const ComPtr<IPin> peer = Peer();
        ComPtr<IQualityControl> upstream;
        if (!peer ||
            FAILED(peer->QueryInterface(IID_IQualityControl, reinterpret_cast<void**>(upstream.GetAddressOf()))))
            return VFW_E_NOT_FOUND;
        return upstream->Notify(m_pFilter, quality);
    });
}
