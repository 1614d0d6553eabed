#include "host/media/AviOutput.h"

#include <algorithm>
#include <utility>

namespace vixahost::media {

namespace {

using ByteString = std::vector<std::uint8_t>;

constexpr std::size_t indexHeaderBytes = 24;

void Put(ByteString& to, std::uint64_t value, int bytes)
{
    for (int i = 0; i < bytes; ++i)
        to.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

void Put32(ByteString& to, std::uint64_t value)
{
    Put(to, value, 4);
}

void PutTag(ByteString& to, const Tag& tag)
{
    for (const char letter : tag)
        to.push_back(static_cast<std::uint8_t>(letter));
}

void PutChunk(ByteString& to, const Tag& tag, const ByteString& content)
{
    PutTag(to, tag);
    Put32(to, content.size());
    to.insert(to.end(), content.begin(), content.end());
    if (content.size() % 2 != 0)
        to.push_back(0);
}

ByteString ListOf(const Tag& type)
{
    ByteString list;
    PutTag(list, type);
    return list;
}

// "01wb".
Tag ChunkTag(std::size_t stream, const Tag& type)
{
    constexpr char digits[] = "0123456789ABCDEF";
    const bool pictures = type == TagOf("vids");
    return {digits[stream / 16], digits[stream % 16], pictures ? 'd' : 'w', 'b'};
}

// "ix01".
Tag IndexTag(std::size_t stream)
{
    const Tag chunk = ChunkTag(stream, {});
    return {'i', 'x', chunk[0], chunk[1]};
}

std::uint64_t Padded(std::uint64_t bytes)
{
    return bytes + (bytes & 1);
}

} // namespace

AviOutput::AviOutput(BytesSink& sink, std::vector<AviStream> newStreams, std::uint64_t part)
    : file(sink), partBytes(part)
{
    for (AviStream& stream : newStreams) {
        stream.chunks.clear();
        stream.suggestedBuffer = 0;
        tracks.push_back({std::move(stream), 0, 0, {}});
    }
    Append(Header()); // its room; what it says is known at the end
    movie = end;
    ByteString list;
    PutTag(list, TagOf("LIST"));
    Put32(list, 0);
    PutTag(list, TagOf("movi"));
    Append(list);
}

void AviOutput::Append(std::span<const std::uint8_t> bytes)
{
    file.Write(end, bytes);
    end += bytes.size();
}

// What the present part's indexes take with so many chunks more.
std::uint64_t AviOutput::IndexBytes(std::uint64_t more) const noexcept
{
    const std::uint64_t chunks = entries.size() + more;
    return tracks.size() * (8 + indexHeaderBytes) + chunks * 8 + (Several() ? 0 : 8 + chunks * 16);
}

void AviOutput::Add(std::size_t stream, std::span<const std::uint8_t> data, std::uint64_t samples)
{
    const std::uint64_t bytes = 8 + Padded(data.size());
    if (!entries.empty() && end - riff + bytes + IndexBytes(1) > partBytes) {
        EndPart(false);
        BeginPart();
    }
    Track& track = tracks[stream];
    ByteString head;
    PutTag(head, ChunkTag(stream, track.stream.type));
    Put32(head, data.size());
    Append(head);
    entries.push_back({static_cast<std::uint32_t>(stream), static_cast<std::uint32_t>(data.size()), end});
    Append(data);
    if (data.size() % 2 != 0)
        Append(ByteString{0});
    track.samples += samples;
    track.partSamples += samples;
    track.stream.suggestedBuffer = std::max(track.stream.suggestedBuffer, static_cast<std::uint32_t>(data.size()));
}

void AviOutput::BeginPart()
{
    if (finished == mostParts)
        throw AviFault("would have more than " + std::to_string(mostParts) +
                       " parts, for which an AVI file has no room; split the clip first.");
    riff = end;
    ByteString head;
    PutTag(head, TagOf("RIFF"));
    Put32(head, 0);
    PutTag(head, TagOf("AVIX"));
    PutTag(head, TagOf("LIST"));
    Put32(head, 0);
    PutTag(head, TagOf("movi"));
    movie = riff + 12;
    Append(head);
}

// The index of a stream's chunks in the present part, as a chunk; empty when it has none there.
std::vector<std::uint8_t> AviOutput::StreamIndex(std::size_t number) const
{
    ByteString list;
    std::uint32_t count = 0;
    for (const Entry& entry : entries)
        if (entry.stream == number) {
            Put32(list, entry.content - movie);
            Put32(list, entry.bytes); // the highest bit would say that it is no key frame
            ++count;
        }
    ByteString index, chunk;
    if (count == 0)
        return chunk;
    Put(index, 2, 2);      // numbers an entry
    Put(index, 1 << 8, 2); // an index of chunks
    Put32(index, count);
    PutTag(index, ChunkTag(number, tracks[number].stream.type));
    Put(index, movie, 8);
    Put32(index, 0);
    index.insert(index.end(), list.begin(), list.end());
    PutChunk(chunk, IndexTag(number), index);
    return chunk;
}

// The index of the first part, of all streams, as plain AVI has it.
std::vector<std::uint8_t> AviOutput::PlainIndex() const
{
    ByteString index, chunk;
    for (const Entry& entry : entries) {
        PutTag(index, ChunkTag(entry.stream, tracks[entry.stream].stream.type));
        Put32(index, 0x10); // a key frame
        Put32(index, entry.content - 8 - (movie + 8));
        Put32(index, entry.bytes);
    }
    PutChunk(chunk, TagOf("idx1"), index);
    return chunk;
}

void AviOutput::WriteSize(std::uint64_t at)
{
    ByteString size;
    Put32(size, end - at - 4);
    file.Write(at, size);
}

// The only part of a file has no indexes for each stream, but the old one.
void AviOutput::EndPart(bool last)
{
    if (Several() || !last)
        for (std::size_t number = 0; number < tracks.size(); ++number) {
            Track& track = tracks[number];
            const ByteString index = StreamIndex(number);
            if (index.empty())
                continue;
            track.parts.push_back(
                {end, static_cast<std::uint32_t>(index.size()), static_cast<std::uint32_t>(track.partSamples)});
            Append(index);
            track.partSamples = 0;
        }
    WriteSize(movie + 4);
    if (!Several()) {
        firstFrames = tracks.front().samples;
        Append(PlainIndex());
    }
    WriteSize(riff + 4);
    if (!last)
        ++finished;
    entries.clear();
}

void AviOutput::Finish()
{
    EndPart(true);
    ByteString header = Header();
    // All but the part's size, which stands there.
    file.Write(8, std::span(header).subspan(8));
}

std::vector<std::uint8_t> AviOutput::Header() const
{
    const AviStream& pictures = tracks.front().stream;
    const PictureLayout layout = LayoutOfFormat(pictures.format);
    std::uint32_t buffer = 0;
    for (const Track& track : tracks)
        buffer = std::max(buffer, track.stream.suggestedBuffer);
    ByteString main;
    const std::uint32_t hasIndexInterleaved = 0x110;
    for (const std::uint64_t value :
         {std::uint64_t{pictures.scale} * 1'000'000 / pictures.rate, std::uint64_t{0}, std::uint64_t{0},
          std::uint64_t{hasIndexInterleaved}, firstFrames, std::uint64_t{0}, std::uint64_t{tracks.size()},
          std::uint64_t{buffer}, static_cast<std::uint64_t>(layout.width), static_cast<std::uint64_t>(layout.height),
          std::uint64_t{0}, std::uint64_t{0}, std::uint64_t{0}, std::uint64_t{0}})
        Put32(main, value);
    ByteString headers = ListOf(TagOf("hdrl"));
    PutChunk(headers, TagOf("avih"), main);
    // The room of what a plain file does not have is kept as a piece without meaning.
    const Tag unused = TagOf("JUNK");
    for (std::size_t number = 0; number < tracks.size(); ++number) {
        const auto& [stream, samples, partSamples, parts] = tracks[number];
        ByteString head;
        PutTag(head, stream.type);
        PutTag(head, stream.handler);
        Put32(head, stream.flags);
        Put(head, stream.priority, 2);
        Put(head, stream.language, 2);
        for (const std::uint64_t value :
             {std::uint64_t{stream.initialFrames}, std::uint64_t{stream.scale}, std::uint64_t{stream.rate},
              std::uint64_t{stream.start}, samples, std::uint64_t{stream.suggestedBuffer},
              std::uint64_t{stream.quality}, std::uint64_t{stream.sampleSize}, std::uint64_t{0}})
            Put32(head, value);
        const bool shown = stream.type == TagOf("vids");
        Put(head, static_cast<std::uint64_t>(shown ? layout.width : 0), 2);
        Put(head, static_cast<std::uint64_t>(shown ? layout.height : 0), 2);
        ByteString list = ListOf(TagOf("strl"));
        PutChunk(list, TagOf("strh"), head);
        PutChunk(list, TagOf("strf"), stream.format);
        if (!stream.name.empty()) {
            ByteString name(stream.name.begin(), stream.name.end());
            name.push_back(0);
            PutChunk(list, TagOf("strn"), name);
        }
        ByteString index;
        Put(index, 4, 2); // numbers an entry
        Put(index, 0, 2); // an index of indexes
        Put32(index, parts.size());
        PutTag(index, ChunkTag(number, stream.type));
        index.resize(indexHeaderBytes);
        for (const PartIndex& part : parts) {
            Put(index, part.place, 8);
            Put32(index, part.bytes);
            Put32(index, part.samples);
        }
        index.resize(indexHeaderBytes + std::size_t{mostParts} * 16);
        PutChunk(list, Several() ? TagOf("indx") : unused, index);
        PutChunk(headers, TagOf("LIST"), list);
    }
    ByteString total;
    Put32(total, tracks.front().samples);
    total.resize(248);
    ByteString extended = ListOf(TagOf("odml"));
    PutChunk(extended, TagOf("dmlh"), total);
    PutChunk(headers, Several() ? TagOf("LIST") : unused, extended);

    ByteString start;
    PutTag(start, TagOf("RIFF"));
    Put32(start, 0);
    PutTag(start, TagOf("AVI "));
    PutChunk(start, TagOf("LIST"), headers);
    return start;
}

} // namespace vixahost::media
