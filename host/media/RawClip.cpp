#include "host/media/RawClip.h"

#include "host/base/HostError.h"
#include "host/base/Text.h"
#include "host/media/FileOnDisk.h"
#include "host/media/StandardStreams.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace vixahost::media {

namespace {

// The other order of rows.
void TurnOver(const RawFormat& format, std::span<const std::uint8_t> from, std::span<std::uint8_t> to)
{
    const std::size_t row = static_cast<std::size_t>(format.width) * 4;
    for (std::size_t at = 0; at < from.size(); at += row)
        std::memcpy(to.data() + (to.size() - row - at), from.data() + at, row);
}

constexpr const char* standardInput = "Standard input";

} // namespace

RawFrameFormat::RawFrameFormat(RawFormat frames, const YuvChoice& choice) : stored(std::move(frames))
{
    if (!stored.yuv)
        return;
    YuvChoice chosen = choice;
    if (!chosen.range)
        chosen.range = stored.range;
    colours = ColoursFor(chosen, stored.width, stored.height);
    pixels.emplace(*stored.yuv, *colours, stored.width, stored.height);
}

std::optional<YuvFrames> RawFrameFormat::Yuv() const
{
    return colours ? std::optional(YuvFrames{*stored.yuv, *colours, stored.tags}) : std::nullopt;
}

void RawFrameFormat::ToRgb(std::span<const std::uint8_t> bytes, std::span<std::uint8_t> frame) const
{
    if (pixels)
        pixels->ToRgb(bytes, frame);
    else
        TurnOver(stored, bytes, frame);
}

RawReader::RawReader(const std::optional<RawFormat>& bare, const YuvChoice& choice)
    : stream(std::make_unique<StandardInput>())
{
    try {
        input = bare ? std::make_unique<RawInput>(*stream, *bare) : std::make_unique<RawInput>(*stream);
    } catch (const RawFault& fault) {
        throw FailedJob(std::string(standardInput) + " " + fault.what());
    }
    format.emplace(input->Format(), choice);
    stored.resize(format->Stored().FrameBytes());
}

RawReader::~RawReader() = default;

bool RawReader::Read(std::span<std::uint8_t> frame)
try {
    if (!input->Next(stored))
        return false;
    format->ToRgb(stored, frame);
    return true;
} catch (const RawFault& fault) {
    throw FailedJob(std::string(standardInput) + " " + fault.what());
}

Y4mReader::Y4mReader(const std::filesystem::path& path, const YuvChoice& choice)
    : name(vixahost::Show(path)), file(path)
{
    try {
        Y4mFile content = ReadY4mFile(file);
        format.emplace(std::move(content.format), choice);
        frames = std::move(content.frames);
    } catch (const RawFault& fault) {
        throw FailedJob(name + " " + fault.what());
    }
    if (frames.empty())
        throw FailedJob(name + " holds no frame; name a clip that has some.");
    stored.resize(format->Stored().FrameBytes());
}

bool Y4mReader::Read(std::span<std::uint8_t> frame)
{
    if (position == FrameCount())
        return false;
    if (!file.Read(frames[static_cast<std::size_t>(position)], stored))
        throw FailedJob(name + " can't be read any more; has it changed?");
    format->ToRgb(stored, frame);
    ++position;
    return true;
}

void Y4mReader::Seek(std::int64_t index) noexcept
{
    position = std::clamp<std::int64_t>(index, 0, FrameCount());
}

RawWriter::RawWriter(const TargetFile* target, RawFormat frames, const YuvColours& colours)
    : format(std::move(frames)), stored(format.FrameBytes())
{
    if (target)
        sink = std::make_unique<NewFile>(*target);
    else
        sink = std::make_unique<StandardOutput>();
    if (!format.yuv)
        return;
    pixels.emplace(*format.yuv, colours, format.width, format.height);
    const std::string header = Y4mHeader(format);
    Put({reinterpret_cast<const std::uint8_t*>(header.data()), header.size()});
}

RawWriter::~RawWriter() = default;

void RawWriter::Put(std::span<const std::uint8_t> bytes)
{
    sink->Write(end, bytes);
    end += bytes.size();
}

void RawWriter::Write(std::span<const std::uint8_t> frame)
{
    if (pixels) {
        constexpr std::uint8_t head[] = {'F', 'R', 'A', 'M', 'E', '\n'};
        pixels->FromRgb(frame, stored);
        Put(head);
    } else {
        TurnOver(format, frame, stored);
    }
    Put(stored);
}

void RawWriter::Finish()
{
    sink->Close();
}

std::unique_ptr<RawWriter> NewRawWriter(const TargetFile* target, const FrameReader& reader, const YuvChoice& choice,
                                        bool bare)
{
    const FrameFormat frames = reader.Format();
    const auto yuv = reader.Yuv();
    const YuvColours colours = yuv ? yuv->colours : ColoursFor(choice, frames.width, frames.height);
    RawFormat format = {frames.width, frames.height, frames.rate, frames.scale};
    if (!bare) {
        format.yuv = PlanarFor(yuv ? std::optional(yuv->layout) : std::nullopt);
        format.range = colours.range;
        if (yuv && yuv->layout == format.yuv)
            format.tags = yuv->tags;
    }
    return std::make_unique<RawWriter>(target, std::move(format), colours);
}

} // namespace vixahost::media
