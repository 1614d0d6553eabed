// A clip decoded by the platform's filter graph.
#pragma once

#include "host/media/Decoder.h"
#include "host/media/GrabbingGraph.h"

#include <filesystem>
#include <optional>
#include <vector>

namespace vixahost::media {

// Rate and scale of frames that follow each other after so many units of 100 ns, their size left 0; 30 a second when
// the interval makes no sense.
FrameFormat RateOfInterval(REFERENCE_TIME interval) noexcept;

class GraphDecoder final : public Decoder
{
public:
    // `known`: the frames of a clip whose header was read; of another clip the graph tells. COM must be running without
    // an apartment. Throws NoDecoder when the platform makes no frames of the file, FailedJob when they aren't those
    // that are known.
    GraphDecoder(std::filesystem::path clip, const std::optional<FrameFormat>& known);

    const DecodedClip& Clip() const noexcept override { return facts; }
    // A frame is what the clip shows at its time: the one before it stays where the clip has none of its own.
    bool Decode(std::int64_t index, std::span<std::uint8_t> frame) override;

private:
    struct Frame
    {
        std::vector<std::uint8_t> pixels;
        REFERENCE_TIME time = 0; // since the clip's first frame
    };

    void TakeFormat(const std::optional<FrameFormat>& known);
    void TakeBeginning();
    void RunFrom(std::int64_t index);
    void Take(IMediaSample& sample) noexcept;
    bool WaitForFrame(std::int64_t index);
    std::int64_t IndexAt(REFERENCE_TIME time) const noexcept;

    std::filesystem::path path;
    DecodedClip facts;
    bool topDown = false;

    // The graph's thread writes the next frame while this one waits for it.
    Frame next, shown;
    bool hasNext = false, hasShown = false, ended = false, running = false;
    bool wrongFrame = false; // the next one is none of this clip's size
    std::int64_t shownIndex = 0;
    REFERENCE_TIME origin = 0; // that the graph counts times from
    GrabbingGraph graph;       // its thread ends before the rest does
};

} // namespace vixahost::media
