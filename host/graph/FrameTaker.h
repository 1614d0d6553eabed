// Between a graph's sink and a writer: samples become frames.
#pragma once

#include "host/graph/FrameSink.h"
#include "host/graph/PassTimer.h"
#include "host/media/Frames.h"

#include <atomic>
#include <exception>

namespace vixahost::graph {

// Takes frames of one size only, rows bottom-up. The writer and the timer must outlive it.
class FrameTaker final : public SampleTaker
{
public:
    FrameTaker(media::FrameWriter& to, const media::FrameFormat& frames, PassTimer& clock)
        : writer(to), format(frames), timer(clock)
    {
    }

    bool Accepts(const CMediaType& type) const override;
    HRESULT Take(IMediaSample& sample) noexcept override;

    // Frames written so far; any thread.
    std::int64_t FramesWritten() const noexcept { return written; }
    // What the writer threw, if it did; read it when the graph has stopped.
    std::exception_ptr Failure() const noexcept { return failure; }

private:
    media::FrameWriter& writer;
    media::FrameFormat format;
    PassTimer& timer;
    std::atomic<std::int64_t> written = 0;
    std::exception_ptr failure;
};

} // namespace vixahost::graph
