// The structure of an AVI file, read without trust in any of its numbers. Portable: bytes in, values out.
#pragma once

#include "host/media/YuvPixels.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace vixahost::media {

// A file's bytes at any place. One thread at a time, where a class doesn't say more.
class FileBytes
{
public:
    virtual ~FileBytes() = default;
    virtual std::uint64_t Size() const = 0;
    // False when the file has fewer bytes there.
    virtual bool Read(std::uint64_t offset, std::span<std::uint8_t> into) = 0;
};

using Tag = std::array<char, 4>;

constexpr Tag TagOf(const char (&text)[5])
{
    return {text[0], text[1], text[2], text[3]};
}

// One piece of a stream's data, as the index tells; the piece's own header stands in front of it and may differ.
struct AviChunk
{
    Tag tag = {};
    std::uint32_t bytes = 0;
    std::uint64_t content = 0; // where its data begins in the file
};

struct AviStream
{
    // What its header says. Rate and scale are not 0.
    Tag type = {}, handler = {};
    std::uint32_t flags = 0, initialFrames = 0, scale = 1, rate = 1, start = 0, length = 0;
    std::uint32_t suggestedBuffer = 0, quality = 0, sampleSize = 0;
    std::uint16_t priority = 0, language = 0;
    std::string name; // bytes as they stand in the file
    // A BITMAPINFO for pictures (at least its header is there, and the colour table that it announces), a WAVEFORMATEX
    // or its first 14 bytes for sound.
    std::vector<std::uint8_t> format;
    // Lies within the file, in the order of the index.
    std::vector<AviChunk> chunks;
};

struct AviFile
{
    std::vector<AviStream> streams;

    // The first stream of pictures, or null.
    const AviStream* Pictures() const noexcept;
};

// Why a file can't be read, as the rest of a sentence that begins with the file's name.
class AviFault : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

// Of any length and number of parts (OpenDML). Throws AviFault for a file that is cut short, damaged, or whose palette
// changes.
// std::bad_alloc for one that is larger than memory.
AviFile ReadAviFile(FileBytes& file);

// True when the file begins as an AVI clip does.
bool BeginsAsAvi(FileBytes& file);

// The chunk's data; false when the chunk isn't what the index says. `into` has the chunk's size.
bool ReadChunk(FileBytes& file, const AviChunk& chunk, std::span<std::uint8_t> into);

// A BITMAPINFO whose pixels are uncompressed or not. YUV lies top-down, whatever its height says.
struct PictureLayout
{
    int width = 0, height = 0; // pixels
    bool topDown = false;
    unsigned bits = 0;
    std::uint32_t compression = 0;
    std::optional<YuvLayout> yuv = {};        // none for RGB
    std::size_t bytes = 0;                    // of a whole uncompressed frame; 0 for a compressed one
    std::array<std::uint32_t, 256> colours{}; // blue in the lowest byte

    bool IsUncompressed() const noexcept { return bytes > 0; }
};

// Throws AviFault for a size or depth that no frame in memory can have.
PictureLayout LayoutOfFormat(std::span<const std::uint8_t> format);

// Turns a frame of uncompressed RGB (layout.bytes) into 32 bits, bottom-up; the fourth byte of 32-bit pixels stays,
// else it is 0. `frame` has width * height * 4 bytes.
void ToRgb32(const PictureLayout& layout, std::span<const std::uint8_t> stored, std::span<std::uint8_t> frame);

} // namespace vixahost::media
