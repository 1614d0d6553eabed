// Clips of every kind, by their files.
#pragma once

#include "host/base/TargetFile.h"
#include "host/media/Frames.h"

#include <filesystem>
#include <memory>
#include <optional>

namespace vixahost::media {

// What a clip's file may not say.
struct ClipChoice
{
    YuvChoice colours = {};
    std::uint32_t rate = 25, scale = 1; // of a sequence of pictures
};

// Whether the name is one of frames that can be written: .avi, .y4m, or a sequence of pictures (frame%04d.png).
bool NamesClip(const std::filesystem::path& file);
// Whether a clip is behind the name: one that can be written, or of a kind that the platform may decode.
bool HoldsClip(const std::filesystem::path& file);

// Throws NoDecoder and FailedJob.
std::unique_ptr<ClipFrames> OpenClip(const std::filesystem::path& file, const ClipChoice& choice = {});

// Where a clip's frames go. It appears when it is whole.
struct ClipTarget
{
    std::optional<TargetFile> file;
    std::unique_ptr<FrameWriter> writer;
    bool losesSound = false; // that the reader has

    // After the writer has finished. Throws FailedJob.
    void Commit();
};
// For a name of NamesClip. The reader must outlive the target. Throws FailedJob.
std::unique_ptr<ClipTarget> CreateClip(const std::filesystem::path& file, FrameReader& reader,
                                       const YuvChoice& colours = {});

} // namespace vixahost::media
