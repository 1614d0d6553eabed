// The common base of every effect: an in-place DirectShow filter on uncompressed 32-bit RGB video.
#pragma once

#include "filter/Guarded.h"
#include "framework/DirectShow.h"
#include "parameters/BlockReader.h"

#include <vixavideofx/IEffectFilter.h>

// One input pin ("Input"), one output pin ("Output"); frames are changed where they lie. Accepts MEDIATYPE_Video,
// MEDIASUBTYPE_RGB32 with FORMAT_VideoInfo or FORMAT_VideoInfo2. An effect supplies Transform(IMediaSample*), which
// runs on the streaming thread inside the receive lock, and SetPropertySet, which any thread may call at any time.
class InPlaceVideoEffect : public CTransInPlaceFilter, public IEffectFilter
{
public:
    DECLARE_IUNKNOWN

    // The framework's interfaces and IEffectFilter. E_POINTER for a null `object`, E_NOINTERFACE for anything else.
    STDMETHODIMP NonDelegatingQueryInterface(REFIID riid, void** object) noexcept override;

    ~InPlaceVideoEffect() override;

    // S_OK or VFW_E_TYPE_NOT_ACCEPTED. Besides the three identifiers only the format block is looked at: it must be as
    // long as the header that its format type names.
    HRESULT CheckInputType(const CMediaType* type) override;

    // Records the geometry once both pins are connected. The framework's failures are passed on, among them
    // VFW_E_NOT_IN_GRAPH outside a graph.
    HRESULT CompleteConnect(PIN_DIRECTION direction, IPin* receivePin) override;

    using CTransInPlaceFilter::Transform;
    // Changes one frame. S_OK delivers it, S_FALSE drops it, a failure drops it and is returned upstream.
    HRESULT Transform(IMediaSample* sample) override = 0;

    // Called at the end of every CompleteConnect with both pins connected, after the geometry is recorded.
    virtual void OnFormatChanged() {}

    // IEffectFilter. The base takes no parameters: E_NOTIMPL.
    STDMETHODIMP SetPropertySet(IUnknown* propertySet) noexcept override;
    STDMETHODIMP SetDuration(REFERENCE_TIME newDuration) noexcept override;

protected:
    InPlaceVideoEffect(IUnknown* outer, REFCLSID clsid, HRESULT* result);

    // SetPropertySet of an effect: reads the host's block with `before` in the room and hands what came, a
    // vixa::BlockRead<Block>, to `take`, whatever GetData answers. No lock is held while GetData runs, and the filter
    // lives until the call is over. S_OK; a null set is not taken.
    template <typename Block, typename Take>
    HRESULT TakeRead(IUnknown* propertySet, const Block& before, Take take) noexcept
    {
        if (!propertySet)
            return S_OK;
        const ComPtr<IUnknown> alive(GetOwner());
        take(vixa::ReadBlock(*static_cast<IDataPropertySet*>(propertySet), before));
        return S_OK;
    }

    // The same for an effect whose fields are its data block: the bytes that were read land on them.
    template <typename Block>
    HRESULT TakeBlock(IUnknown* propertySet, vixa::Guarded<Block>& fields) noexcept
    {
        return TakeRead(propertySet, fields.Get(), [&](const vixa::BlockRead<Block>& read) {
            fields.Change([&](Block& current) { read.LayOver(current); });
        });
    }

    REFERENCE_TIME duration = 50'000'000; // 100-ns units: five seconds until the host says otherwise
    LONG width = 0;                       // pixels
    LONG height = 0;                      // rows; positive: bottom-up, negative: top-down
    LONG stride = 0;                      // bytes per row
    double pixelAspect = 0.0;             // width of a pixel divided by its height
};

// The bitmap header of a media type accepted by InPlaceVideoEffect::CheckInputType, or null when the type has another
// format or its format block is too short. Points into `type`.
const BITMAPINFOHEADER* BitmapHeaderOf(const AM_MEDIA_TYPE& type) noexcept;
