// Frames of a compressed clip, decoded by the system's decoders in a process of their own.
#pragma once

#include "host/base/ChildProcess.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>

namespace vixahost::media {

// A decoder meets whatever a file holds, and is not ours: one that crashes or hangs takes only its process along.
// Frames come back through memory that both share. One thread at a time.
class FrameDecoder
{
public:
    // The clip must be one that ReadAviFile takes, its frames of that size. Throws FailedJob when the system has no
    // decoder for it, when there is no memory for a frame, or when the decoder fails or takes more than 20 s.
    FrameDecoder(const std::filesystem::path& clip, int width, int height);

    // Frame `index` as 32-bit RGB, bottom-up; `frame` has width * height * 4 bytes. Throws FailedJob, within 20 s; and
    // soon after the user has interrupted the process.
    void Decode(std::int64_t index, std::span<std::uint8_t> frame);

private:
    void Start(const std::filesystem::path& clip);
    void Wait(const std::string& what);

    std::string name; // the clip's, for messages
    UniqueMapping mapping;
    UniqueView view; // of the mapping
    UniqueEvent asked, answered;
    std::optional<ChildProcess> process;
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
