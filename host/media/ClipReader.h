// An AVI clip's frames and sound.
#pragma once

#include "host/media/AviFile.h"
#include "host/media/FileOnDisk.h"
#include "host/media/FrameDecoder.h"
#include "host/media/Frames.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <vector>

namespace vixahost::media {

// Reads uncompressed frames straight from the file; others are decoded by whatever the system has for the clip's
// format, in a process of its own. One thread at a time.
class ClipReader : public ClipFrames
{
public:
    // `choice` is for clips of YUV. Throws FailedJob for a clip that is damaged, has no pictures, or no decoder on this
    // system.
    explicit ClipReader(const std::filesystem::path& source, const YuvChoice& choice = {});

    FrameFormat Format() const override { return format; }
    std::int64_t FrameCount() const noexcept override { return static_cast<std::int64_t>(pictures->chunks.size()); }
    // A frame without data shows the one before it once more; before the first it is black.
    bool Read(std::span<std::uint8_t> frame) override;
    void Seek(std::int64_t index) noexcept override;

    std::optional<YuvFrames> Yuv() const override;

    const AviStream* AviPictures() const override { return pictures; }
    bool HasSound() const override;
    std::vector<std::unique_ptr<SoundReader>> Sound() override;

private:
    void ReadUncompressed(const AviChunk& chunk, std::span<std::uint8_t> frame);

    std::filesystem::path path;
    FileOnDisk file;
    AviFile clip;
    const AviStream* pictures; // one of the clip's
    PictureLayout layout;
    FrameFormat format;
    std::optional<YuvColours> colours; // of YUV
    std::optional<YuvPixels> yuv;
    std::int64_t position = 0;
    std::vector<std::uint8_t> stored;      // a frame as the file has it, where it isn't what the graph takes
    std::unique_ptr<FrameDecoder> decoder; // for a compressed clip
};

} // namespace vixahost::media
