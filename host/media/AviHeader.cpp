#include "host/media/AviHeader.h"

#include "host/base/HostError.h"
#include "host/base/Text.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <optional>
#include <vector>

namespace vixahost::media {

namespace {

using Tag = std::array<char, 4>;

constexpr Tag TagOf(const char (&text)[5])
{
    return {text[0], text[1], text[2], text[3]};
}

// A chunk of a RIFF file: where its content begins and how long it is; for RIFF and LIST also the type in front.
struct Chunk
{
    Tag tag = {};
    Tag type = {};
    std::uint64_t content = 0; // file offset, after the type of a list
    std::uint64_t end = 0;

    std::uint64_t Next() const noexcept { return end + (end & 1); }
    bool IsList() const noexcept { return tag == TagOf("RIFF") || tag == TagOf("LIST"); }
};

template <typename Value>
bool ReadAt(std::istream& file, std::uint64_t offset, Value& value)
{
    file.clear();
    file.seekg(static_cast<std::streamoff>(offset));
    return static_cast<bool>(file.read(reinterpret_cast<char*>(&value), sizeof value));
}

std::optional<Chunk> ChunkAt(std::istream& file, std::uint64_t offset)
{
    Chunk chunk;
    std::uint32_t size = 0;
    if (!ReadAt(file, offset, chunk.tag) || !ReadAt(file, offset + 4, size))
        return std::nullopt;
    chunk.content = offset + 8;
    chunk.end = chunk.content + size;
    if (chunk.IsList()) {
        if (size < 4 || !ReadAt(file, offset + 8, chunk.type))
            return std::nullopt;
        chunk.content += 4;
    }
    return chunk;
}

// Calls `visit` for every chunk directly inside `list`.
template <typename Visit>
void ForEachChunk(std::istream& file, const Chunk& list, Visit visit)
{
    for (std::uint64_t offset = list.content; offset + 8 <= list.end;) {
        const std::optional<Chunk> chunk = ChunkAt(file, offset);
        if (!chunk || chunk->end > list.end)
            return;
        visit(*chunk);
        offset = chunk->Next();
    }
}

// The AVI stream header (strh) as far as it is needed; offsets in bytes from its start.
constexpr std::uint64_t strhLength = 32, strhSampleSize = 44;

} // namespace

bool IsAvi(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    const std::optional<Chunk> riff = ChunkAt(stream, 0);
    return riff && riff->tag == TagOf("RIFF") && riff->type == TagOf("AVI ");
}

void RequireWholeAvi(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary | std::ios::ate);
    const auto size = static_cast<std::uint64_t>(stream.tellg());
    const std::optional<Chunk> riff = ChunkAt(stream, 0);
    if (!riff || riff->end > size)
        throw FailedJob(Show(file) + " is cut short: its header promises more than the file holds; get a whole copy "
                                     "of it.");
    const std::optional<Chunk> next = ChunkAt(stream, riff->Next());
    if (next && next->tag == TagOf("RIFF"))
        throw FailedJob(Show(file) + " is an AVI clip of several parts (OpenDML), of which only the first could be "
                                     "read; split it into clips below 1 GB first.");
}

void MendSoundLengths(const std::filesystem::path& file)
{
    std::fstream stream(file, std::ios::binary | std::ios::in | std::ios::out);
    const std::optional<Chunk> riff = ChunkAt(stream, 0);
    if (!riff)
        throw FailedJob("Can't read back " + Show(file) + "; is the disk full or the folder protected?");

    struct Sound
    {
        std::uint64_t header = 0; // file offset of its strh's content; 0 for a stream that needs no mending
        std::uint32_t sampleSize = 0;
        std::uint64_t bytes = 0;
    };
    std::vector<Sound> streams;
    ForEachChunk(stream, *riff, [&](const Chunk& top) {
        if (top.type == TagOf("hdrl")) {
            ForEachChunk(stream, top, [&](const Chunk& list) {
                if (list.type != TagOf("strl"))
                    return;
                Sound sound;
                ForEachChunk(stream, list, [&](const Chunk& part) {
                    Tag type = {};
                    if (part.tag == TagOf("strh") && ReadAt(stream, part.content, type) && type == TagOf("auds") &&
                        ReadAt(stream, part.content + strhSampleSize, sound.sampleSize) && sound.sampleSize > 0)
                        sound.header = part.content;
                });
                streams.push_back(sound);
            });
        } else if (top.type == TagOf("movi")) {
            ForEachChunk(stream, top, [&](const Chunk& data) {
                // "01wb": two hexadecimal digits of the stream's number, then the kind of data.
                if (data.tag[2] != 'w' || data.tag[3] != 'b')
                    return;
                const std::size_t number = std::stoul(std::string(data.tag.data(), 2), nullptr, 16);
                if (number < streams.size())
                    streams[number].bytes += data.end - data.content;
            });
        }
    });
    for (const Sound& sound : streams) {
        if (sound.header == 0)
            continue;
        const auto length = static_cast<std::uint32_t>(sound.bytes / sound.sampleSize);
        stream.clear();
        stream.seekp(static_cast<std::streamoff>(sound.header + strhLength));
        stream.write(reinterpret_cast<const char*>(&length), sizeof length);
    }
    if (!stream.flush())
        throw FailedJob("Can't finish " + Show(file) + "; is the disk full or the folder protected?");
}

} // namespace vixahost::media
