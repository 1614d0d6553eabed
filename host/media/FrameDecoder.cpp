#include "host/media/FrameDecoder.h"

#include "host/base/HostError.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace vixahost::media {

FrameDecoder::FrameDecoder(const std::filesystem::path& clip, const std::optional<FrameFormat>& frames,
                           DWORD milliseconds)
    : task{clip, false, frames, milliseconds}, process(std::in_place, task), facts(process->Clip())
{
}

bool FrameDecoder::Decode(std::int64_t index, std::span<std::uint8_t> frame)
try {
    if (!process)
        process.emplace(task);
    const auto decoded = process->Ask(index, "has a frame " + std::to_string(index) + " that can't be decoded");
    if (decoded.empty())
        return false;
    std::memcpy(frame.data(), decoded.data(), std::min(frame.size(), decoded.size()));
    return true;
} catch (const HostError&) {
    process.reset();
    throw;
}

} // namespace vixahost::media
