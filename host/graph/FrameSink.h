// The graph's last filter: hands every frame to a writer as fast as they come.
#pragma once

#include "framework/CBaseFilter.h"
#include "framework/CBaseInputPin.h"
#include "framework/CCritSec.h"
#include "host/graph/PassTimer.h"
#include "host/media/Frames.h"

#include <atomic>
#include <cstdint>
#include <exception>
#include <memory>

namespace vixahost::graph {

class FrameSinkPin;

// A renderer: it reports EC_COMPLETE when the last frame is written and the graph runs. It never waits for a frame's
// time. The writer and the timer must outlive the filter.
class FrameSink final : public CBaseFilter, public IAMFilterMiscFlags
{
public:
    static ComPtr<FrameSink> Create(media::FrameWriter& writer, const media::FrameFormat& format, PassTimer& timer);
    ~FrameSink() override;

    DECLARE_IUNKNOWN
    HRESULT STDMETHODCALLTYPE NonDelegatingQueryInterface(REFIID riid, void** ppv) noexcept override;
    ULONG STDMETHODCALLTYPE GetMiscFlags() noexcept override { return AM_FILTER_MISC_FLAGS_IS_RENDERER; }

    int GetPinCount() override { return 1; }
    CBasePin* GetPin(int index) override;
    HRESULT STDMETHODCALLTYPE Run(REFERENCE_TIME start) noexcept override;
    HRESULT STDMETHODCALLTYPE Stop() noexcept override;

    // Frames written so far; any thread.
    std::int64_t FramesWritten() const noexcept { return written; }
    // What the writer threw, if it did; read it when the graph has stopped.
    std::exception_ptr Failure() const noexcept { return failure; }

private:
    friend class FrameSinkPin;
    FrameSink(media::FrameWriter& writer, const media::FrameFormat& format, PassTimer& timer);
    void ReportEnd();

    CCritSec lock;
    media::FrameWriter& writer;
    media::FrameFormat format;
    PassTimer& timer;
    std::atomic<std::int64_t> written = 0;
    bool ended = false;    // guarded by the lock: no more frames will come
    bool reported = false; // guarded by the lock: the graph knows
    std::exception_ptr failure;
    std::unique_ptr<FrameSinkPin> pin;
};

} // namespace vixahost::graph
