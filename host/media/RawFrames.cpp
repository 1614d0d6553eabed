#include "host/media/RawFrames.h"

#include "host/media/DibSize.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

namespace vixahost::media {

namespace {

constexpr std::string_view magic = "YUV4MPEG2", frameMagic = "FRAME";

constexpr std::pair<std::string_view, YuvLayout> samplings[] = {
    {"420jpeg", YuvLayout::I420}, {"420mpeg2", YuvLayout::I420}, {"420paldv", YuvLayout::I420},
    {"420", YuvLayout::I420},     {"422", YuvLayout::I422},      {"444", YuvLayout::I444},
    {"mono", YuvLayout::Grey}};

std::optional<std::uint32_t> Number(std::string_view text)
{
    constexpr std::uint32_t most = 0x7FFFFFFF;
    std::uint32_t value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, fault] = std::from_chars(text.data(), end, value);
    return fault == std::errc() && stop == end && value <= most ? std::optional(value) : std::nullopt;
}

void CheckFrames(const RawFormat& format)
{
    if (!DibBytes(format.width, format.height, 32))
        throw RawFault("has frames of a size that no program can hold (" + std::to_string(format.width) + " x " +
                       std::to_string(format.height) + ").");
    constexpr std::uint64_t mostSeconds = 60;
    if (format.rate == 0 || format.scale == 0 || format.scale > mostSeconds * format.rate)
        throw RawFault("has no sensible frame rate.");
}

void TakeRate(std::string_view value, RawFormat& format)
{
    const auto colon = std::min(value.find(':'), value.size());
    format.rate = Number(value.substr(0, colon)).value_or(0);
    format.scale = colon < value.size() ? Number(value.substr(colon + 1)).value_or(0) : 1;
    if (format.rate == 0 && format.scale == 0) { // unknown
        format.rate = 25;
        format.scale = 1;
    }
}

YuvLayout SamplingNamed(std::string_view name)
{
    const auto* const found = std::ranges::find(samplings, name, [](const auto& sampling) { return sampling.first; });
    if (found == std::end(samplings))
        throw RawFault("has samples of a kind that isn't taken; have it sent in 8 bits without alpha, as "
                       "`ffmpeg -pix_fmt yuv420p` does.");
    return found->second;
}

// A word of a y4m stream's first line. The tags are the words that the stream goes out with again.
void TakeWord(std::string_view word, RawFormat& format)
{
    const std::string_view value = word.substr(1);
    switch (word.front()) {
    case 'W':
        format.width = static_cast<int>(Number(value).value_or(0));
        break;
    case 'H':
        format.height = static_cast<int>(Number(value).value_or(0));
        break;
    case 'F':
        TakeRate(value, format);
        break;
    case 'C':
        format.yuv = SamplingNamed(value);
        format.tags += ' ' + std::string(word);
        break;
    case 'X':
        if (value == "COLORRANGE=FULL" || value == "COLORRANGE=LIMITED")
            format.range = value.ends_with("FULL") ? YuvRange::Full : YuvRange::Limited;
        break;
    case 'I':
    case 'A':
        if (value.size() < 32 && std::ranges::all_of(value, [](char letter) { return letter > ' ' && letter < 127; }))
            format.tags += ' ' + std::string(word);
        break;
    default:
        break;
    }
}

} // namespace

std::size_t RawFormat::FrameBytes() const noexcept
{
    return (yuv ? YuvBytes(*yuv, width, height) : DibBytes(width, height, 32)).value_or(0);
}

RawFormat ReadY4mHeader(std::string_view line)
{
    if (!line.starts_with(magic) || (line.size() > magic.size() && line[magic.size()] != ' '))
        throw RawFault("is no y4m stream (it doesn't begin with YUV4MPEG2).");
    RawFormat format;
    format.yuv = YuvLayout::I420;
    for (std::string_view rest = line.substr(magic.size()); !rest.empty();) {
        rest.remove_prefix(1);
        const std::string_view word = rest.substr(0, rest.find(' '));
        rest.remove_prefix(word.size());
        if (!word.empty())
            TakeWord(word, format);
    }
    CheckFrames(format);
    return format;
}

std::string Y4mHeader(const RawFormat& format)
{
    std::string line = std::string(magic) + " W" + std::to_string(format.width) + " H" + std::to_string(format.height) +
                       " F" + std::to_string(format.rate) + ":" + std::to_string(format.scale) + format.tags;
    if (format.tags.find(" C") == std::string::npos) {
        const auto* const found =
            std::ranges::find(samplings, format.yuv, [](const auto& sampling) { return sampling.second; });
        line += " C" + std::string(found->first);
    }
    line += format.range == YuvRange::Full ? " XCOLORRANGE=FULL" : " XCOLORRANGE=LIMITED";
    return line + "\n";
}

YuvLayout PlanarFor(const std::optional<YuvLayout>& layout) noexcept
{
    switch (layout.value_or(YuvLayout::I444)) {
    case YuvLayout::I420:
    case YuvLayout::Yv12:
    case YuvLayout::Nv12:
        return YuvLayout::I420;
    case YuvLayout::Yuy2:
    case YuvLayout::Uyvy:
    case YuvLayout::I422:
        return YuvLayout::I422;
    case YuvLayout::I444:
    case YuvLayout::Grey: // an effect may give it colour
        break;
    }
    return YuvLayout::I444;
}

RawInput::RawInput(ByteSource& bytes) : source(bytes), format(ReadY4mHeader(Line({}))), y4m(true) {}

RawInput::RawInput(ByteSource& bytes, RawFormat frames) : source(bytes), format(std::move(frames)), y4m(false)
{
    CheckFrames(format);
}

// What is left of a line that has begun so.
std::string RawInput::Line(std::string begun)
{
    constexpr std::size_t longest = 4096;
    std::uint8_t letter = 0;
    while (source.Read({&letter, 1}) == 1 && letter != '\n') {
        if (begun.size() == longest)
            throw RawFault("is no y4m stream (a line of it has no end).");
        begun += static_cast<char>(letter);
    }
    return begun;
}

namespace {

[[noreturn]] void EndsInside(std::int64_t frame)
{
    throw RawFault("ends in the middle of frame " + std::to_string(frame) + "; its sender stopped too early.");
}

[[noreturn]] void NoFrameAt(std::int64_t frame)
{
    throw RawFault("is damaged: something else stands where frame " + std::to_string(frame) + " should begin.");
}

// A file's bytes one after the other.
class FileSource : public ByteSource
{
public:
    explicit FileSource(FileBytes& bytes) : file(bytes) {}
    std::size_t Read(std::span<std::uint8_t> into) override
    {
        into = into.first(static_cast<std::size_t>(std::min<std::uint64_t>(into.size(), file.Size() - at)));
        if (!file.Read(at, into))
            return 0;
        at += into.size();
        return into.size();
    }

    std::uint64_t at = 0;

private:
    FileBytes& file;
};

} // namespace

Y4mFile ReadY4mFile(FileBytes& file)
{
    FileSource source(file);
    RawInput input(source);
    Y4mFile found = {input.Format(), {}};
    const std::size_t size = found.format.FrameBytes();
    while (input.Begin()) {
        if (file.Size() - source.at < size)
            EndsInside(static_cast<std::int64_t>(found.frames.size()));
        found.frames.push_back(source.at);
        source.at += size;
    }
    return found;
}

bool RawInput::Begin()
{
    std::array<std::uint8_t, frameMagic.size() + 1> head = {};
    const std::size_t got = source.Read(head);
    if (got == 0)
        return false;
    if (got < head.size())
        EndsInside(frame);
    const bool frameBegins = std::equal(frameMagic.begin(), frameMagic.end(), head.begin());
    if (!frameBegins || (head.back() != '\n' && head.back() != ' '))
        NoFrameAt(frame);
    if (head.back() == ' ')
        Line(" ");
    ++frame;
    return true;
}

bool RawInput::Next(std::span<std::uint8_t> stored)
{
    const std::int64_t number = frame;
    if (y4m && !Begin())
        return false;
    const std::size_t got = source.Read(stored);
    if (got == 0 && !y4m)
        return false;
    if (got < stored.size())
        EndsInside(number);
    frame = number + 1;
    return true;
}

} // namespace vixahost::media
