// The process in which the platform's decoders run.
#pragma once

#include "host/base/ChildProcess.h"
#include "host/media/Decoder.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>

namespace vixahost::media {

// What a decoder is to do.
struct DecoderTask
{
    std::filesystem::path clip;
    bool sound = false;               // else frames
    std::optional<FrameFormat> known; // the frames of an AVI clip that ReadAviFile takes
    DWORD patience = 20'000;          // milliseconds: a decoder that gives no answer for longer hangs
};

// A decoder meets whatever a file holds, and is not ours: one that crashes or hangs takes only its process along. What
// it gives comes back through memory that both share. One thread at a time.
class DecoderProcess
{
public:
    // Throws NoDecoder when the system has no decoder for the clip, or the clip no sound, and FailedJob when there is
    // no memory, or when the decoder fails or hangs.
    explicit DecoderProcess(DecoderTask wanted);

    const DecodedClip& Clip() const noexcept { return clip; }    // of a task for frames
    const DecodedSound& Sound() const noexcept { return sound; } // of one for sound

    // Frame `index`, or the next piece of sound; empty behind the last one, and overwritten by the next. Throws
    // FailedJob when the decoder fails or hangs, and soon after the user has interrupted the process; then this one is
    // of no more use. `what` follows the clip's name in the message.
    std::span<const std::uint8_t> Ask(std::int64_t index, const std::string& what);

private:
    void TakeMemory();
    void Wait(const std::string& what);

    DecoderTask task;
    DecodedClip clip;
    DecodedSound sound;
    UniqueMapping mapping;
    UniqueView view;   // of the mapping, in which both sides speak
    UniqueView memory; // one frame or piece of sound, in the decoder's memory
    std::size_t memoryBytes = 0;
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
