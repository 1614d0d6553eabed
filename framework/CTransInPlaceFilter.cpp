#include "framework/CTransInPlaceFilter.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <utility>

CTransInPlaceFilter::CTransInPlaceFilter(LPCTSTR name, IUnknown* outer, REFCLSID classId, HRESULT*,
                                         bool modifiesData) noexcept
    : CTransformFilter(name, outer, classId), m_bModifiesData(modifiesData)
{
}

CBasePin* CTransInPlaceFilter::GetPin(int index)
{
    return PinAt<CTransInPlaceInputPin, CTransInPlaceOutputPin>(index, this);
}

HRESULT CTransInPlaceFilter::Transform(IMediaSample*, IMediaSample*)
{
    return E_UNEXPECTED;
}

HRESULT CTransInPlaceFilter::CheckTransform(const CMediaType*, const CMediaType*)
{
    return S_OK;
}

HRESULT CTransInPlaceFilter::DecideBufferSize(IMemAllocator* allocator, ALLOCATOR_PROPERTIES* request)
{
    ALLOCATOR_PROPERTIES upstream = {1, 1, 1, 0};
    if (m_pInput && m_pInput->IsConnected() && m_pInput->PeekAllocator()) {
        const HRESULT result = m_pInput->PeekAllocator()->GetProperties(&upstream);
        if (FAILED(result))
            return result;
    }
    request->cBuffers = std::max(upstream.cBuffers, 1L);
    request->cbBuffer = std::max(upstream.cbBuffer, 1L);
    ALLOCATOR_PROPERTIES granted = {};
    const HRESULT result = allocator->SetProperties(request, &granted);
    if (FAILED(result))
        return result;
    return granted.cBuffers < request->cBuffers || granted.cbBuffer < request->cbBuffer ||
                   granted.cbAlign < request->cbAlign
               ? E_FAIL
               : S_OK;
}

HRESULT CTransInPlaceFilter::GetMediaType(int, CMediaType*)
{
    return E_UNEXPECTED;
}

HRESULT CTransInPlaceFilter::CompleteConnect(PIN_DIRECTION direction, IPin*)
{
    if (!m_pGraph)
        return VFW_E_NOT_IN_GRAPH;
    CBasePin *connected = m_pInput.get(), *other = m_pOutput.get();
    if (direction == PINDIR_OUTPUT)
        std::swap(connected, other);
    if (!other->IsConnected() || TypesMatch())
        return S_OK;
    // The graph brings this pin back because of the other one's type, and tries types that it was not told.
    if (reconnecting)
        return VFW_E_TYPE_NOT_ACCEPTED;
    return Reconnect(*other, CMediaType(connected->CurrentMediaType()));
}

HRESULT CTransInPlaceFilter::Reconnect(CBasePin& pin, const CMediaType& type) noexcept
{
    if (reconnecting)
        return S_OK;
    reconnecting = true;
    const HRESULT result = ReconnectPin(&pin, &type);
    reconnecting = false;
    return FAILED(result) ? result : S_OK;
}

bool CTransInPlaceFilter::UsingDifferentAllocators() const noexcept
{
    return InputPin()->PeekAllocator() != OutputPin()->PeekAllocator();
}

HRESULT CTransInPlaceFilter::Receive(IMediaSample* sample)
{
    return ReceiveWith(sample, nullptr);
}

HRESULT CTransInPlaceFilter::ReceiveWith(IMediaSample* sample, vixa::Batch* batch)
{
    const AM_SAMPLE2_PROPERTIES& properties = *m_pInput->SampleProps();
    if (properties.dwStreamId != AM_STREAM_MEDIA)
        return m_pOutput->Deliver(sample);

    // The input has taken a type that came with the sample; the output carries the same.
    if ((properties.dwSampleFlags & AM_SAMPLE_TYPECHANGED) && properties.pMediaType) {
        const HRESULT result = m_pOutput->SetMediaType(&m_pInput->CurrentMediaType());
        if (FAILED(result))
            return result;
    }
    const auto finish = [&batch] {
        if (batch)
            batch->Finish();
    };
    ComPtr<IMediaSample> copy;
    if (UsingDifferentAllocators()) {
        finish();
        batch = nullptr;
        // Not Attach: this platform's ComPtr counts one more there.
        *copy.GetAddressOf() = Copy(sample);
        if (!copy)
            return E_UNEXPECTED;
        sample = copy.Get();
    }

    vixa::IBatchInput* const peer = batchWorker ? OutputPin()->BatchPeer() : nullptr;
    if (!batch && peer)
        batch = batchWorker->OwnBatch();
    HRESULT transformed = S_OK;
    if (!batch || !batchWorker->PutOff(sample, *batch)) {
        finish();
        transformed = Transform(sample);
    }
    if (batch && peer && transformed == S_OK) {
        const HRESULT result = peer->ReceiveBatch(sample, *batch);
        m_bSampleSkipped = false;
        return result;
    }
    finish();
    return DeliverTransformed(transformed, sample);
}

IMediaSample* CTransInPlaceFilter::Copy(IMediaSample* source)
{
    AM_SAMPLE2_PROPERTIES& from = *m_pInput->SampleProps();
    const bool starts = (from.dwSampleFlags & AM_SAMPLE_TIMEVALID) != 0;
    const bool ends = (from.dwSampleFlags & AM_SAMPLE_STOPVALID) != 0;
    ComPtr<IMediaSample> target;
    if (FAILED(m_pOutput->GetDeliveryBuffer(&target, starts ? &from.tStart : nullptr, ends ? &from.tStop : nullptr,
                                            m_bSampleSkipped ? AM_GBF_PREVFRAMESKIPPED : 0)) ||
        !target)
        return nullptr;

    BYTE* sourceBytes = nullptr;
    BYTE* targetBytes = nullptr;
    const LONG length = source->GetActualDataLength();
    const LONG room = source->GetSize(); // 0 or less: not told
    // A length beyond either buffer is a lie that must not be followed.
    if (length < 0 || (room > 0 && length > room) || length > target->GetSize())
        return nullptr;
    if (length > 0) {
        if (FAILED(source->GetPointer(&sourceBytes)) || FAILED(target->GetPointer(&targetBytes)) || !sourceBytes ||
            !targetBytes)
            return nullptr;
        std::memcpy(targetBytes, sourceBytes, static_cast<std::size_t>(length));
    }

    ComPtr<IMediaSample2> target2;
    if (SUCCEEDED(target->QueryInterface(IID_IMediaSample2, reinterpret_cast<void**>(target2.GetAddressOf())))) {
        // All but the buffer, which is the target's own.
        constexpr DWORD size = offsetof(AM_SAMPLE2_PROPERTIES, pbBuffer);
        AM_SAMPLE2_PROPERTIES properties = from;
        properties.cbData = size;
        properties.lActual = length;
        if (FAILED(target2->SetProperties(size, reinterpret_cast<const BYTE*>(&properties))))
            return nullptr;
    } else {
        target->SetTime(starts ? &from.tStart : nullptr, ends ? &from.tStop : nullptr);
        target->SetSyncPoint((from.dwSampleFlags & AM_SAMPLE_SPLICEPOINT) != 0);
        target->SetPreroll((from.dwSampleFlags & AM_SAMPLE_PREROLL) != 0);
        target->SetDiscontinuity((from.dwSampleFlags & AM_SAMPLE_DATADISCONTINUITY) != 0);
        if (FAILED(target->SetActualDataLength(length)) || FAILED(target->SetMediaType(from.pMediaType)))
            return nullptr;
    }
    LONGLONG start = 0, end = 0;
    if (source->GetMediaTime(&start, &end) == S_OK)
        target->SetMediaTime(&start, &end);
    return target.Detach();
}
