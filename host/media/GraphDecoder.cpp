#include "host/media/GraphDecoder.h"

#include "host/base/HostError.h"
#include "host/base/Text.h"
#include "host/media/AviHeader.h"
#include "host/media/DibSize.h"
#include "host/media/FileOnDisk.h"
#include "host/media/ForeignClip.h"
#include "host/media/Room.h"

#include <amvideo.h>
#include <strmif.h>
#include <uuids.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace vixahost::media {

namespace {

constexpr REFERENCE_TIME second = 10'000'000;
constexpr REFERENCE_TIME roundedTime = second / 500; // what times of whole milliseconds may be off, and more
// Frames up to so many ahead are reached by decoding those between; further ones by a jump of the splitter.
constexpr std::int64_t decodedOnTheWay = 50;

AM_MEDIA_TYPE Rgb32Frames()
{
    AM_MEDIA_TYPE wanted = {};
    wanted.majortype = MEDIATYPE_Video;
    wanted.subtype = MEDIASUBTYPE_RGB32;
    wanted.formattype = FORMAT_VideoInfo;
    return wanted;
}

} // namespace

FrameFormat RateOfInterval(REFERENCE_TIME interval) noexcept
{
    // Files tell it rounded; what it was before stands among the usual ones.
    constexpr std::array<std::uint32_t, 2> scales = {1, 1001};
    for (const std::uint32_t scale : scales) {
        const std::int64_t step = scale == 1 ? 1 : 1000;
        const std::int64_t rate =
            interval > 0 ? (scale * second + interval * step / 2) / (interval * step) * step : std::int64_t{0};
        if (rate > 0 && rate <= 1'000'000 && std::abs(scale * second / rate - interval) <= 1)
            return {0, 0, static_cast<std::uint32_t>(rate), scale};
    }
    if (interval <= 0 || interval > 60 * second)
        return {0, 0, 30, 1};
    return {0, 0, static_cast<std::uint32_t>(second), static_cast<std::uint32_t>(interval)};
}

GraphDecoder::GraphDecoder(std::filesystem::path clip, const std::optional<FrameFormat>& known)
    : path(std::move(clip)), graph(path, Rgb32Frames(), [this](IMediaSample& sample) { Take(sample); })
{
    TakeFormat(known);
    FileOnDisk bytes(path);
    facts.sound = graph.LeavesSound() || TellsOfSound(bytes);
    next.pixels.resize(facts.format.FrameBytes());
    shown.pixels.resize(facts.format.FrameBytes());
    if (!known)
        TakeBeginning();
}

void GraphDecoder::TakeFormat(const std::optional<FrameFormat>& known)
{
    HeldType type;
    graph.Type(type);
    VIDEOINFOHEADER header = {};
    if (type.cbFormat < sizeof header)
        throw FailedJob("The system's filter graph doesn't tell the frames of " + Show(path) + ".");
    std::memcpy(&header, type.pbFormat, sizeof header);
    topDown = header.bmiHeader.biHeight < 0;
    const int width = header.bmiHeader.biWidth, height = std::abs(header.bmiHeader.biHeight);
    if (!DibBytes(width, height, 32))
        throw NoRoomFor(width, height);
    if (known && (known->width != width || known->height != height))
        throw FailedJob(Show(path) + " is damaged: its header tells another size than its frames have.");
    facts.format = known ? *known : RateOfInterval(header.AvgTimePerFrame);
    facts.format.width = width;
    facts.format.height = height;
    if (graph.Duration() > 0)
        facts.frames = std::max<std::int64_t>(IndexAt(graph.Duration()), 1);
}

// A clip's first frame may have a later time than 0: where it was cut, where sound comes before it, and where frames
// are stored in another order than they are shown.
void GraphDecoder::TakeBeginning()
{
    RunFrom(0);
    hasNext = WaitForFrame(0);
    if (hasNext && IndexAt(next.time) != 0) {
        facts.beginning = next.time;
        next.time = 0;
    }
    // The length may count that time too, or sound that goes on; then the last frame tells.
    const bool whole = std::abs(graph.Duration() - facts.format.TimeOf(facts.frames)) < roundedTime;
    if (facts.frames == 0 || (whole && facts.beginning == 0))
        return;
    RunFrom(std::max<std::int64_t>(facts.frames - 1 - IndexAt(facts.beginning + second), 0));
    while (WaitForFrame(facts.frames)) {
        facts.frames = IndexAt(next.time) + 1;
        graph.GoOn();
    }
    running = false;
}

// The frame that begins nearest.
std::int64_t GraphDecoder::IndexAt(REFERENCE_TIME time) const noexcept
{
    return std::llround(static_cast<double>(time) / second * facts.format.rate / facts.format.scale);
}

void GraphDecoder::RunFrom(std::int64_t index)
{
    graph.Stop();
    hasNext = hasShown = ended = false;
    running = true;
    shownIndex = index;
    origin = facts.format.TimeOf(index) - facts.beginning;
    if (!graph.RunFrom(facts.format.TimeOf(index)))
        throw FailedJob("The system's decoder can't go to frame " + std::to_string(index) + " of " + Show(path) + ".");
}

void GraphDecoder::Take(IMediaSample& sample) noexcept
{
    BYTE* bytes = nullptr;
    REFERENCE_TIME begin = 0, end = 0;
    const std::size_t size = next.pixels.size(), row = static_cast<std::size_t>(facts.format.width) * 4;
    wrongFrame = FAILED(sample.GetPointer(&bytes)) || sample.GetActualDataLength() < 0 ||
                 static_cast<std::size_t>(sample.GetActualDataLength()) < size;
    if (wrongFrame)
        return;
    next.time = origin;
    if (SUCCEEDED(sample.GetTime(&begin, &end)))
        next.time = origin + begin;
    else if (hasShown)
        next.time = shown.time + second * facts.format.scale / facts.format.rate;
    if (!topDown)
        std::memcpy(next.pixels.data(), bytes, size);
    else
        for (std::size_t at = 0; at < size; at += row)
            std::memcpy(next.pixels.data() + (size - row - at), bytes + at, row);
    // Not every decoder writes the byte that has no colour.
    for (std::size_t at = 3; at < size; at += 4)
        next.pixels[at] = 0;
}

// False at the stream's end.
bool GraphDecoder::WaitForFrame(std::int64_t index)
{
    ended = !graph.Wait("Frame " + std::to_string(index));
    if (!ended && wrongFrame)
        throw FailedJob("Frame " + std::to_string(index) + " of " + Show(path) +
                        " has another size than the others; convert the clip first: " + ConversionOf(path));
    return !ended;
}

bool GraphDecoder::Decode(std::int64_t index, std::span<std::uint8_t> frame)
{
    if (!running || index < shownIndex || index > shownIndex + decodedOnTheWay)
        RunFrom(index);
    shownIndex = index;
    const REFERENCE_TIME half = second * facts.format.scale / facts.format.rate / 2;
    const REFERENCE_TIME latest = facts.format.TimeOf(index) + half;
    for (;;) {
        if (!hasNext && !ended)
            hasNext = WaitForFrame(index);
        if (!hasNext || (hasShown && next.time > latest))
            break;
        std::swap(shown, next);
        hasShown = true;
        hasNext = false;
        graph.GoOn();
    }
    if (!hasShown || (ended && shown.time + 2 * half < latest))
        return false;
    std::memcpy(frame.data(), shown.pixels.data(), frame.size());
    return true;
}

} // namespace vixahost::media
