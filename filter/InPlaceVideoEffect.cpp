#include "filter/InPlaceVideoEffect.h"

#include <dvdmedia.h>

namespace {

// The format block as the header `Header`, or null when the type names another format or is too short for it.
template <typename Header>
const Header* FormatAs(const AM_MEDIA_TYPE& type, const GUID& format) noexcept
{
    if (type.formattype != format || !type.pbFormat || type.cbFormat < sizeof(Header))
        return nullptr;
    return reinterpret_cast<const Header*>(type.pbFormat);
}

// rcSource up to and including bmiHeader: a block without the colour masks that VIDEOINFO adds is complete.
const VIDEOINFOHEADER* VideoInfoOf(const AM_MEDIA_TYPE& type) noexcept
{
    return FormatAs<VIDEOINFOHEADER>(type, FORMAT_VideoInfo);
}

const VIDEOINFOHEADER2* VideoInfo2Of(const AM_MEDIA_TYPE& type) noexcept
{
    return FormatAs<VIDEOINFOHEADER2>(type, FORMAT_VideoInfo2);
}

} // namespace

const BITMAPINFOHEADER* BitmapHeaderOf(const AM_MEDIA_TYPE& type) noexcept
{
    if (const auto* info = VideoInfoOf(type))
        return &info->bmiHeader;
    if (const auto* info = VideoInfo2Of(type))
        return &info->bmiHeader;
    return nullptr;
}

InPlaceVideoEffect::InPlaceVideoEffect(IUnknown* outer, REFCLSID clsid, HRESULT* result)
    : CTransInPlaceFilter(nullptr, outer, clsid, result, true)
{
}

InPlaceVideoEffect::~InPlaceVideoEffect() = default;

STDMETHODIMP InPlaceVideoEffect::NonDelegatingQueryInterface(REFIID riid, void** object) noexcept
{
    if (!object)
        return E_POINTER;
    if (riid == IID_IEffectFilter)
        return GetInterface(static_cast<IEffectFilter*>(this), object);
    return CTransInPlaceFilter::NonDelegatingQueryInterface(riid, object);
}

HRESULT InPlaceVideoEffect::CheckInputType(const CMediaType* type)
{
    const bool accepted = type && type->majortype == MEDIATYPE_Video && type->subtype == MEDIASUBTYPE_RGB32 &&
                          BitmapHeaderOf(*type) != nullptr;
    return accepted ? S_OK : VFW_E_TYPE_NOT_ACCEPTED;
}

HRESULT InPlaceVideoEffect::CompleteConnect(PIN_DIRECTION direction, IPin* receivePin)
{
    const HRESULT result = CTransInPlaceFilter::CompleteConnect(direction, receivePin);
    if (FAILED(result) || !m_pInput->IsConnected() || !m_pOutput->IsConnected())
        return result;

    const AM_MEDIA_TYPE& type = m_pOutput->CurrentMediaType();
    if (const auto* info = VideoInfoOf(type)) {
        width = info->bmiHeader.biWidth;
        height = info->bmiHeader.biHeight;
        pixelAspect = 1.0;
    } else if (const auto* info2 = VideoInfo2Of(type)) {
        width = info2->bmiHeader.biWidth;
        height = info2->bmiHeader.biHeight;
        pixelAspect = (static_cast<double>(info2->dwPictAspectRatioX) * static_cast<double>(height)) /
                      (static_cast<double>(info2->dwPictAspectRatioY) * static_cast<double>(width));
    }
    // In unsigned arithmetic: a width that no frame can have must not be undefined behaviour.
    stride = static_cast<LONG>(static_cast<ULONG>(width) * 4u);
    OnFormatChanged();
    return result;
}

STDMETHODIMP InPlaceVideoEffect::SetPropertySet(IUnknown*) noexcept
{
    return E_NOTIMPL;
}

STDMETHODIMP InPlaceVideoEffect::SetDuration(REFERENCE_TIME newDuration) noexcept
{
    duration = newDuration;
    return S_OK;
}
