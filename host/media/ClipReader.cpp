#include "host/media/ClipReader.h"

#include "host/base/HostError.h"
#include "host/base/Text.h"
#include "host/media/AviHeader.h"

#include <algorithm>
#include <string>

namespace vixahost::media {

namespace {

const AviStream& RequirePictures(const AviFile& clip, const std::filesystem::path& path)
{
    const AviStream* const pictures = clip.Pictures();
    if (!pictures)
        throw FailedJob(Show(path) + " has no pictures; name a clip that has some.");
    if (pictures->chunks.empty())
        throw FailedJob(Show(path) + " holds no frame; name a clip that has some.");
    return *pictures;
}

} // namespace

ClipReader::ClipReader(const std::filesystem::path& source, const YuvChoice& choice)
    : path(source), file(source), clip(ReadClipStructure(file, source)), pictures(&RequirePictures(clip, source)),
      layout(LayoutOfFormat(pictures->format)), format{layout.width, layout.height, pictures->rate, pictures->scale}
{
    if (layout.yuv) {
        colours = ColoursFor(choice, layout.width, layout.height);
        yuv.emplace(*layout.yuv, *colours, layout.width, layout.height);
    }
    if (!layout.IsUncompressed())
        decoder = std::make_unique<FrameDecoder>(path, layout.width, layout.height);
}

std::vector<const AviStream*> ClipReader::Sound() const
{
    std::vector<const AviStream*> sound;
    for (const AviStream& stream : clip.streams)
        if (stream.type == TagOf("auds"))
            sound.push_back(&stream);
    return sound;
}

std::optional<YuvFrames> ClipReader::Yuv() const
{
    return colours ? std::optional(YuvFrames{*layout.yuv, *colours}) : std::nullopt;
}

bool ClipReader::Read(std::span<std::uint8_t> frame)
{
    if (position == FrameCount())
        return false;
    if (decoder)
        decoder->Decode(position, frame);
    else
        ReadUncompressed(frame);
    ++position;
    return true;
}

void ClipReader::ReadUncompressed(std::span<std::uint8_t> frame)
{
    auto shown = static_cast<std::size_t>(position);
    while (shown > 0 && pictures->chunks[shown].bytes == 0)
        --shown;
    const AviChunk& chunk = pictures->chunks[shown];
    if (chunk.bytes == 0) {
        std::ranges::fill(frame, std::uint8_t{0});
        return;
    }
    const bool direct = !yuv && layout.bits == 32 && !layout.topDown;
    if (!direct)
        stored.resize(layout.bytes);
    if (chunk.bytes != layout.bytes || !ReadChunk(file, chunk, direct ? frame : stored))
        throw FailedJob("Frame " + std::to_string(position) + " of " + Show(path) +
                        " can't be decoded; the clip is damaged.");
    if (yuv)
        yuv->ToRgb(stored, frame);
    else if (!direct)
        ToRgb32(layout, stored, frame);
}

void ClipReader::Seek(std::int64_t index) noexcept
{
    position = std::clamp<std::int64_t>(index, 0, FrameCount());
}

} // namespace vixahost::media
