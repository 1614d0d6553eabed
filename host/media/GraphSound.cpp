#include "host/media/GraphSound.h"

#include "host/base/HostError.h"
#include "host/base/Text.h"

#include <strmif.h>
#include <uuids.h>

#include <algorithm>
#include <cstring>
#include <new>

namespace vixahost::media {

namespace {

AM_MEDIA_TYPE Pcm()
{
    AM_MEDIA_TYPE wanted = {};
    wanted.majortype = MEDIATYPE_Audio;
    wanted.subtype = MEDIASUBTYPE_PCM;
    wanted.formattype = FORMAT_WaveFormatEx;
    return wanted;
}

} // namespace

GraphSound::GraphSound(const std::filesystem::path& clip)
    : graph(clip, Pcm(), [this](IMediaSample& sample) { Take(sample); })
{
    HeldType type;
    graph.Type(type);
    WAVEFORMATEX header = {};
    if (type.cbFormat >= sizeof header)
        std::memcpy(&header, type.pbFormat, sizeof header);
    if (header.nBlockAlign == 0 || header.nSamplesPerSec == 0 || type.cbFormat > facts.format.size())
        throw FailedJob("The system's filter graph doesn't tell the sound of " + Show(clip) + ".");
    facts.formatBytes = type.cbFormat;
    std::memcpy(facts.format.data(), type.pbFormat, type.cbFormat);
    graph.RunFrom(0);
    if (Wait())
        facts.beginning = time;
}

void GraphSound::Take(IMediaSample& sample) noexcept
try {
    BYTE* bytes = nullptr;
    REFERENCE_TIME begin = 0, end = 0;
    time = SUCCEEDED(sample.GetTime(&begin, &end)) ? begin : 0;
    piece.clear();
    if (SUCCEEDED(sample.GetPointer(&bytes)) && sample.GetActualDataLength() > 0)
        piece.assign(bytes, bytes + sample.GetActualDataLength());
} catch (const std::bad_alloc&) {
    lacksMemory = true;
}

// False at the end.
bool GraphSound::Wait()
{
    done = 0;
    if (graph.Wait("The sound"))
        return true;
    piece.clear();
    return false;
}

std::size_t GraphSound::Read(std::span<std::uint8_t> room)
{
    std::size_t read = 0;
    while (read < room.size()) {
        if (done == piece.size()) {
            graph.GoOn();
            if (!Wait())
                break;
        }
        if (lacksMemory)
            throw std::bad_alloc();
        const std::size_t bytes = std::min(piece.size() - done, room.size() - read);
        std::memcpy(room.data() + read, piece.data() + done, bytes);
        done += bytes;
        read += bytes;
    }
    return read;
}

} // namespace vixahost::media
