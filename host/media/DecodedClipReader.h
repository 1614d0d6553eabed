// A clip of which only the platform knows the structure.
#pragma once

#include "host/media/FrameDecoder.h"
#include "host/media/Frames.h"

#include <algorithm>
#include <filesystem>

namespace vixahost::media {

// Every frame comes from the platform's decoders, in a process of their own; sound is left where it is. One thread at a
// time.
class DecodedClipReader final : public ClipFrames
{
public:
    // Throws NoDecoder and FailedJob.
    explicit DecodedClipReader(const std::filesystem::path& file) : decoder(file) {}

    FrameFormat Format() const override { return decoder.Clip().format; }
    std::int64_t FrameCount() const noexcept override { return decoder.Clip().frames; }
    bool HasSound() const override { return decoder.Clip().sound; }
    bool Read(std::span<std::uint8_t> frame) override { return decoder.Decode(position++, frame); }
    void Seek(std::int64_t index) noexcept override
    {
        position = std::clamp<std::int64_t>(index, 0, std::max<std::int64_t>(FrameCount() - 1, 0));
    }

private:
    FrameDecoder decoder;
    std::int64_t position = 0;
};

} // namespace vixahost::media
