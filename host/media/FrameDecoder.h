// Frames of a clip, decoded by the system's decoders in a process of their own.
#pragma once

#include "host/base/ChildProcess.h"
#include "host/media/Decoder.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>

namespace vixahost::media {

// A decoder meets whatever a file holds, and is not ours: one that crashes or hangs takes only its process along, and
// the next frame is asked of a new one. Frames come back through memory that both share. One thread at a time.
class FrameDecoder
{
public:
    // An AVI clip that ReadAviFile takes, with frames of this format; or any other file. A decoder that gives no answer
    // for so many milliseconds hangs. Throws NoDecoder when the system has no decoder for the clip, and FailedJob when
    // there is no memory for a frame, or when the decoder fails or hangs.
    explicit FrameDecoder(std::filesystem::path source, const std::optional<FrameFormat>& frames = std::nullopt,
                          DWORD milliseconds = 20'000);

    const DecodedClip& Clip() const noexcept { return facts; }

    // Frame `index` as 32-bit RGB, bottom-up; false behind the last one. `frame` has the format's FrameBytes. Throws
    // FailedJob when the decoder fails or hangs, and soon after the user has interrupted the process.
    bool Decode(std::int64_t index, std::span<std::uint8_t> frame);

private:
    void Start(const std::optional<FrameFormat>& frames);
    void Wait(const std::string& what);

    std::filesystem::path clip;
    DWORD patience; // milliseconds
    DecodedClip facts;
    UniqueMapping mapping;
    UniqueView view;   // of the mapping, in which both sides speak
    UniqueView pixels; // one frame, in the decoder's memory
    UniqueEvent asked, answered;
    std::optional<ChildProcess> process; // none after a frame that it could not give
};

// What the other process needs, as inherited handles.
struct DecoderEnds
{
    UINT_PTR mapping, asked, answered, parent;
};

// That process: decodes what it is asked for until its parent ends. Never returns with an exception; what goes wrong is
// told through the shared memory.
void RunDecoder(const std::filesystem::path& clip, const DecoderEnds& ends);

} // namespace vixahost::media
