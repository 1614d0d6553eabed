#include "host/browse/Medium.h"

#include "host/base/HostError.h"
#include "host/base/Text.h"
#include "host/media/AviHeader.h"
#include "host/media/PictureFile.h"
#include "host/media/PictureFrames.h"
#include "host/media/PictureSequence.h"
#include "host/media/Room.h"

#include <algorithm>
#include <cstdio>
#include <new>
#include <utility>

namespace vixahost::browse {

Medium::Medium(const std::filesystem::path& file, const media::ClipChoice& choice)
    : path(file), name(Show(file.filename()))
{
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    const bool sequence = media::SequenceName::Of(file).has_value();
    if (!sequence && !GetFileAttributesExW(file.c_str(), GetFileExInfoStandard, &data))
        throw FailedJob("There is no file " + Show(file) + "; check its name and folder.");
    if (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)
        throw FailedJob(Show(file) + " is a folder; choose a picture or a clip in it.");
    if (media::HoldsClip(file)) {
        clip = media::OpenClip(file, choice);
        format = clip->Format();
        count = clip->FrameCount();
        if (count < 1)
            throw FailedJob(Show(file) + " doesn't tell how long it is; choose another clip.");
        return;
    }
    media::RefuseFalseName(file);
    picture = media::ReadPicture(file);
    TakePicture();
}

Medium::Medium(media::Picture source, std::string title) : name(std::move(title)), picture(std::move(source))
{
    TakePicture();
}

void Medium::TakePicture()
{
    media::PictureReader reader(picture);
    format = reader.Format();
    auto bytes = NewFrame();
    reader.Read(*bytes);
    still = std::move(bytes);
}

std::shared_ptr<FrameBytes> Medium::NewFrame() const
{
    try {
        return std::make_shared<FrameBytes>(format.FrameBytes());
    } catch (const std::bad_alloc&) {
        throw media::NoRoomFor(format.width, format.height);
    }
}

SharedFrame Medium::Frame(std::int64_t index)
{
    if (!clip)
        return still;
    auto bytes = NewFrame();
    clip->Seek(std::clamp<std::int64_t>(index, 0, count - 1));
    if (!clip->Read(*bytes))
        throw FailedJob(name + " ends before frame " + std::to_string(index) + ".");
    return bytes;
}

void Player::Play(std::uint64_t now) noexcept
{
    if (count < 2)
        return;
    if (position + 1 >= count)
        position = 0;
    playedFrom = position;
    startedAt = now;
    playing = true;
}

void Player::Seek(std::int64_t index) noexcept
{
    playing = false;
    position = std::clamp<std::int64_t>(index, 0, count - 1);
}

std::int64_t Player::Advance(std::uint64_t now) noexcept
{
    if (!playing)
        return position;
    const auto elapsed = static_cast<double>(now - startedAt) / 1000.0;
    const auto frames = static_cast<std::int64_t>(elapsed * format.rate / format.scale);
    position = std::min(playedFrom + frames, count - 1);
    if (position == count - 1)
        playing = false;
    return position;
}

std::string TimeText(const media::FrameFormat& format, std::int64_t position, std::int64_t count)
{
    const auto show = [&](std::int64_t frame) {
        const std::int64_t hundredths = format.TimeOf(frame) / 100'000;
        char text[32];
        std::snprintf(text, sizeof text, "%lld:%02lld.%02lld", static_cast<long long>(hundredths / 6000),
                      static_cast<long long>(hundredths / 100 % 60), static_cast<long long>(hundredths % 100));
        return std::string(text);
    };
    return show(position) + " / " + show(count);
}

} // namespace vixahost::browse
