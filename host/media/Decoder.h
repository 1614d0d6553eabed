// What decodes one clip, in the process that uses it.
#pragma once

#include "host/media/Frames.h"

#include <array>
#include <cstdint>
#include <span>

namespace vixahost::media {

// What the decoder knows of a clip.
struct DecodedClip
{
    FrameFormat format;
    std::int64_t frames = 0; // by its length, which may be a guess; 0: unknown
    bool sound = false;
    REFERENCE_TIME beginning = 0; // the first frame's own time
};

// And of its sound.
struct DecodedSound
{
    std::array<std::uint8_t, 64> format = {}; // a WAVEFORMATEX of PCM, or more
    std::uint32_t formatBytes = 0;
    REFERENCE_TIME beginning = 0; // the first sample's own time
};

// One thread, in which COM must be running.
class Decoder
{
public:
    virtual ~Decoder() = default;
    virtual const DecodedClip& Clip() const noexcept = 0;
    // Frame `index` as 32-bit RGB, bottom-up, the fourth byte 0; false behind the last one. Throws FailedJob.
    virtual bool Decode(std::int64_t index, std::span<std::uint8_t> frame) = 0;
};

} // namespace vixahost::media
