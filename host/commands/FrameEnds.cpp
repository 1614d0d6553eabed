#include "host/commands/FrameEnds.h"

#include "host/media/AviHeader.h"
#include "host/media/ClipReader.h"
#include "host/media/ClipWriter.h"
#include "host/media/RawClip.h"

#include <cwchar>

namespace vixahost::commands {

namespace {

bool EndsIn(const std::filesystem::path& name, const wchar_t* ending)
{
    return _wcsicmp(name.extension().c_str(), ending) == 0;
}

} // namespace

bool IsStandard(const std::filesystem::path& name)
{
    return name == L"-";
}

bool NamesFrames(const std::filesystem::path& name)
{
    return IsStandard(name) || EndsIn(name, L".avi") || EndsIn(name, L".y4m");
}

bool HoldsFrames(const std::filesystem::path& name)
{
    return IsStandard(name) || EndsIn(name, L".y4m") || media::IsAvi(name);
}

std::unique_ptr<media::FrameReader> OpenFrames(const std::filesystem::path& name, const FrameWords& words)
{
    if (IsStandard(name))
        return std::make_unique<media::RawReader>(L"", words.bare, words.colours);
    if (EndsIn(name, L".y4m"))
        return std::make_unique<media::RawReader>(name, std::nullopt, words.colours);
    return std::make_unique<media::ClipReader>(name, words.colours);
}

std::unique_ptr<FrameTarget> CreateFrames(const std::filesystem::path& name, const FrameWords& words,
                                          media::FrameReader& reader)
{
    auto target = std::make_unique<FrameTarget>();
    if (!IsStandard(name))
        target->file.emplace(name);
    auto* const clip = dynamic_cast<media::ClipReader*>(&reader);
    if (EndsIn(name, L".avi")) {
        target->writer = std::make_unique<media::ClipWriter>(*target->file, reader.Format(), clip);
        return target;
    }
    const media::FrameFormat format = reader.Format();
    const auto yuv = reader.Yuv();
    const auto colours = yuv ? yuv->colours : ColoursFor(words.colours, format.width, format.height);
    target->writer = std::make_unique<media::RawWriter>(
        target->file ? &*target->file : nullptr,
        RawFormatOf(reader, colours, IsStandard(name) && words.bare.has_value()), colours);
    target->losesSound = clip && !clip->Sound().empty();
    return target;
}

} // namespace vixahost::commands
