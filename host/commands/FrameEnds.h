// Where `apply` takes a clip's frames from and where they go: AVI files, y4m files, or standard input and output.
#pragma once

#include "host/base/TargetFile.h"
#include "host/media/Frames.h"
#include "host/media/RawFrames.h"

#include <filesystem>
#include <memory>
#include <optional>

namespace vixahost::commands {

// What the words say of frames.
struct FrameWords
{
    media::YuvChoice colours = {};
    // Frames on standard input and output have no header; their size and rate for the input. None: y4m.
    std::optional<media::RawFormat> bare = {};
};

// "-", which stands for standard input and output.
bool IsStandard(const std::filesystem::path& name);
// Whether the name is one of frames: "-" or a file ending in .avi or .y4m.
bool NamesFrames(const std::filesystem::path& name);
// Whether there are frames behind the name: "-", a .y4m file, or a file that begins as an AVI clip does.
bool HoldsFrames(const std::filesystem::path& name);

// Throws FailedJob.
std::unique_ptr<media::FrameReader> OpenFrames(const std::filesystem::path& name, const FrameWords& words);

// The file appears when it is whole.
struct FrameTarget
{
    std::optional<TargetFile> file; // none for standard output
    std::unique_ptr<media::FrameWriter> writer;
    bool losesSound = false; // that the reader has
};
// The reader must outlive it. Throws FailedJob.
std::unique_ptr<FrameTarget> CreateFrames(const std::filesystem::path& name, const FrameWords& words,
                                          media::FrameReader& reader);

} // namespace vixahost::commands
