// A clip of which only the platform knows the structure.
#pragma once

#include "host/base/HostError.h"
#include "host/media/DecodedSoundReader.h"
#include "host/media/FrameDecoder.h"
#include "host/media/Frames.h"

#include <algorithm>
#include <filesystem>

namespace vixahost::media {

// Every frame comes from the platform's decoders, in a process of their own, and the sound in another. One thread at a
// time.
class DecodedClipReader final : public ClipFrames
{
public:
    // Throws NoDecoder and FailedJob.
    explicit DecodedClipReader(const std::filesystem::path& file) : path(file), decoder(file) {}

    FrameFormat Format() const override { return decoder.Clip().format; }
    std::int64_t FrameCount() const noexcept override { return decoder.Clip().frames; }
    bool HasSound() const override { return decoder.Clip().sound; }
    std::vector<std::unique_ptr<SoundReader>> Sound() override
    {
        std::vector<std::unique_ptr<SoundReader>> sound;
        try {
            if (HasSound())
                sound.push_back(std::make_unique<DecodedSoundReader>(path, decoder.Clip()));
        } catch (const NoDecoder&) { // then it can't be had
        }
        return sound;
    }
    bool Read(std::span<std::uint8_t> frame) override { return decoder.Decode(position++, frame); }
    void Seek(std::int64_t index) noexcept override
    {
        position = std::clamp<std::int64_t>(index, 0, std::max<std::int64_t>(FrameCount() - 1, 0));
    }

private:
    std::filesystem::path path;
    FrameDecoder decoder;
    std::int64_t position = 0;
};

} // namespace vixahost::media
