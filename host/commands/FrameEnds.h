// Where `apply` takes a clip's frames from and where they go: clips, or standard input and output.
#pragma once

#include "host/media/Clips.h"
#include "host/media/RawFrames.h"

#include <filesystem>
#include <memory>
#include <optional>

namespace vixahost::commands {

// What the words say of frames.
struct FrameWords
{
    media::ClipChoice clip = {};
    bool rateGiven = false;
    // Frames on standard input and output have no header; their size and rate for the input. None: y4m.
    std::optional<media::RawFormat> bare = {};
};

// "-", which stands for standard input and output.
bool IsStandard(const std::filesystem::path& name);
// Whether frames can be written under the name: "-" or a clip's.
bool NamesFrames(const std::filesystem::path& name);
// Whether there are frames behind the name: "-" or a clip.
bool HoldsFrames(const std::filesystem::path& name);

// Throws FailedJob.
std::unique_ptr<media::FrameReader> OpenFrames(const std::filesystem::path& name, const FrameWords& words);
// The reader must outlive the target. Throws FailedJob.
std::unique_ptr<media::ClipTarget> CreateFrames(const std::filesystem::path& name, const FrameWords& words,
                                                media::FrameReader& reader);

} // namespace vixahost::commands
