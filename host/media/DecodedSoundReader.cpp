#include "host/media/DecodedSoundReader.h"

#include "host/base/HostError.h"
#include "host/base/Text.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace vixahost::media {

namespace {

constexpr REFERENCE_TIME unitsPerSecond = 10'000'000;
// Both streams' times still have what a codec needs to begin with: frames that are stored before they are shown,
// samples that are never heard. What differs by more was meant so.
constexpr REFERENCE_TIME codecLead = unitsPerSecond / 5;
constexpr std::int64_t silentPiece = std::int64_t{64} * 1024;

} // namespace

DecodedSoundReader::DecodedSoundReader(const std::filesystem::path& file, const DecodedClip& clip)
    : decoder({.clip = file, .sound = true, .known = {}})
{
    const DecodedSound& sound = decoder.Sound();
    WAVEFORMATEX header = {};
    const std::size_t bytes = std::min<std::size_t>(sound.formatBytes, sound.format.size());
    std::memcpy(&header, sound.format.data(), sizeof header);
    constexpr DWORD mostSamples = 1'000'000; // a second
    constexpr WORD mostBytes = 1024;         // for all channels of one
    if (bytes < sizeof header || header.nBlockAlign == 0 || header.nBlockAlign > mostBytes ||
        header.nSamplesPerSec == 0 || header.nSamplesPerSec > mostSamples)
        throw FailedJob("The system's decoder makes no sense of the sound of " + Show(file) + ".");
    stream.type = TagOf("auds");
    stream.rate = header.nSamplesPerSec;
    stream.sampleSize = header.nBlockAlign;
    stream.quality = 0xFFFFFFFF; // the usual one
    stream.format.assign(sound.format.begin(), sound.format.begin() + static_cast<std::ptrdiff_t>(bytes));
    silence = header.wBitsPerSample == 8 ? 0x80 : 0;
    // Not beyond the clip, whatever times its sound tells.
    const REFERENCE_TIME longest =
        std::min(clip.format.TimeOf(clip.frames), REFERENCE_TIME{24} * 3600 * unitsPerSecond);
    const REFERENCE_TIME later = std::clamp(sound.beginning - clip.beginning, -longest, longest);
    if (std::abs(later) > codecLead)
        lead = later / unitsPerSecond * stream.rate * stream.sampleSize +
               later % unitsPerSecond * stream.rate / unitsPerSecond * stream.sampleSize;
}

bool DecodedSoundReader::Read(std::vector<std::uint8_t>& data)
{
    if (lead > 0) {
        const auto bytes = static_cast<std::size_t>(std::min(lead, silentPiece));
        data.insert(data.end(), bytes, silence);
        lead -= static_cast<std::int64_t>(bytes);
        return true;
    }
    for (;;) {
        auto piece = decoder.Ask(0, "has sound that can't be decoded");
        if (piece.empty())
            return false;
        const auto left = std::min(static_cast<std::size_t>(-lead), piece.size());
        lead += static_cast<std::int64_t>(left);
        piece = piece.subspan(left);
        data.insert(data.end(), piece.begin(), piece.end());
        if (!piece.empty())
            return true;
    }
}

} // namespace vixahost::media
