#include "framework/CTransformFilter.h"

#include "framework/Answered.h"

CTransformFilter::CTransformFilter(LPCTSTR name, IUnknown* outer, REFCLSID classId) noexcept
    : CBaseFilter(name, outer, &m_csFilter, classId)
{
}

CTransformFilter::~CTransformFilter() = default;

int CTransformFilter::GetPinCount()
{
    return 2;
}

CBasePin* CTransformFilter::GetPin(int index)
{
    return PinAt<CTransformInputPin, CTransformOutputPin>(index, this);
}

bool CTransformFilter::PinsExist() noexcept
{
    CAutoLock lock(&pinsLock);
    return m_pInput != nullptr;
}

HRESULT CTransformFilter::FindPin(LPCWSTR id, IPin** pin) noexcept
{
    if (!id || !pin)
        return E_POINTER;
    *pin = nullptr;
    const int index = lstrcmpW(id, L"In") == 0 ? 0 : lstrcmpW(id, L"Out") == 0 ? 1 : -1;
    if (index < 0)
        return VFW_E_NOT_FOUND;
    return vixa::Answered([&]() -> HRESULT {
        CBasePin* const found = GetPin(index);
        if (!found)
            return E_OUTOFMEMORY;
        found->AddRef();
        *pin = found;
        return S_OK;
    });
}

HRESULT CTransformFilter::Stop() noexcept
{
    CAutoLock lock(&m_csFilter);
    if (m_State == State_Stopped)
        return S_OK;
    HRESULT result = S_OK;
    if (PinsExist() && m_pInput->IsConnected() && m_pOutput->IsConnected()) {
        // Both allocators go first: a streaming thread that waits for a buffer holds the receive lock.
        vixa::Answered([&] { return m_pInput->Inactive(); });
        vixa::Answered([&] { return m_pOutput->Inactive(); });
        CAutoLock receiveLock(&m_csReceive);
        result = vixa::Answered([&] { return StopStreaming(); });
        m_State = State_Stopped;
    } else {
        m_State = State_Stopped;
    }
    m_bEOSDelivered = false;
    return result;
}

HRESULT CTransformFilter::Pause() noexcept
{
    CAutoLock lock(&m_csFilter);
    if (m_State == State_Paused)
        return S_OK;
    const bool exist = PinsExist();
    HRESULT result = S_OK;
    if (!exist || !m_pInput->IsConnected()) {
        // Nobody will ever end this stream; without an end the graph would wait for one.
        if (exist && !m_bEOSDelivered) {
            vixa::Answered([&] { return m_pOutput->DeliverEndOfStream(); });
            m_bEOSDelivered = true;
        }
        m_State = State_Paused;
    } else if (!m_pOutput->IsConnected()) {
        m_State = State_Paused;
    } else if (m_State == State_Stopped) {
        result = PauseFromStopped();
    } else {
        result = CBaseFilter::Pause();
    }
    if (FAILED(result))
        return result;
    // Without the receive lock: a renderer that is paused holds it through the streaming thread until it runs again.
    m_bSampleSkipped = false;
    m_bQualityChanged = false;
    return result;
}

HRESULT CTransformFilter::PauseFromStopped()
{
    const auto underReceiveLock = [this](HRESULT (CTransformFilter::*hook)()) {
        CAutoLock lock(&m_csReceive);
        return vixa::Answered([&] { return (this->*hook)(); });
    };
    HRESULT result = underReceiveLock(&CTransformFilter::StartStreaming);
    if (FAILED(result))
        return result;
    result = CBaseFilter::Pause();
    if (FAILED(result))
        underReceiveLock(&CTransformFilter::StopStreaming);
    return result;
}

HRESULT CTransformFilter::Transform(IMediaSample*, IMediaSample*)
{
    return E_UNEXPECTED;
}

HRESULT CTransformFilter::StartStreaming()
{
    return S_OK;
}

HRESULT CTransformFilter::StopStreaming()
{
    return S_OK;
}

HRESULT CTransformFilter::AlterQuality(Quality)
{
    return S_FALSE;
}

HRESULT CTransformFilter::SetMediaType(PIN_DIRECTION, const CMediaType*)
{
    return S_OK;
}

HRESULT CTransformFilter::CheckConnect(PIN_DIRECTION, IPin*)
{
    return S_OK;
}

HRESULT CTransformFilter::BreakConnect(PIN_DIRECTION)
{
    return S_OK;
}

HRESULT CTransformFilter::CompleteConnect(PIN_DIRECTION, IPin*)
{
    return S_OK;
}

HRESULT CTransformFilter::Receive(IMediaSample* sample)
{
    if (m_pInput->SampleProps()->dwStreamId != AM_STREAM_MEDIA)
        return m_pOutput->Deliver(sample);
    ComPtr<IMediaSample> output;
    const HRESULT result = InitializeOutputSample(sample, &output);
    if (FAILED(result))
        return result;
    return DeliverTransformed(Transform(sample, output.Get()), output.Get());
}

HRESULT CTransformFilter::DeliverTransformed(HRESULT transformed, IMediaSample* sample)
{
    if (FAILED(transformed))
        return transformed;
    if (transformed != S_FALSE) {
        const HRESULT result = m_pOutput->Deliver(sample);
        m_bSampleSkipped = false;
        return result;
    }
    m_bSampleSkipped = true;
    if (!m_bQualityChanged.exchange(true))
        NotifyEvent(EC_QUALITY_CHANGE, 0, 0);
    return S_OK;
}

HRESULT CTransformFilter::InitializeOutputSample(IMediaSample* sample, IMediaSample** output)
{
    AM_SAMPLE2_PROPERTIES& from = *m_pInput->SampleProps();
    DWORD flags = m_bSampleSkipped ? AM_GBF_PREVFRAMESKIPPED : 0;
    if (!(from.dwSampleFlags & AM_SAMPLE_SPLICEPOINT))
        flags |= AM_GBF_NOTASYNCPOINT;
    const bool starts = (from.dwSampleFlags & AM_SAMPLE_TIMEVALID) != 0;
    const bool ends = (from.dwSampleFlags & AM_SAMPLE_STOPVALID) != 0;
    ComPtr<IMediaSample> out;
    const HRESULT result =
        m_pOutput->GetDeliveryBuffer(&out, starts ? &from.tStart : nullptr, ends ? &from.tStop : nullptr, flags);
    if (FAILED(result))
        return result;
    if (!out)
        return E_UNEXPECTED;
    out->SetTime(starts ? &from.tStart : nullptr, ends ? &from.tStop : nullptr);
    out->SetSyncPoint((from.dwSampleFlags & AM_SAMPLE_SPLICEPOINT) != 0);
    out->SetPreroll((from.dwSampleFlags & AM_SAMPLE_PREROLL) != 0);
    out->SetDiscontinuity((from.dwSampleFlags & AM_SAMPLE_DATADISCONTINUITY) != 0);
    LONGLONG start = 0, end = 0;
    if (sample->GetMediaTime(&start, &end) == S_OK)
        out->SetMediaTime(&start, &end);
    *output = out.Detach();
    return S_OK;
}

HRESULT CTransformFilter::EndOfStream()
{
    return m_pOutput->DeliverEndOfStream();
}

HRESULT CTransformFilter::BeginFlush()
{
    return m_pOutput->DeliverBeginFlush();
}

HRESULT CTransformFilter::EndFlush()
{
    return m_pOutput->DeliverEndFlush();
}

HRESULT CTransformFilter::NewSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate)
{
    return m_pOutput->DeliverNewSegment(start, stop, rate);
}
