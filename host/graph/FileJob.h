// A picture or a clip through a row of effects and into a file.
#pragma once

#include "host/graph/EffectGraph.h"
#include "host/media/Clips.h"
#include "host/media/Picture.h"
#include "host/media/PictureFile.h"
#include "host/media/YuvPixels.h"

#include <cstdint>
#include <filesystem>
#include <functional>

namespace vixahost::graph {

// The functions are called on the job's thread.
struct FileJob
{
    const effects::EffectLibrary& effectLibrary;
    const effects::EffectStack& stack;
    std::filesystem::path target;                         // appears when it is whole; until then an old one stays
    std::function<bool()> stopped;                        // asked ten times a second; true ends the job
    std::function<void(const EffectGraph&)> prepare = {}; // before the first frame
    std::function<void(std::int64_t, std::int64_t)> progress = {}; // frames or pictures written, of how many
};

struct JobDone
{
    media::FrameFormat format;
    std::int64_t frames;
    double milliseconds;                      // that the effects took for a frame
    std::optional<media::YuvFrames> yuv = {}; // as what a clip of YUV was read
    bool losesSound = false;                  // that the clip has
};

// They throw HostError, and StoppedJob for a job that was stopped; nothing is written then.
JobDone SaveThroughEffects(const FileJob& job, media::Picture& picture, media::PictureFormat format);
JobDone SaveThroughEffects(const FileJob& job, const std::filesystem::path& clip, const media::ClipChoice& choice = {});
// From any reader to any writer, which it finishes; the job's target is left alone.
JobDone SaveThroughEffects(const FileJob& job, media::FrameReader& reader, media::FrameWriter& writer);

} // namespace vixahost::graph
