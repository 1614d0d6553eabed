// A clip's sound, decoded by the platform's filter graph.
#pragma once

#include "host/media/Decoder.h"
#include "host/media/GrabbingGraph.h"

#include <cstddef>
#include <filesystem>
#include <span>
#include <vector>

namespace vixahost::media {

// The first stream of sound, as PCM. COM must be running without an apartment.
class GraphSound
{
public:
    // Throws NoDecoder when the platform makes no PCM of the file, FailedJob when it makes nothing of sense.
    explicit GraphSound(const std::filesystem::path& clip);

    const DecodedSound& Facts() const noexcept { return facts; }
    // The next bytes, as many as there is room for; fewer at the end. Throws FailedJob.
    std::size_t Read(std::span<std::uint8_t> room);

private:
    void Take(IMediaSample& sample) noexcept;
    bool Wait();

    DecodedSound facts;
    // The graph's thread writes these while this one waits.
    std::vector<std::uint8_t> piece;
    REFERENCE_TIME time = 0; // of the piece
    bool lacksMemory = false;

    std::size_t done = 0; // bytes of the piece that are through
    GrabbingGraph graph;  // its thread ends before the rest does
};

} // namespace vixahost::media
