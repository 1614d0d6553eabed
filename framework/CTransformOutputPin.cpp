#include "framework/CTransformOutputPin.h"

#include "framework/Answered.h"
#include "framework/CTransformFilter.h"

CTransformOutputPin::CTransformOutputPin(LPCTSTR objectName, CTransformFilter* filter, HRESULT* result,
                                         LPCWSTR name) noexcept
    : CBaseOutputPin(objectName, filter, filter->FilterLock(), result, name), m_pTransformFilter(filter)
{
}

HRESULT CTransformOutputPin::NonDelegatingQueryInterface(REFIID riid, void** ppv) noexcept
{
    if (!ppv)
        return E_POINTER;
    if (!IsEqualIID(riid, IID_IMediaPosition) && !IsEqualIID(riid, IID_IMediaSeeking))
        return CBaseOutputPin::NonDelegatingQueryInterface(riid, ppv);
    *ppv = nullptr;
    CAutoLock lock(&positionLock);
    const HRESULT result = m_pPosition ? S_OK : MakePosition();
    return FAILED(result) ? result : m_pPosition->QueryInterface(riid, ppv);
}

// The platform's own object, aggregated into this pin: it asks the pin upstream of the filter's input.
HRESULT CTransformOutputPin::MakePosition() noexcept
{
    ComPtr<IUnknown> position;
    HRESULT result = CoCreateInstance(CLSID_SeekingPassThru, GetOwner(), CLSCTX_INPROC_SERVER, IID_IUnknown,
                                      reinterpret_cast<void**>(position.GetAddressOf()));
    if (FAILED(result))
        return result;
    ComPtr<ISeekingPassThru> passThrough;
    result = position->QueryInterface(IID_ISeekingPassThru, reinterpret_cast<void**>(passThrough.GetAddressOf()));
    if (SUCCEEDED(result))
        result = passThrough->Init(FALSE, m_pTransformFilter->m_pInput.get());
    if (SUCCEEDED(result))
        m_pPosition = position;
    return result;
}

HRESULT CTransformOutputPin::QueryId(LPWSTR* id) noexcept
{
    return id ? AMGetWideString(L"Out", id) : E_POINTER;
}

HRESULT CTransformOutputPin::CheckConnect(IPin* pin)
{
    if (!m_pTransformFilter->m_pInput->IsConnected())
        return E_UNEXPECTED;
    const HRESULT result = m_pTransformFilter->CheckConnect(PINDIR_OUTPUT, pin);
    return FAILED(result) ? result : CBaseOutputPin::CheckConnect(pin);
}

HRESULT CTransformOutputPin::BreakConnect()
{
    m_pTransformFilter->BreakConnect(PINDIR_OUTPUT);
    return CBaseOutputPin::BreakConnect();
}

HRESULT CTransformOutputPin::CompleteConnect(IPin* receivePin)
{
    const HRESULT result = m_pTransformFilter->CompleteConnect(PINDIR_OUTPUT, receivePin);
    return FAILED(result) ? result : CBaseOutputPin::CompleteConnect(receivePin);
}

HRESULT CTransformOutputPin::CheckMediaType(const CMediaType* type)
{
    const CTransformInputPin& input = *m_pTransformFilter->m_pInput;
    return input.IsConnected() ? m_pTransformFilter->CheckTransform(&input.CurrentMediaType(), type) : E_INVALIDARG;
}

HRESULT CTransformOutputPin::SetMediaType(const CMediaType* type)
{
    const HRESULT result = CBaseOutputPin::SetMediaType(type);
    return FAILED(result) ? result : m_pTransformFilter->SetMediaType(PINDIR_OUTPUT, type);
}

HRESULT CTransformOutputPin::GetMediaType(int index, CMediaType* type)
{
    return m_pTransformFilter->m_pInput->IsConnected() ? m_pTransformFilter->GetMediaType(index, type)
                                                       : VFW_S_NO_MORE_ITEMS;
}

HRESULT CTransformOutputPin::DecideBufferSize(IMemAllocator* allocator, ALLOCATOR_PROPERTIES* request)
{
    return m_pTransformFilter->DecideBufferSize(allocator, request);
}

HRESULT CTransformOutputPin::Notify(IBaseFilter*, Quality quality) noexcept
{
    const HRESULT result = vixa::Answered([&] { return m_pTransformFilter->AlterQuality(quality); });
    return result == S_FALSE ? m_pTransformFilter->m_pInput->PassNotify(quality) : result;
}
