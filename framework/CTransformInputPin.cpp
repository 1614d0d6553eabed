#include "framework/CTransformInputPin.h"

#include "framework/Answered.h"
#include "framework/CTransformFilter.h"

CTransformInputPin::CTransformInputPin(LPCTSTR objectName, CTransformFilter* filter, HRESULT* result,
                                       LPCWSTR name) noexcept
    : CBaseInputPin(objectName, filter, filter->FilterLock(), result, name), m_pTransformFilter(filter)
{
}

HRESULT CTransformInputPin::QueryId(LPWSTR* id) noexcept
{
    return id ? AMGetWideString(L"In", id) : E_POINTER;
}

HRESULT CTransformInputPin::CheckConnect(IPin* pin)
{
    const HRESULT result = m_pTransformFilter->CheckConnect(PINDIR_INPUT, pin);
    return FAILED(result) ? result : CBaseInputPin::CheckConnect(pin);
}

HRESULT CTransformInputPin::BreakConnect()
{
    m_pTransformFilter->BreakConnect(PINDIR_INPUT);
    return CBaseInputPin::BreakConnect();
}

HRESULT CTransformInputPin::CompleteConnect(IPin* receivePin)
{
    const HRESULT result = m_pTransformFilter->CompleteConnect(PINDIR_INPUT, receivePin);
    return FAILED(result) ? result : CBaseInputPin::CompleteConnect(receivePin);
}

HRESULT CTransformInputPin::CheckMediaType(const CMediaType* type)
{
    const HRESULT result = m_pTransformFilter->CheckInputType(type);
    if (result != S_OK)
        return result;
    const CTransformOutputPin& output = *m_pTransformFilter->m_pOutput;
    return output.IsConnected() ? m_pTransformFilter->CheckTransform(type, &output.CurrentMediaType()) : S_OK;
}

HRESULT CTransformInputPin::SetMediaType(const CMediaType* type)
{
    const HRESULT result = CBaseInputPin::SetMediaType(type);
    return FAILED(result) ? result : m_pTransformFilter->SetMediaType(PINDIR_INPUT, type);
}

HRESULT CTransformInputPin::CheckStreaming()
{
    return m_pTransformFilter->m_pOutput->IsConnected() ? CBaseInputPin::CheckStreaming() : VFW_E_NOT_CONNECTED;
}

HRESULT CTransformInputPin::EndOfStream() noexcept
{
    CAutoLock lock(&m_pTransformFilter->m_csReceive);
    return vixa::Answered([&] {
        const HRESULT result = CheckStreaming();
        return result == S_OK ? m_pTransformFilter->EndOfStream() : result;
    });
}

// The flag goes up before downstream hears of the flush, so that nothing more gets in behind it; and it goes down after
// downstream has heard of the end, when samples may come again.
HRESULT CTransformInputPin::BeginFlush() noexcept
{
    CAutoLock lock(&m_pTransformFilter->m_csFilter);
    if (!IsConnected() || !m_pTransformFilter->m_pOutput->IsConnected())
        return VFW_E_NOT_CONNECTED;
    const HRESULT result = CBaseInputPin::BeginFlush();
    return FAILED(result) ? result : vixa::Answered([&] { return m_pTransformFilter->BeginFlush(); });
}

HRESULT CTransformInputPin::EndFlush() noexcept
{
    CAutoLock lock(&m_pTransformFilter->m_csFilter);
    if (!IsConnected() || !m_pTransformFilter->m_pOutput->IsConnected())
        return VFW_E_NOT_CONNECTED;
    const HRESULT result = vixa::Answered([&] { return m_pTransformFilter->EndFlush(); });
    return FAILED(result) ? result : CBaseInputPin::EndFlush();
}

HRESULT CTransformInputPin::NewSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate) noexcept
{
    CBaseInputPin::NewSegment(start, stop, rate);
    return vixa::Answered([&] { return m_pTransformFilter->NewSegment(start, stop, rate); });
}

HRESULT CTransformInputPin::Receive(IMediaSample* sample) noexcept
{
    CAutoLock lock(&m_pTransformFilter->m_csReceive);
    const HRESULT result = CBaseInputPin::Receive(sample);
    return result == S_OK ? vixa::Answered([&] { return m_pTransformFilter->Receive(sample); }) : result;
}
