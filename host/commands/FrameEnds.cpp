#include "host/commands/FrameEnds.h"

#include "host/media/RawClip.h"

namespace vixahost::commands {

bool IsStandard(const std::filesystem::path& name)
{
    return name == L"-";
}

bool NamesFrames(const std::filesystem::path& name)
{
    return IsStandard(name) || media::NamesClip(name);
}

bool HoldsFrames(const std::filesystem::path& name)
{
    return IsStandard(name) || media::HoldsClip(name);
}

std::unique_ptr<media::FrameReader> OpenFrames(const std::filesystem::path& name, const FrameWords& words)
{
    if (IsStandard(name))
        return std::make_unique<media::RawReader>(words.bare, words.clip.colours);
    return media::OpenClip(name, words.clip);
}

std::unique_ptr<media::ClipTarget> CreateFrames(const std::filesystem::path& name, const FrameWords& words,
                                                media::FrameReader& reader)
{
    if (!IsStandard(name))
        return media::CreateClip(name, reader, words.clip.colours);
    auto target = std::make_unique<media::ClipTarget>();
    target->writer = media::NewRawWriter(nullptr, reader, words.clip.colours, words.bare.has_value());
    target->losesSound = reader.HasSound();
    return target;
}

} // namespace vixahost::commands
