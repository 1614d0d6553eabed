#include "host/media/ForeignClip.h"

#include <algorithm>
#include <bit>

namespace vixahost::media {

namespace {

using namespace std::string_view_literals;

constexpr std::string_view mp4 = "MP4 or QuickTime"sv, matroska = "Matroska or WebM"sv, flash = "Flash video"sv,
                           ogg = "Ogg"sv, mpeg = "MPEG"sv, windowsMedia = "Windows Media"sv;

struct Stretch
{
    std::uint64_t begin = 0, end = 0;
};

// Reads the parts of a tree of boxes; after so many it believes no more.
struct Walk
{
    FileBytes& file;
    int left = 100'000;

    Stretch Whole() const { return {0, file.Size()}; }
    // Up to eight bytes, the most significant first; 0 where the file has fewer.
    std::uint64_t Number(std::uint64_t at, std::size_t bytes) const
    {
        std::array<std::uint8_t, 8> read = {};
        if (!file.Read(at, std::span(read).first(bytes)))
            return 0;
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < bytes; ++i)
            value = value << 8 | read[i];
        return value;
    }
};

constexpr std::uint32_t Name(const char (&text)[5])
{
    std::uint32_t value = 0;
    for (int i = 0; i < 4; ++i)
        value = value << 8 | static_cast<std::uint8_t>(text[i]);
    return value;
}

// Whether `wanted` is true of one of the MP4 boxes there, which it gets by name and content. What reaches beyond the
// stretch is the last.
template <typename Wanted>
bool AnyBox(Walk& walk, Stretch in, Wanted wanted)
{
    while (in.end - in.begin >= 8 && walk.left-- > 0) {
        std::uint64_t size = walk.Number(in.begin, 4), head = 8;
        if (size == 1) { // a longer one, whose size stands behind its name
            size = walk.Number(in.begin + 8, 8);
            head = 16;
        }
        const std::uint64_t room = in.end - in.begin;
        const bool last = size < head || size > room;
        if (const std::uint64_t end = last ? in.end : in.begin + size; head <= room)
            if (wanted(static_cast<std::uint32_t>(walk.Number(in.begin + 4, 4)), Stretch{in.begin + head, end}))
                return true;
        if (last)
            return false;
        in.begin += size;
    }
    return false;
}

// The same of Matroska's elements.
template <typename Wanted>
bool AnyElement(Walk& walk, Stretch in, Wanted wanted)
{
    // Both numbers tell their length by the zeros that they begin with.
    const auto length = [&](std::uint64_t at) {
        return static_cast<std::size_t>(std::countl_zero(static_cast<std::uint8_t>(walk.Number(at, 1)))) + 1;
    };
    while (in.begin < in.end && walk.left-- > 0) {
        const std::size_t idBytes = length(in.begin), sizeBytes = length(in.begin + idBytes);
        const std::uint64_t head = idBytes + sizeBytes, room = in.end - in.begin;
        if (idBytes > 4 || sizeBytes > 8 || head > room)
            return false;
        const std::uint64_t most = (std::uint64_t{1} << (7 * sizeBytes)) - 1; // it goes on to the end
        const std::uint64_t size = walk.Number(in.begin + idBytes, sizeBytes) & most;
        const bool last = size == most || size > room - head;
        const std::uint64_t end = last ? in.end : in.begin + head + size;
        if (wanted(static_cast<std::uint32_t>(walk.Number(in.begin, idBytes)), Stretch{in.begin + head, end}))
            return true;
        in.begin = end;
    }
    return false;
}

// The first so many bytes, or those that there are.
std::vector<std::uint8_t> Beginning(FileBytes& file, std::uint64_t most)
{
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(std::min(most, file.Size())));
    if (!file.Read(0, bytes))
        bytes.clear();
    return bytes;
}

bool Contains(std::span<const std::uint8_t> bytes, std::string_view text)
{
    return std::search(bytes.begin(), bytes.end(), text.begin(), text.end(), [](std::uint8_t byte, char letter) {
               return byte == static_cast<std::uint8_t>(letter);
           }) != bytes.end();
}

bool Mp4TellsOfSound(FileBytes& file)
{
    Walk walk = {file};
    return AnyBox(walk, walk.Whole(), [&](std::uint32_t name, Stretch film) {
        return name == Name("moov") && AnyBox(walk, film, [&](std::uint32_t part, Stretch track) {
                   return part == Name("trak") && AnyBox(walk, track, [&](std::uint32_t inner, Stretch media) {
                              return inner == Name("mdia") && AnyBox(walk, media, [&](std::uint32_t box, Stretch at) {
                                         return box == Name("hdlr") && walk.Number(at.begin + 8, 4) == Name("soun");
                                     });
                          });
               });
    });
}

bool MatroskaTellsOfSound(FileBytes& file)
{
    constexpr std::uint32_t segment = 0x18538067, tracks = 0x1654AE6B, track = 0xAE, trackType = 0x83;
    Walk walk = {file};
    return AnyElement(walk, walk.Whole(), [&](std::uint32_t id, Stretch film) {
        return id == segment && AnyElement(walk, film, [&](std::uint32_t part, Stretch list) {
                   return part == tracks && AnyElement(walk, list, [&](std::uint32_t entry, Stretch of) {
                              return entry == track && AnyElement(walk, of, [&](std::uint32_t fact, Stretch at) {
                                         return fact == trackType && at.end - at.begin <= 8 &&
                                                walk.Number(at.begin, static_cast<std::size_t>(at.end - at.begin)) == 2;
                                     });
                          });
               });
    });
}

} // namespace

std::string_view ForeignClip(FileBytes& file)
{
    struct Row
    {
        std::size_t at;
        std::string_view bytes, kind;
    };
    static constexpr Row rows[] = {
        {4, "ftyp"sv, mp4}, {4, "moov"sv, mp4},        {0, "\x1A\x45\xDF\xA3"sv, matroska},    {0, "FLV\1"sv, flash},
        {0, "OggS"sv, ogg}, {0, "\0\0\1\xBA"sv, mpeg}, {0, "\x30\x26\xB2\x75"sv, windowsMedia}};
    std::array<std::uint8_t, 8> head = {};
    if (!file.Read(0, head))
        return {};
    const auto* const found = std::ranges::find_if(rows, [&](const Row& row) {
        return std::equal(row.bytes.begin(), row.bytes.end(), head.begin() + static_cast<std::ptrdiff_t>(row.at),
                          [](char letter, std::uint8_t byte) { return static_cast<std::uint8_t>(letter) == byte; });
    });
    return found == std::end(rows) ? std::string_view() : found->kind;
}

bool LacksItsFilm(FileBytes& file)
{
    Walk walk = {file};
    return ForeignClip(file) == mp4 &&
           !AnyBox(walk, walk.Whole(), [](std::uint32_t name, Stretch) { return name == Name("moov"); });
}

bool TellsOfSound(FileBytes& file)
{
    const std::string_view kind = ForeignClip(file);
    if (kind == mp4)
        return Mp4TellsOfSound(file);
    if (kind == matroska)
        return MatroskaTellsOfSound(file);
    // The others say it near their beginning.
    const std::vector<std::uint8_t> bytes = Beginning(file, 0x10000);
    if (kind == flash)
        return bytes.size() > 4 && (bytes[4] & 4) != 0;
    if (kind == ogg)
        return Contains(bytes, "\1vorbis"sv) || Contains(bytes, "OpusHead"sv) ||
               Contains(bytes, "\x7F"
                               "FLAC"sv) ||
               Contains(bytes, "Speex   "sv);
    if (kind == windowsMedia) // the identifier of its streams of sound
        return Contains(bytes, "\x40\x9E\x69\xF8\x4D\x5B\xCF\x11\xA8\xFD\x00\x80\x5F\x5C\x44\x2B"sv);
    if (kind == mpeg) // packets of sound, and of what DVDs have instead
        for (std::size_t i = 0; i + 4 <= bytes.size(); ++i)
            if (bytes[i] == 0 && bytes[i + 1] == 0 && bytes[i + 2] == 1 &&
                ((bytes[i + 3] & 0xE0) == 0xC0 || bytes[i + 3] == 0xBD))
                return true;
    return false;
}

} // namespace vixahost::media
