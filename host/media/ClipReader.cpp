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

bool IsSound(const AviStream& stream)
{
    return stream.type == TagOf("auds");
}

// As it stands in the file.
class AviSound final : public SoundReader
{
public:
    AviSound(FileBytes& from, const AviStream& stream) : file(from), sound(stream) {}

    const AviStream& Stream() const noexcept override { return sound; }
    bool Read(std::vector<std::uint8_t>& data) override
    {
        if (next == sound.chunks.size())
            return false;
        const AviChunk& chunk = sound.chunks[next++];
        const std::size_t before = data.size();
        data.resize(before + chunk.bytes);
        if (!ReadChunk(file, chunk, std::span(data).subspan(before)))
            throw FailedJob("The clip's sound is damaged; get a whole copy of the clip.");
        return true;
    }

private:
    FileBytes& file;
    const AviStream& sound;
    std::size_t next = 0; // chunk
};

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
        decoder = std::make_unique<FrameDecoder>(path, format);
}

std::vector<std::unique_ptr<SoundReader>> ClipReader::Sound()
{
    std::vector<std::unique_ptr<SoundReader>> sound;
    for (const AviStream& stream : clip.streams)
        if (IsSound(stream))
            sound.push_back(std::make_unique<AviSound>(file, stream));
    return sound;
}

bool ClipReader::HasSound() const
{
    return std::ranges::any_of(clip.streams, IsSound);
}

std::optional<YuvFrames> ClipReader::Yuv() const
{
    return colours ? std::optional(YuvFrames{*layout.yuv, *colours}) : std::nullopt;
}

bool ClipReader::Read(std::span<std::uint8_t> frame)
{
    if (position == FrameCount())
        return false;
    auto shown = static_cast<std::size_t>(position);
    while (shown > 0 && pictures->chunks[shown].bytes == 0)
        --shown;
    if (pictures->chunks[shown].bytes == 0)
        std::ranges::fill(frame, std::uint8_t{0});
    else if (!decoder)
        ReadUncompressed(pictures->chunks[shown], frame);
    else if (!decoder->Decode(static_cast<std::int64_t>(shown), frame))
        throw FailedJob("Frame " + std::to_string(position) + " of " + Show(path) +
                        " can't be decoded; the clip is damaged.");
    ++position;
    return true;
}

void ClipReader::ReadUncompressed(const AviChunk& chunk, std::span<std::uint8_t> frame)
{
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
