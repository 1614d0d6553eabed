// A filter graph: source, effects in series, sink.
#pragma once

#include "host/base/Interrupt.h"
#include "host/effects/EffectLibrary.h"
#include "host/effects/EffectStack.h"
#include "host/graph/FrameSink.h"
#include "host/graph/FrameSource.h"
#include "host/graph/FrameTaker.h"

#include <control.h>

#include <functional>
#include <span>
#include <vector>

namespace vixahost::graph {

// Built, run once and taken apart on one thread, in which COM must be running. Library, reader and writer must outlive
// it.
class EffectGraph
{
public:
    // Whether reader, effects and writer take turns, or work at the same time on frames that follow each other, each on
    // a thread of its own.
    enum class Pace
    {
        InTurn,
        Overlapping,
    };

    // `duration` is the whole length in units of 100 ns, which the effects are told. Throws FailedJob.
    EffectGraph(const effects::EffectLibrary& library, const effects::EffectStack& stack, media::FrameReader& reader,
                media::FrameWriter& writer, REFERENCE_TIME duration, Pace pace = Pace::InTurn);
    ~EffectGraph();
    EffectGraph(const EffectGraph&) = delete;
    EffectGraph& operator=(const EffectGraph&) = delete;

    // Sends all frames through. `onProgress` is called ten times a second with the frames written, and once at the end;
    // `stopped` is asked as often. Throws what the reader or the writer threw, FailedJob when the graph fails, and
    // StoppedJob soon after `stopped` has answered true.
    void Run(const std::function<void(std::int64_t)>& onProgress = {},
             const std::function<bool()>& stopped = Interrupted);

    // Sets the graph running and returns; it runs until Stop, or until the reader ends. Throws as Run does, also when
    // there is no memory for a frame.
    void Start();
    // A reader that waits inside Read must have been woken before: Stop waits for the streaming thread.
    void Stop() const noexcept;
    // For a graph that was started: true once all frames have come out; doesn't wait. Throws as Run does when the graph
    // has failed, which ends it; `wake` is called before that, for a reader that may wait inside Read.
    bool HasEnded(const std::function<void()>& wake = {});

    // The time that all the effects took for a frame, in milliseconds: the median when the graph has stopped, the last
    // frame's at any time.
    double MedianMilliseconds() const { return timer.Median(); }
    double LatestMilliseconds() const noexcept { return timer.Latest(); }

    // The filter of one step of the stack, for changes while the graph runs.
    IBaseFilter* Filter(std::size_t step) const { return effects.at(step).Get(); }

private:
    void Add(IBaseFilter* filter, const std::string& name);
    void Connect(IBaseFilter* from, IBaseFilter* to, const std::string& name);
    void WaitForEnd(const std::function<void(std::int64_t)>& onProgress, const std::function<bool()>& stopped);
    [[noreturn]] void Fail(HRESULT result);

    PassTimer timer;
    FrameTaker taker;
    ComPtr<IGraphBuilder> graph;
    ComPtr<IMediaControl> control;
    ComPtr<IMediaEvent> events;
    ComPtr<FrameSource> source;
    ComPtr<FrameSink> sink;
    ComPtr<IMemAllocator> sinkAllocator; // its own, to be told from others when the graph is described
    media::FrameFormat format;
    std::vector<ComPtr<IBaseFilter>> effects;
};

// Stops a row's filters from its end, then the graph; what is null is left out. A graph of which one filter could not
// start counts itself as stopped: asked to stop it does nothing, the filters that had started before stay as they are,
// and taking the graph apart never ends.
void StopRow(IBaseFilter* source, std::span<const ComPtr<IBaseFilter>> effects, IBaseFilter* sink,
             IMediaControl* graph) noexcept;

} // namespace vixahost::graph
