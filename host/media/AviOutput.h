// Writes the structure of an AVI file, of any length. Portable: values in, bytes out.
#pragma once

#include "host/media/AviFile.h"

#include <cstdint>
#include <span>
#include <vector>

namespace vixahost::media {

// Takes a new file's bytes. One thread at a time.
class BytesSink
{
public:
    virtual ~BytesSink() = default;
    // Behind what was written, or over it. Throws when it can't.
    virtual void Write(std::uint64_t offset, std::span<const std::uint8_t> bytes) = 0;
    // After the last byte. Throws when one of them can't be written after all.
    virtual void Close() {}
};

// A file that fits into one part is plain AVI, which every program reads; a longer one is OpenDML: parts that follow
// each other, each with an index of its own for every stream, and an index of those in the header.
class AviOutput
{
public:
    // The largest part that programs with signed 32-bit places read.
    static constexpr std::uint64_t usualPart = 0x7FFFFFFF;
    // For as many parts there is room in the header.
    static constexpr std::uint32_t mostParts = 256;

    // A new file with these streams, of which the first one has the pictures; their lengths and chunks are counted
    // here. No part is longer than `part` unless one chunk is. The sink must outlive this.
    AviOutput(BytesSink& sink, std::vector<AviStream> newStreams, std::uint64_t part = usualPart);

    // The next chunk of a stream, with so many samples (one for a picture). Throws what the sink throws, and AviFault
    // when there is no more room for parts.
    void Add(std::size_t stream, std::span<const std::uint8_t> data, std::uint64_t samples);

    // Writes the indexes and the header; without this the file is not whole.
    void Finish();

private:
    struct Entry
    {
        std::uint32_t stream, bytes;
        std::uint64_t content;
    };
    // Of one stream in one part.
    struct PartIndex
    {
        std::uint64_t place; // of its chunk
        std::uint32_t bytes; // with the chunk's header
        std::uint32_t samples;
    };
    struct Track
    {
        AviStream stream;
        std::uint64_t samples = 0, partSamples = 0;
        std::vector<PartIndex> parts;
    };

    bool Several() const noexcept { return finished > 0; }
    std::vector<std::uint8_t> Header() const;
    std::uint64_t IndexBytes(std::uint64_t more) const noexcept;
    void Append(std::span<const std::uint8_t> bytes);
    std::vector<std::uint8_t> StreamIndex(std::size_t number) const;
    std::vector<std::uint8_t> PlainIndex() const;
    void WriteSize(std::uint64_t at); // of what begins behind it and ends with the file
    void BeginPart();
    void EndPart(bool last);

    BytesSink& file;
    std::vector<Track> tracks;
    const std::uint64_t partBytes;
    std::uint64_t end = 0;             // of what was written
    std::uint64_t riff = 0, movie = 0; // where the present part and its list of data begin
    std::uint64_t firstFrames = 0;     // in the first part
    std::uint32_t finished = 0;        // parts in front of the present one
    std::vector<Entry> entries;        // of the present part
};

} // namespace vixahost::media
