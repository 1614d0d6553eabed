// The transform filter that changes samples where they lie.
#pragma once

#include "framework/CTransInPlaceInputPin.h"
#include "framework/CTransInPlaceOutputPin.h"
#include "framework/CTransformFilter.h"

// A derived class supplies CheckInputType and Transform(sample). Both pins carry the same type and, whenever upstream
// and downstream agree, the same allocator, so that the very sample that comes in goes out. A sample is copied, once,
// only when the allocators differ.
//
// Allocators are agreed on in this order. The input is connected first, with what upstream finds without a sink. When
// the output is connected, it takes downstream's allocator, or its own, and the graph is asked to reconnect the input:
// upstream is then offered downstream's allocator and sees downstream's requirements, and what it chooses is passed on
// downstream. If downstream refuses that, or if samples may not be changed where they lie, the output keeps another
// allocator and samples are copied. A graph may reconnect at once or later: streaming works in between as well.
//
// Where filters of this module follow each other, Transform may be put off until the last of them has the sample
// (framework/Batch.h). Whoever gets the sample then, or gets it back, finds it as if each had worked on its own.
class CTransInPlaceFilter : public CTransformFilter
{
    friend class CTransInPlaceInputPin;
    friend class CTransInPlaceOutputPin;

public:
    // With `modifiesData` samples of a read-only upstream allocator are copied before Transform sees them.
    CTransInPlaceFilter(LPCTSTR name, IUnknown* outer, REFCLSID classId, HRESULT* result,
                        bool modifiesData = true) noexcept;

    CBasePin* GetPin(int index) override;

    HRESULT Transform(IMediaSample* in, IMediaSample* out) override;              // E_UNEXPECTED, never called
    HRESULT CheckTransform(const CMediaType* in, const CMediaType* out) override; // S_OK
    // The input allocator's count and size, else one buffer of one byte. E_FAIL when the allocator grants less.
    HRESULT DecideBufferSize(IMemAllocator* allocator, ALLOCATOR_PROPERTIES* request) override;
    HRESULT GetMediaType(int index, CMediaType* type) override; // E_UNEXPECTED, never called
    // VFW_E_NOT_IN_GRAPH outside a graph. Has the graph reconnect the other pin when its type must follow;
    // VFW_E_TYPE_NOT_ACCEPTED when this pin is the one that has to.
    HRESULT CompleteConnect(PIN_DIRECTION direction, IPin* receivePin) override;
    HRESULT Receive(IMediaSample* sample) override;

    // Changes a sample where it lies. S_OK delivers it, S_FALSE drops it, a failure drops it and is the answer
    // upstream.
    virtual HRESULT Transform(IMediaSample* sample) = 0;

    // Whether samples have to be copied.
    bool UsingDifferentAllocators() const noexcept;

protected:
    // An output buffer with the sample's contents, properties and type, and a reference; null when none can be had.
    IMediaSample* Copy(IMediaSample* source);
    CTransInPlaceInputPin* InputPin() const noexcept { return static_cast<CTransInPlaceInputPin*>(m_pInput.get()); }
    CTransInPlaceOutputPin* OutputPin() const noexcept { return static_cast<CTransInPlaceOutputPin*>(m_pOutput.get()); }
    // Upstream's buffers may not be changed where they lie.
    bool MustCopy() const noexcept { return m_bModifiesData && m_pInput->IsReadOnly(); }
    // Asks the graph to connect that pin again with that type, unless it is being asked already.
    HRESULT Reconnect(CBasePin& pin, const CMediaType& type) noexcept;
    bool TypesMatch() const noexcept { return m_pInput->CurrentMediaType() == m_pOutput->CurrentMediaType(); }

    const bool m_bModifiesData;
    // Set by the constructor of a derived class that works on samples together with the filters around it. Not virtual
    // operations of this class: derived classes count on the order of those.
    vixa::BatchWorker* batchWorker = nullptr;

private:
    // The streaming path of a sample on which work is pending, or none (null).
    HRESULT ReceiveWith(IMediaSample* sample, vixa::Batch* batch);

    bool reconnecting = false; // guarded by the filter lock
};
