// Between a graph's sink and a writer: samples become frames.
#pragma once

#include "host/graph/FrameSink.h"
#include "host/graph/PassTimer.h"
#include "host/graph/SampleQueue.h"
#include "host/media/Frames.h"

#include <atomic>
#include <exception>
#include <thread>

namespace vixahost::graph {

// Takes frames of one size only, rows bottom-up. The writer and the timer must outlive it. Frames may be written behind
// the stream, on a thread of its own; the stream's end waits for the last one.
class FrameTaker final : public SampleTaker
{
public:
    FrameTaker(media::FrameWriter& to, const media::FrameFormat& frames, PassTimer& clock, bool writesBehind = false)
        : writer(to), format(frames), timer(clock), behind(writesBehind)
    {
    }
    ~FrameTaker() override;
    FrameTaker(const FrameTaker&) = delete;
    FrameTaker& operator=(const FrameTaker&) = delete;

    bool Accepts(const CMediaType& type) const override;
    HRESULT Take(IMediaSample& sample) noexcept override;
    void OnEndOfStream() noexcept override;

    // Frames written so far; any thread.
    std::int64_t FramesWritten() const noexcept { return written; }
    // What the writer threw, if it did; for when the graph has stopped. What still waits to be written is dropped.
    std::exception_ptr Failure() noexcept;

private:
    HRESULT Write(IMediaSample& sample) noexcept;
    void WriteAll() noexcept;
    void End() noexcept;

    media::FrameWriter& writer;
    media::FrameFormat format;
    PassTimer& timer;
    const bool behind;
    SampleQueue waiting;
    std::thread thread; // while frames are written behind the stream
    std::atomic<std::int64_t> written = 0;
    std::exception_ptr failure;
};

} // namespace vixahost::graph
