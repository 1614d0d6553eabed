// Frames of a clip, decoded by the system's decoders in a process of their own.
#pragma once

#include "host/media/DecoderProcess.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>

namespace vixahost::media {

// After a decoder that crashed or hung the next frame is asked of a new one. One thread at a time.
class FrameDecoder
{
public:
    // An AVI clip that ReadAviFile takes, with frames of this format; or any other file. Throws what DecoderProcess
    // does.
    explicit FrameDecoder(const std::filesystem::path& clip, const std::optional<FrameFormat>& frames = std::nullopt,
                          DWORD milliseconds = 20'000);

    const DecodedClip& Clip() const noexcept { return facts; }

    // Frame `index` as 32-bit RGB, bottom-up; false behind the last one. `frame` has the format's FrameBytes. Throws
    // FailedJob.
    bool Decode(std::int64_t index, std::span<std::uint8_t> frame);

private:
    DecoderTask task;
    std::optional<DecoderProcess> process; // none after a frame that it could not give
    DecodedClip facts;
};

} // namespace vixahost::media
