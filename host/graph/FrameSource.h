// The graph's first filter: pushes a reader's frames downstream as 32-bit RGB.
#pragma once

#include "framework/CBaseFilter.h"
#include "framework/CBaseOutputPin.h"
#include "framework/CCritSec.h"
#include "host/graph/PassTimer.h"
#include "host/media/Frames.h"

#include <exception>
#include <memory>
#include <thread>

namespace vixahost::graph {

class FrameSourcePin;

// Runs a thread of its own from pause to stop. Frames carry their times and are all key frames. The reader and the
// timer must outlive the filter.
class FrameSource final : public CBaseFilter
{
public:
    static ComPtr<FrameSource> Create(media::FrameReader& reader, PassTimer& timer);
    ~FrameSource() override;

    int GetPinCount() override { return 1; }
    CBasePin* GetPin(int index) override;

    // What the reader threw, if it did; read it when the graph has stopped.
    std::exception_ptr Failure() const noexcept { return failure; }

private:
    friend class FrameSourcePin;
    FrameSource(media::FrameReader& reader, PassTimer& timer);

    CCritSec lock;
    media::FrameReader& reader;
    PassTimer& timer;
    std::exception_ptr failure;
    std::unique_ptr<FrameSourcePin> pin;
};

// The media type of a reader's frames: RGB32 with a VIDEOINFOHEADER, bottom-up. E_OUTOFMEMORY.
HRESULT MediaTypeOf(const media::FrameFormat& format, CMediaType& type);

} // namespace vixahost::graph
