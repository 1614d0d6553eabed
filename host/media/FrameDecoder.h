// Frames of a compressed clip, decoded by the system's decoders in a process of their own.
#pragma once

#include "host/base/ChildProcess.h"

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
    // The clip must be one that ReadAviFile takes, its frames of that size. A decoder that gives no answer for so many
    // milliseconds hangs. Throws FailedJob when the system has no decoder for the clip, when there is no memory for a
    // frame, or when the decoder fails or hangs.
    FrameDecoder(std::filesystem::path source, int width, int height, DWORD milliseconds = 20'000);

    // Frame `index` as 32-bit RGB, bottom-up; `frame` has width * height * 4 bytes. Throws FailedJob when the decoder
    // fails or hangs, and soon after the user has interrupted the process.
    void Decode(std::int64_t index, std::span<std::uint8_t> frame);

private:
    void Start();
    void Wait(const std::string& what);

    std::filesystem::path clip;
    DWORD patience; // milliseconds
    UniqueMapping mapping;
    UniqueView view; // of the mapping
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
