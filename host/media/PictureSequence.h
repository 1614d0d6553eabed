// Pictures that are a clip's frames, one a file, by numbered names.
#pragma once

#include "host/base/TargetFile.h"
#include "host/media/Frames.h"
#include "host/media/Picture.h"
#include "host/media/PictureFile.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace vixahost::media {

// A name with a number's place in it, written as FFmpeg does: "frame%04d.png" is frame0001.png, "%d.bmp" is 1.bmp, and
// "%%" is a percent sign.
class SequenceName
{
public:
    // None for a name without exactly one place, or without a picture format's ending.
    static std::optional<SequenceName> Of(const std::filesystem::path& name);
    // The name of the sequence that a picture with a number in its name may be one of: the last number counts.
    static std::optional<std::filesystem::path> Around(const std::filesystem::path& picture);

    std::filesystem::path At(std::int64_t number) const;
    // The numbers of the files that there are, in order.
    std::vector<std::int64_t> Numbers() const;
    PictureFormat Format() const noexcept { return format; }
    const std::filesystem::path& Pattern() const noexcept { return pattern; }

private:
    std::filesystem::path pattern;
    std::wstring before, after; // of the file's name
    std::size_t digits = 1;     // at least
    PictureFormat format = {};
};

// From the lowest number that there is to the highest. One thread at a time, in which COM must be running.
class SequenceReader final : public ClipFrames
{
public:
    // Throws FailedJob when there are no pictures, when some are missing between others, or when the first can't be
    // read.
    SequenceReader(SequenceName sequence, std::uint32_t rate, std::uint32_t scale);

    FrameFormat Format() const override { return format; }
    std::int64_t FrameCount() const noexcept override { return count; }
    // Throws FailedJob for a picture that can't be read or has another size than the first.
    bool Read(std::span<std::uint8_t> frame) override;
    void Seek(std::int64_t index) noexcept override;
    std::optional<std::int64_t> FirstNumber() const override { return first; }
    bool HadAlpha() const override { return alpha; }

private:
    SequenceName name;
    FrameFormat format;
    std::int64_t first = 0, count = 0, position = 0;
    Picture begin; // the first picture, until it has been read
    bool alpha = false;
};

// Writes pictures into a folder beside their places; Commit puts them there.
class SequenceWriter final : public FrameWriter
{
public:
    // Throws FailedJob.
    SequenceWriter(SequenceName sequence, const FrameFormat& frames, std::int64_t first);
    ~SequenceWriter() override;

    void Write(std::span<const std::uint8_t> frame) override;
    // Throws FailedJob; then some may be in their places and others not.
    void Commit() override;

private:
    SequenceName name;
    TargetFile hold; // of the whole sequence
    std::filesystem::path folder;
    Picture picture;
    std::int64_t first, next;
};

} // namespace vixahost::media
