#include "host/media/AviFile.h"

#include "host/media/DibSize.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <utility>

namespace vixahost::media {

namespace {

using View = std::span<const std::uint8_t>;

// What a clip of any sense stays below: the header of a clip with a hundred streams has some tens of kilobytes.
constexpr std::uint64_t mostHeaderBytes = 1 << 20, mostTopChunks = 10'000, mostStreams = 100;
constexpr std::uint32_t mostSampleBytes = 1 << 20;
// What any clip may suggest for a buffer: some programs suggest the same for all of theirs.
constexpr std::uint64_t leastBufferBytes = 1 << 24;

[[noreturn]] void Damaged(const std::string& what)
{
    throw AviFault("is a damaged AVI clip (" + what + "); get a whole copy of it.");
}

[[noreturn]] void CutShort()
{
    throw AviFault("is cut short: its header promises more than the file holds; get a whole copy of it.");
}

std::uint32_t Number32(View from, std::size_t at)
{
    return std::uint32_t{from[at]} | std::uint32_t{from[at + 1]} << 8 | std::uint32_t{from[at + 2]} << 16 |
           std::uint32_t{from[at + 3]} << 24;
}

std::uint16_t Number16(View from, std::size_t at)
{
    return static_cast<std::uint16_t>(from[at] | from[at + 1] << 8);
}

Tag TagAt(View from, std::size_t at)
{
    Tag tag;
    std::transform(from.begin() + static_cast<std::ptrdiff_t>(at), from.begin() + static_cast<std::ptrdiff_t>(at + 4),
                   tag.begin(), [](std::uint8_t letter) { return static_cast<char>(letter); });
    return tag;
}

// A chunk in the file; for RIFF and LIST the content begins behind the type.
struct FileChunk
{
    Tag tag = {}, type = {};
    std::uint64_t content = 0, end = 0;

    std::uint64_t Next() const noexcept { return end + (end & 1); }
};

bool IsList(const Tag& tag)
{
    return tag == TagOf("RIFF") || tag == TagOf("LIST");
}

std::optional<FileChunk> ChunkAt(FileBytes& file, std::uint64_t offset)
{
    std::array<std::uint8_t, 12> head = {};
    if (!file.Read(offset, std::span(head).first(8)))
        return std::nullopt;
    FileChunk chunk = {TagAt(head, 0), {}, offset + 8, offset + 8 + Number32(head, 4)};
    if (IsList(chunk.tag)) {
        if (chunk.end < chunk.content + 4 || !file.Read(offset, head))
            return std::nullopt;
        chunk.type = TagAt(head, 8);
        chunk.content += 4;
    }
    return chunk;
}

// Calls visit(tag, content) for each chunk of a list in memory; a list's content begins with its type.
template <typename Visit>
void ForEachPart(View list, Visit visit)
{
    for (std::size_t at = 0; at + 8 <= list.size();) {
        const std::size_t bytes = Number32(list, at + 4);
        if (bytes > list.size() - at - 8)
            Damaged("a part of its header is longer than the header");
        visit(TagAt(list, at), list.subspan(at + 8, bytes));
        at += 8 + bytes + (bytes & 1);
    }
}

void CheckPictureFormat(const AviStream& stream, std::uint64_t fileBytes)
{
    const PictureLayout layout = LayoutOfFormat(stream.format);
    // Nothing is allocated for a frame that the file can't hold.
    if (layout.bytes > fileBytes)
        Damaged("its frames are larger than the file");
    const auto frame = DibBytes(layout.width, layout.height, 32);
    if (!frame || stream.suggestedBuffer > std::max<std::uint64_t>({*frame, fileBytes, leastBufferBytes}))
        Damaged("it asks for more memory than a frame has");
}

void CheckSoundFormat(AviStream& stream)
{
    // WAVEFORMAT: kind, channels, samples and bytes a second, bytes a block; behind it bits a sample, and how much of
    // the format's own follows.
    if (stream.format.size() < 14)
        Damaged("its sound has no format");
    const View format = stream.format;
    constexpr std::uint16_t pcm = 1; // has nothing of its own, whatever it says
    if (format.size() >= 18 && Number16(format, 0) != pcm && Number16(format, 16) > format.size() - 18)
        Damaged("its sound's format is cut short");
    if (stream.sampleSize > mostSampleBytes || (stream.sampleSize > 0 && Number16(format, 12) == 0))
        Damaged("its sound has samples of no sensible size");
}

// `index` gets its own index, if it has one.
AviStream ReadStream(View list, std::uint64_t fileBytes, std::vector<std::uint8_t>& index)
{
    AviStream stream;
    bool described = false;
    ForEachPart(list, [&](const Tag& tag, View part) {
        if (tag == TagOf("strh")) {
            if (described || part.size() < 48)
                Damaged("a stream's header is cut short");
            described = true;
            stream.type = TagAt(part, 0);
            stream.handler = TagAt(part, 4);
            stream.flags = Number32(part, 8);
            stream.priority = Number16(part, 12);
            stream.language = Number16(part, 14);
            stream.initialFrames = Number32(part, 16);
            stream.scale = Number32(part, 20);
            stream.rate = Number32(part, 24);
            stream.start = Number32(part, 28);
            stream.length = Number32(part, 32);
            stream.suggestedBuffer = Number32(part, 36);
            stream.quality = Number32(part, 40);
            stream.sampleSize = Number32(part, 44);
        } else if (tag == TagOf("strf")) {
            if (!described || !stream.format.empty())
                Damaged("a stream's format stands in the wrong place");
            stream.format.assign(part.begin(), part.end());
        } else if (tag == TagOf("strn")) {
            stream.name.assign(part.begin(), std::ranges::find(part, 0));
        } else if (tag == TagOf("indx")) {
            // How many numbers an entry has, what kind it is, and how many entries follow 24 bytes of header.
            if (part.size() < 24 || std::uint64_t{Number16(part, 0)} * 4 * Number32(part, 4) > part.size() - 24)
                Damaged("a stream's index is cut short");
            index.assign(part.begin(), part.end());
        }
    });
    if (!described || stream.rate == 0 || stream.scale == 0)
        Damaged("a stream has no rate");
    constexpr std::uint32_t longest = 0x7FFFFFFF;
    if (stream.start > longest || stream.length > longest || stream.start + stream.length > longest)
        Damaged("a stream has no sensible length");
    if (stream.type == TagOf("vids"))
        CheckPictureFormat(stream, fileBytes);
    if (stream.type == TagOf("auds"))
        CheckSoundFormat(stream);
    return stream;
}

struct Header
{
    bool hasIndex = false;
    std::vector<AviStream> streams;
    std::vector<std::vector<std::uint8_t>> indexes; // of each stream's own; empty without one
};

Header ReadHeader(FileBytes& file, const FileChunk& list)
{
    if (list.end - list.content > mostHeaderBytes)
        Damaged("its header is too long");
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(list.end - list.content));
    if (!file.Read(list.content, bytes))
        CutShort();
    Header header;
    std::optional<std::uint32_t> promised;
    ForEachPart(bytes, [&](const Tag& tag, View part) {
        if (tag == TagOf("avih")) {
            if (promised || part.size() < 40)
                Damaged("its main header is cut short");
            header.hasIndex = (Number32(part, 12) & 0x10) != 0;
            promised = Number32(part, 24);
        } else if (tag == TagOf("LIST") && part.size() >= 4 && TagAt(part, 0) == TagOf("strl")) {
            if (!promised)
                Damaged("it has no main header");
            if (header.streams.size() == mostStreams)
                Damaged("it has too many streams");
            header.streams.push_back(ReadStream(part.subspan(4), file.Size(), header.indexes.emplace_back()));
        }
    });
    if (promised != header.streams.size())
        Damaged("it hasn't the streams that it promises");
    return header;
}

// "01wb": two hexadecimal digits of the stream's number, then the kind of data.
std::optional<std::size_t> StreamOf(const Tag& tag)
{
    std::size_t number = 0;
    for (const char digit : {tag[0], tag[1]}) {
        const bool letter = (digit >= 'a' && digit <= 'f') || (digit >= 'A' && digit <= 'F');
        if (!letter && (digit < '0' || digit > '9'))
            return std::nullopt;
        number = number * 16 + static_cast<std::size_t>(letter ? (digit | 0x20) - 'a' + 10 : digit - '0');
    }
    return number;
}

class ChunkList
{
public:
    ChunkList(Header& head, std::uint64_t fileEnd) : header(head), end(fileEnd) {}

    void Add(const AviChunk& chunk)
    {
        const auto number = StreamOf(chunk.tag);
        if (!number || *number >= header.streams.size())
            Damaged("a piece of data belongs to no stream");
        if (chunk.content > end || chunk.bytes > end - chunk.content)
            Damaged("its index names bytes behind its end");
        if (chunk.tag[2] == 'p' && chunk.tag[3] == 'c')
            throw AviFault("changes its palette on its way, which isn't supported; convert it to 24 or 32 bits first.");
        header.streams[*number].chunks.push_back(chunk);
    }

private:
    Header& header;
    std::uint64_t end;
};

// Lists of records may stand around the data.
void WalkMovie(FileBytes& file, const FileChunk& list, ChunkList& chunks)
{
    for (std::uint64_t at = list.content; at + 8 <= list.end;) {
        const auto chunk = ChunkAt(file, at);
        if (!chunk || chunk->end > list.end)
            Damaged("a piece of data is longer than what holds it");
        if (chunk->tag == TagOf("LIST") && chunk->type == TagOf("rec ")) {
            at = chunk->content; // what follows stands in the same row
            continue;
        }
        if (StreamOf(chunk->tag))
            chunks.Add({chunk->tag, static_cast<std::uint32_t>(chunk->end - chunk->content), chunk->content});
        at = chunk->Next();
    }
}

// Entries of 16 bytes: tag, flags, place, length. Places are counted from the file's beginning or from the type of the
// list of data; which, tells the first one.
void ReadIndex(FileBytes& file, const FileChunk& index, const FileChunk& movie, ChunkList& chunks)
{
    std::vector<std::uint8_t> block;
    std::optional<std::uint64_t> base;
    for (std::uint64_t at = index.content; at + 16 <= index.end; at += block.size()) {
        block.resize(
            static_cast<std::size_t>(std::min<std::uint64_t>((index.end - at) / 16 * 16, std::uint64_t{64} * 1024)));
        if (!file.Read(at, block))
            CutShort();
        for (std::size_t entry = 0; entry < block.size(); entry += 16) {
            const Tag tag = TagAt(block, entry);
            const std::uint64_t place = Number32(block, entry + 8);
            if (!base) {
                const auto counted = ChunkAt(file, movie.content - 4 + place);
                base = counted && (counted->tag == tag || counted->type == tag) ? movie.content - 4 : 0;
            }
            if (tag == TagOf("rec ") || !StreamOf(tag))
                continue;
            chunks.Add({tag, Number32(block, entry + 12), *base + place + 8});
        }
    }
}

// The indexes that the streams of a file of several parts have of their own: 24 bytes of header (how many numbers an
// entry has, what kind of index it is, how many entries, of which chunks, and from where their places count), then the
// entries. In the header it is an index of such indexes, or already of chunks.
class StreamIndexes
{
public:
    StreamIndexes(FileBytes& bytes, ChunkList& list) : file(bytes), left(bytes.Size()), chunks(list) {}

    void Read(View index)
    {
        if (index[3] == ofChunks) {
            ReadChunks(index);
        } else if (index[3] == ofIndexes && Number16(index, 0) == 4) {
            for (std::size_t entry = headerBytes; entry < headerBytes + std::size_t{16} * Number32(index, 4);
                 entry += 16)
                ReadPart(Number64(index, entry));
        } else {
            Damaged("a stream's index is of an unknown kind");
        }
    }

private:
    static constexpr std::size_t headerBytes = 24;
    static constexpr std::uint8_t ofIndexes = 0, ofChunks = 1;

    static std::uint64_t Number64(View from, std::size_t at)
    {
        return Number32(from, at) | std::uint64_t{Number32(from, at + 4)} << 32;
    }

    void ReadPart(std::uint64_t place)
    {
        const auto chunk = place < file.Size() ? ChunkAt(file, place) : std::nullopt;
        // All indexes together have less than the file: nobody is asked to read one of them again and again.
        if (!chunk || chunk->end > file.Size() || chunk->end - chunk->content > left ||
            chunk->end - chunk->content < headerBytes)
            Damaged("an index that it names isn't there");
        left -= chunk->end - chunk->content;
        std::vector<std::uint8_t> index(static_cast<std::size_t>(chunk->end - chunk->content));
        if (!file.Read(chunk->content, index) || index[3] != ofChunks)
            Damaged("an index that it names isn't there");
        ReadChunks(index);
    }

    void ReadChunks(View index)
    {
        const std::size_t entryBytes = std::size_t{Number16(index, 0)} * 4, count = Number32(index, 4);
        const std::uint64_t base = Number64(index, 12);
        if (entryBytes < 8 || count > (index.size() - headerBytes) / entryBytes || base > file.Size())
            Damaged("a stream's index is cut short");
        const Tag tag = TagAt(index, 8);
        for (std::size_t entry = 0; entry < count; ++entry) {
            const std::size_t at = headerBytes + entry * entryBytes;
            constexpr std::uint32_t noKeyFrame = 0x80000000;
            chunks.Add({tag, Number32(index, at + 4) & ~noKeyFrame, base + Number32(index, at)});
        }
    }

    FileBytes& file;
    std::uint64_t left;
    ChunkList& chunks;
};

// The lists of data in the parts behind the first one, which begin here.
std::vector<FileChunk> FurtherMovies(FileBytes& file, std::uint64_t at)
{
    std::vector<FileChunk> movies;
    for (auto riff = ChunkAt(file, at); riff && riff->type == TagOf("AVIX"); riff = ChunkAt(file, riff->Next())) {
        if (riff->end > file.Size())
            CutShort();
        auto movie = ChunkAt(file, riff->content);
        for (int pieces = 0; movie && movie->type != TagOf("movi") && pieces < 100; ++pieces)
            movie = ChunkAt(file, movie->Next());
        if (!movie || movie->type != TagOf("movi") || movie->end > riff->end || movies.size() == mostTopChunks)
            Damaged("a part of it has no data");
        movies.push_back(*movie);
    }
    return movies;
}

// What the part that begins the file holds.
struct FirstPart
{
    Header header;
    FileChunk movie;
    std::optional<FileChunk> index;
};

FirstPart ReadFirstPart(FileBytes& file, const FileChunk& riff)
{
    std::optional<Header> header;
    std::optional<FileChunk> movie, index;
    std::uint64_t count = 0;
    for (std::uint64_t at = riff.content; at + 8 <= riff.end && ++count < mostTopChunks;) {
        const auto chunk = ChunkAt(file, at);
        if (!chunk || chunk->end > riff.end)
            Damaged("a part of it is longer than the whole");
        if (chunk->type == TagOf("hdrl") && !header)
            header = ReadHeader(file, *chunk);
        else if (chunk->type == TagOf("movi") && !movie)
            movie = chunk;
        else if (chunk->tag == TagOf("idx1") && !index)
            index = chunk;
        at = chunk->Next();
    }
    if (!header || !movie)
        Damaged("it has no header or no data");
    return {std::move(*header), *movie, index};
}

// A time in units of 100 ns stays below 2^61 for all frames.
void CheckLength(const AviStream& stream)
{
    constexpr std::uint64_t mostSeconds = 200'000'000'000;
    const std::uint64_t count = stream.chunks.size();
    if (count > 0x7FFFFFFF || count * stream.scale / stream.rate > mostSeconds)
        Damaged("a stream lasts longer than time");
}

} // namespace

const AviStream* AviFile::Pictures() const noexcept
{
    const auto found = std::ranges::find(streams, TagOf("vids"), &AviStream::type);
    return found == streams.end() ? nullptr : &*found;
}

bool BeginsAsAvi(FileBytes& file)
{
    const auto riff = ChunkAt(file, 0);
    return riff && riff->tag == TagOf("RIFF") && riff->type == TagOf("AVI ");
}

AviFile ReadAviFile(FileBytes& file)
{
    const auto riff = ChunkAt(file, 0);
    if (!riff || riff->end > file.Size())
        CutShort();
    FirstPart part = ReadFirstPart(file, *riff);
    const std::vector<FileChunk> more = FurtherMovies(file, riff->Next());
    ChunkList chunks(part.header, file.Size());
    const bool ownIndexes =
        std::ranges::all_of(part.header.indexes, [](const auto& streamIndex) { return !streamIndex.empty(); });
    if (ownIndexes && !more.empty()) {
        StreamIndexes reader(file, chunks);
        for (const auto& streamIndex : part.header.indexes)
            reader.Read(streamIndex);
    } else {
        if (part.header.hasIndex && part.index)
            ReadIndex(file, *part.index, part.movie, chunks);
        else
            WalkMovie(file, part.movie, chunks);
        for (const FileChunk& further : more)
            WalkMovie(file, further, chunks);
    }
    for (const AviStream& stream : part.header.streams)
        CheckLength(stream);
    return {std::move(part.header.streams)};
}

bool ReadChunk(FileBytes& file, const AviChunk& chunk, std::span<std::uint8_t> into)
{
    std::array<std::uint8_t, 8> head = {};
    return chunk.content >= head.size() && file.Read(chunk.content - head.size(), head) &&
           TagAt(head, 0) == chunk.tag && Number32(head, 4) == chunk.bytes && into.size() == chunk.bytes &&
           file.Read(chunk.content, into);
}

namespace {

std::optional<YuvLayout> YuvOf(const Tag& code)
{
    constexpr std::pair<Tag, YuvLayout> codes[] = {{TagOf("YUY2"), YuvLayout::Yuy2}, {TagOf("YUYV"), YuvLayout::Yuy2},
                                                   {TagOf("UYVY"), YuvLayout::Uyvy}, {TagOf("I420"), YuvLayout::I420},
                                                   {TagOf("IYUV"), YuvLayout::I420}, {TagOf("YV12"), YuvLayout::Yv12},
                                                   {TagOf("NV12"), YuvLayout::Nv12}};
    const auto* const found = std::ranges::find(codes, code, [](const auto& row) { return row.first; });
    return found == std::end(codes) ? std::nullopt : std::optional(found->second);
}

} // namespace

PictureLayout LayoutOfFormat(View format)
{
    if (format.size() < 40)
        Damaged("its pictures have no format");
    const std::uint32_t headerBytes = Number32(format, 0), colours = Number32(format, 32);
    const auto width = static_cast<std::int32_t>(Number32(format, 4));
    const auto height = static_cast<std::int32_t>(Number32(format, 8));
    PictureLayout layout;
    layout.bits = Number16(format, 14);
    layout.compression = Number32(format, 16);
    if (headerBytes < 40 || headerBytes > format.size() || width <= 0 || height == 0 || layout.bits > 32)
        Damaged("its pictures' format makes no sense");
    if (!DibBytes(width, height, 32))
        throw AviFault("has frames that no program can hold in one piece; make it smaller first.");
    layout.width = width;
    layout.topDown = height < 0;
    layout.height = layout.topDown ? -height : height;
    if (layout.bits > 0 && layout.bits <= 8) {
        const std::size_t most = std::size_t{1} << layout.bits, entries = colours > 0 ? colours : most;
        if (entries > 256 || entries * 4 > format.size() - headerBytes)
            Damaged("its colour table is cut short");
        for (std::size_t i = 0; i < entries; ++i)
            layout.colours[i] = Number32(format, headerBytes + i * 4) & 0xFFFFFF;
    }
    if (layout.yuv = YuvOf(TagAt(format, 16)); layout.yuv)
        layout.bytes = YuvBytes(*layout.yuv, layout.width, layout.height).value();
    if (layout.compression != 0)
        return layout;
    const auto bytes = DibBytes(width, height, layout.bits);
    if (!bytes)
        throw AviFault("has frames of an unknown depth; convert it to 24 or 32 bits first.");
    layout.bytes = *bytes;
    return layout;
}

void ToRgb32(const PictureLayout& layout, View stored, std::span<std::uint8_t> frame)
{
    const auto width = static_cast<std::size_t>(layout.width), height = static_cast<std::size_t>(layout.height);
    const std::size_t storedRow = layout.bytes / height;
    for (std::size_t y = 0; y < height; ++y) {
        const std::uint8_t* const in = stored.data() + (layout.topDown ? height - 1 - y : y) * storedRow;
        std::uint8_t* const out = frame.data() + y * width * 4;
        if (layout.bits == 32) {
            std::memcpy(out, in, width * 4);
            continue;
        }
        for (std::size_t x = 0; x < width; ++x) {
            std::uint32_t pixel = 0;
            if (layout.bits == 24) {
                pixel = in[x * 3] | std::uint32_t{in[x * 3 + 1]} << 8 | std::uint32_t{in[x * 3 + 2]} << 16;
            } else if (layout.bits == 16) { // five bits each, blue lowest
                const std::uint32_t value = in[x * 2] | std::uint32_t{in[x * 2 + 1]} << 8;
                for (unsigned channel = 0; channel < 3; ++channel) {
                    const std::uint32_t five = value >> (5 * channel) & 31;
                    pixel |= (five << 3 | five >> 2) << (8 * channel);
                }
            } else { // the leftmost pixel in a byte's highest bits
                const std::size_t inByte = x % (8 / layout.bits);
                const unsigned shift = 8 - layout.bits * static_cast<unsigned>(inByte + 1);
                pixel = layout.colours[in[x / (8 / layout.bits)] >> shift & ((1u << layout.bits) - 1)];
            }
            for (unsigned channel = 0; channel < 4; ++channel)
                out[x * 4 + channel] = static_cast<std::uint8_t>(pixel >> (8 * channel));
        }
    }
}

} // namespace vixahost::media
