// A filter graph that stays running: frames are pushed in, parameters change under way, results come out.
#pragma once

#include "host/graph/EffectGraph.h"
#include "host/media/Bands.h"
#include "host/media/Frames.h"

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace vixahost::browse {

using media::FrameBytes;
using media::SharedFrame;

// One frame before and after the effects, and how many results there were before it.
struct LiveResult
{
    SharedFrame before, after;
    std::uint64_t number = 0;
    std::string failure;     // why the newest frame can't be shown; empty when it is shown
    double milliseconds = 0; // that all the effects took for it
};

// Used on one thread, in which COM must be running; the library must outlive it.
class LiveGraph
{
public:
    // `onResult` is called on the graph's thread after each frame and must not wait for the owner's thread. A large
    // frame goes through in bands; one that comes while parameters change may have both, and is followed by the next.
    LiveGraph(const effects::EffectLibrary& library, const media::FrameFormat& format,
              const effects::EffectStack& stack, REFERENCE_TIME duration, std::function<void()> onResult,
              std::size_t mostBandBytes = media::bandBytes);
    ~LiveGraph();
    LiveGraph(const LiveGraph&) = delete;
    LiveGraph& operator=(const LiveGraph&) = delete;

    // The parameters of one step from the next frame on.
    void SetBlock(std::size_t step, std::span<const std::int32_t> block);

    // Sends a frame of the format's size. When one waits already, this one takes its place: only the newest counts.
    void Push(SharedFrame frame);

    // The newest result; frames are null before the first. A graph that has failed says so here, and gives no more.
    LiveResult Latest() const;

    // True while a pushed frame has not come out yet.
    bool Busy() const;

    // True once the graph has failed: only a new one shows anything then.
    bool Failed() const;

    // The time that the effects took for a frame, in milliseconds. Ends the graph.
    double EndAndMedian();

private:
    class Reader;
    class Writer;
    struct Exchange;

    void End() const;

    std::shared_ptr<Exchange> exchange;
    std::unique_ptr<Reader> reader;
    std::unique_ptr<Writer> writer;
    std::unique_ptr<graph::EffectGraph> graph;
    mutable std::string failure; // of the graph; empty while it runs
};

} // namespace vixahost::browse
