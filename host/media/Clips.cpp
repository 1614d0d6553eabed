#include "host/media/Clips.h"

#include "host/media/AviHeader.h"
#include "host/media/ClipReader.h"
#include "host/media/ClipWriter.h"
#include "host/media/DecodedClipReader.h"
#include "host/media/ForeignClip.h"
#include "host/media/PictureSequence.h"
#include "host/media/RawClip.h"

#include <cwchar>

namespace vixahost::media {

namespace {

bool EndsIn(const std::filesystem::path& name, const wchar_t* ending)
{
    return _wcsicmp(name.extension().c_str(), ending) == 0;
}

} // namespace

bool NamesClip(const std::filesystem::path& file)
{
    return EndsIn(file, L".avi") || EndsIn(file, L".y4m") || SequenceName::Of(file).has_value();
}

bool HoldsClip(const std::filesystem::path& file)
{
    if (EndsIn(file, L".y4m") || SequenceName::Of(file))
        return true;
    FileOnDisk bytes(file);
    return BeginsAsAvi(bytes) || !ForeignClip(bytes).empty();
}

std::unique_ptr<ClipFrames> OpenClip(const std::filesystem::path& file, const ClipChoice& choice)
{
    if (EndsIn(file, L".y4m"))
        return std::make_unique<Y4mReader>(file, choice.colours);
    if (auto sequence = SequenceName::Of(file))
        return std::make_unique<SequenceReader>(std::move(*sequence), choice.rate, choice.scale);
    if (IsAvi(file))
        return std::make_unique<ClipReader>(file, choice.colours);
    RefuseWithoutFilm(file);
    return std::make_unique<DecodedClipReader>(file);
}

void ClipTarget::Commit()
{
    writer->Commit();
    if (file)
        file->Commit();
}

std::unique_ptr<ClipTarget> CreateClip(const std::filesystem::path& file, FrameReader& reader, const YuvChoice& colours)
{
    auto target = std::make_unique<ClipTarget>();
    const FrameFormat format = reader.Format();
    const bool avi = EndsIn(file, L".avi");
    auto sound = avi ? reader.Sound() : std::vector<std::unique_ptr<SoundReader>>();
    target->losesSound = reader.HasSound() && sound.empty();
    if (auto sequence = SequenceName::Of(file)) {
        target->writer =
            std::make_unique<SequenceWriter>(std::move(*sequence), format, reader.FirstNumber().value_or(1));
        return target;
    }
    target->file.emplace(file);
    if (avi)
        target->writer = std::make_unique<ClipWriter>(*target->file, format, reader.AviPictures(), std::move(sound));
    else
        target->writer = NewRawWriter(&*target->file, reader, colours, false);
    return target;
}

} // namespace vixahost::media
