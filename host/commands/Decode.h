// The process in which a compressed clip is decoded
#pragma once

#include "host/media/FrameDecoder.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace vixahost::commands {

// What media::FrameDecoder starts, not for people.
struct DecodeCommand
{
    std::filesystem::path clip;
    media::DecoderEnds ends;
};
void Run(const DecodeCommand& command);

// The words of such a process; none for any others.
std::optional<DecodeCommand> ReadDecodeWords(const std::vector<std::string>& words);

} // namespace vixahost::commands
