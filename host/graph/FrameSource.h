// The graph's first filter: one output pin that offers one type.
#pragma once

#include "framework/CBaseFilter.h"
#include "framework/CBaseOutputPin.h"
#include "framework/CCritSec.h"
#include "host/graph/PassTimer.h"
#include "host/media/Frames.h"

#include <atomic>
#include <exception>
#include <memory>
#include <thread>

namespace vixahost::graph {

class FrameSourcePin;

class FrameSource : public CBaseFilter
{
public:
    // Pushes the reader's frames downstream as 32-bit RGB, on a thread of its own from pause to stop. Frames carry
    // their times and are all key frames. The reader and the timer must outlive the filter. With more than one buffer
    // frames are read ahead on a further thread, while those before them are on their way.
    static ComPtr<FrameSource> Create(media::FrameReader& reader, PassTimer& timer, long buffers = 1);

    enum class Allocator
    {
        Shared,         // downstream's
        SharedReadOnly, // downstream's, and nobody may write to it
        Own,            // the source insists on its own
        ReadOnly        // the source insists on its own and lets nobody write to it
    };
    // Sends nothing by itself: its owner hands samples to the next filter's input pin.
    static ComPtr<FrameSource> Create(const CMediaType& type, Allocator allocator = Allocator::Shared);

    ~FrameSource() override;

    int GetPinCount() override { return 1; }
    CBasePin* GetPin(int index) override;

    // What the reader threw, if it did; read it when the graph has stopped.
    std::exception_ptr Failure() const noexcept { return failure; }

protected:
    // Without its pin.
    FrameSource();

    std::unique_ptr<FrameSourcePin> output;

private:
    friend class FrameSourcePin;

    CCritSec lock;
    std::exception_ptr failure;
};

// Its only pin.
class FrameSourcePin : public CBaseOutputPin
{
public:
    struct Offer
    {
        CMediaType type;
        long bufferBytes;
        FrameSource::Allocator allocator;
        long buffers = 1;
        media::FrameFormat format = {}; // of the reader's frames
    };

    // Without a reader it sends nothing by itself; a timer comes with the reader.
    FrameSourcePin(FrameSource& owner, Offer offered, media::FrameReader* from = nullptr, PassTimer* clock = nullptr);
    ~FrameSourcePin() override;

    HRESULT CheckMediaType(const CMediaType* type) override;
    HRESULT GetMediaType(int index, CMediaType* type) override;
    HRESULT DecideBufferSize(IMemAllocator* allocator, ALLOCATOR_PROPERTIES* request) override;
    HRESULT DecideAllocator(IMemInputPin* peer, IMemAllocator** agreed) override;
    HRESULT Active() override;
    HRESULT Inactive() override;

protected:
    Offer offer;

private:
    void EndThread();
    void Stream() noexcept;
    HRESULT DeliverAll() noexcept;
    HRESULT DeliverAhead();
    HRESULT ReadSample(std::int64_t index, ComPtr<IMediaSample>& sample) noexcept;

    FrameSource& source;
    media::FrameReader* const reader;
    PassTimer* const timer;
    std::atomic<bool> stopping = false;
    std::thread thread;
};

// The media type of a reader's frames: RGB32 with a VIDEOINFOHEADER, bottom-up. E_OUTOFMEMORY.
HRESULT MediaTypeOf(const media::FrameFormat& format, CMediaType& type);

} // namespace vixahost::graph
