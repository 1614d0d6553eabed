// The sound of a clip of which only the platform knows the structure.
#pragma once

#include "host/media/DecoderProcess.h"
#include "host/media/Sound.h"

#include <cstdint>
#include <filesystem>
#include <vector>

namespace vixahost::media {

// PCM, from a decoder in a process of its own.
class DecodedSoundReader final : public SoundReader
{
public:
    // Of a clip with such frames. Throws NoDecoder when the platform decodes no sound of it, and FailedJob.
    DecodedSoundReader(const std::filesystem::path& file, const DecodedClip& clip);

    const AviStream& Stream() const noexcept override { return stream; }
    bool Read(std::vector<std::uint8_t>& data) override;

private:
    DecoderProcess decoder;
    AviStream stream;
    std::uint8_t silence = 0; // a byte of it
    std::int64_t lead = 0;    // bytes of silence that are still to come in front; negative: of sound to leave out
};

} // namespace vixahost::media
