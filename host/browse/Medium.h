// What the browser has open: a picture or a clip.
#pragma once

#include "host/media/Clips.h"
#include "host/media/Frames.h"
#include "host/media/Picture.h"

#include <filesystem>
#include <memory>
#include <optional>

namespace vixahost::browse {

using media::FrameBytes;
using media::SharedFrame;

class Medium
{
public:
    // Opens a picture or a clip. Throws HostError. One thread, in which COM must be running.
    explicit Medium(const std::filesystem::path& file, const media::ClipChoice& choice = {});
    // A picture without a file.
    Medium(media::Picture source, std::string title);

    bool IsClip() const noexcept { return clip != nullptr; }
    const std::filesystem::path& File() const noexcept { return path; } // empty for a picture without a file
    std::optional<media::YuvFrames> Yuv() const { return clip ? clip->Yuv() : std::nullopt; }
    const media::Picture& Still() const noexcept { return picture; } // empty for a clip
    const media::FrameFormat& Format() const noexcept { return format; }
    std::int64_t FrameCount() const noexcept { return count; } // 1 for a picture
    REFERENCE_TIME Duration() const noexcept { return format.TimeOf(count); }
    // One line for the title: the file's name.
    const std::string& Name() const noexcept { return name; }

    // Frame `index`, as the graph takes it. Throws HostError.
    SharedFrame Frame(std::int64_t index);

private:
    void TakePicture();
    std::shared_ptr<FrameBytes> NewFrame() const; // throws FailedJob when there is no memory

    std::filesystem::path path;
    std::string name;
    media::Picture picture;
    std::unique_ptr<media::ClipFrames> clip;
    media::FrameFormat format;
    std::int64_t count = 1;
    SharedFrame still;
};

// Where a clip stands while it plays. Plain arithmetic over a clock that the caller reads.
class Player
{
public:
    Player() = default;
    Player(const media::FrameFormat& frames, std::int64_t frameCount) : format(frames), count(frameCount) {}

    bool Playing() const noexcept { return playing; }
    std::int64_t Position() const noexcept { return position; }
    std::int64_t Count() const noexcept { return count; }

    // From the clip's end it plays from the beginning.
    void Play(std::uint64_t now) noexcept;
    void Pause() noexcept { playing = false; }
    // Pauses on a frame inside the clip.
    void Seek(std::int64_t index) noexcept;
    // The frame that is due, `now` in milliseconds; stops on the last. Frames are left out rather than shown late.
    std::int64_t Advance(std::uint64_t now) noexcept;

private:
    media::FrameFormat format;
    std::int64_t count = 1;
    std::int64_t position = 0;
    bool playing = false;
    std::int64_t playedFrom = 0;
    std::uint64_t startedAt = 0;
};

// "0:07.40 / 1:02.00".
std::string TimeText(const media::FrameFormat& format, std::int64_t position, std::int64_t count);

} // namespace vixahost::browse
