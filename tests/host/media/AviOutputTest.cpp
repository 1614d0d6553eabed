// AVI files as they are written, read back.
#include "tests/host/media/MemoryFile.h"

#include <gtest/gtest.h>

#include <string_view>

namespace vixahost::media {
namespace {

using test::MemoryFile;
using Bytes = std::vector<std::uint8_t>;

constexpr int frameCount = 40;
constexpr std::string_view indexTag = "indx";

Bytes ChunkOf(std::size_t stream, int number)
{
    // The sound's have odd sizes, and one is empty.
    Bytes chunk(stream == 0 ? std::size_t{8} * 4 * 4 : std::size_t(number % 5) * 7);
    for (std::size_t i = 0; i < chunk.size(); ++i)
        chunk[i] = static_cast<std::uint8_t>(i * 3 + std::size_t(number) * 7 + stream);
    return chunk;
}

// 8 x 4 pixels of 32 bits.
Bytes Format()
{
    Bytes format(40);
    format[0] = 40;
    format[4] = 8;
    format[8] = 4;
    format[14] = 32;
    return format;
}

// Forty frames with sound.
MemoryFile WriteClip(std::uint64_t part)
{
    AviStream pictures, sound;
    pictures.type = TagOf("vids");
    pictures.rate = 25;
    pictures.format = Format();
    pictures.name = "odd";
    sound.type = TagOf("auds");
    sound.format = Bytes(14, 1);
    MemoryFile file;
    AviOutput output(file, {pictures, sound}, part);
    for (int i = 0; i < frameCount; ++i) {
        output.Add(0, ChunkOf(0, i), 1);
        output.Add(1, ChunkOf(1, i), 1);
    }
    output.Finish();
    return file;
}

std::size_t Count(const Bytes& bytes, std::string_view tag)
{
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    std::size_t count = 0;
    for (auto at = text.find(tag); at != std::string_view::npos; at = text.find(tag, at + 1))
        ++count;
    return count;
}

std::uint32_t NumberBehind(const Bytes& bytes, std::string_view tag, std::size_t offset)
{
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const auto at = text.find(tag) + offset;
    return bytes[at] | std::uint32_t{bytes[at + 1]} << 8 | std::uint32_t{bytes[at + 2]} << 16 |
           std::uint32_t{bytes[at + 3]} << 24;
}

void ExpectWhole(MemoryFile& file)
{
    const AviFile clip = ReadAviFile(file);
    ASSERT_EQ(clip.streams.size(), 2u);
    EXPECT_EQ(clip.streams[0].name, "odd");
    for (std::size_t stream = 0; stream < 2; ++stream) {
        const auto& chunks = clip.streams[stream].chunks;
        EXPECT_EQ(clip.streams[stream].length, std::uint32_t{frameCount});
        ASSERT_EQ(chunks.size(), std::size_t{frameCount});
        for (int i = 0; i < frameCount; ++i) {
            Bytes data(chunks[std::size_t(i)].bytes);
            EXPECT_TRUE(ReadChunk(file, chunks[std::size_t(i)], data) && data == ChunkOf(stream, i))
                << "stream " << stream << ", chunk " << i;
        }
    }
}

TEST(AviOutput, WhatFitsIsPlain)
{
    MemoryFile file = WriteClip(AviOutput::usualPart);
    ExpectWhole(file);
    EXPECT_EQ(NumberBehind(file.bytes, "RIFF", 4) + 8, file.bytes.size());
    EXPECT_EQ(Count(file.bytes, "idx1"), 1u);
    for (const char* const tag : {"AVIX", "indx", "ix00", "odml"})
        EXPECT_EQ(Count(file.bytes, tag), tag == std::string_view("odml") ? 1u : 0u) << tag;
}

TEST(AviOutput, WhatIsLongerHasParts)
{
    for (const std::uint64_t part : {1u, 1500u, 12'000u, 14'000u}) {
        SCOPED_TRACE(part);
        MemoryFile file = WriteClip(part);
        ExpectWhole(file); // by the streams' indexes
        const std::size_t parts = Count(file.bytes, "RIFF");
        EXPECT_EQ(parts, Count(file.bytes, "AVIX") + 1);
        EXPECT_GT(parts, 1u);
        EXPECT_EQ(NumberBehind(file.bytes, "dmlh", 8), std::uint32_t{frameCount});
        EXPECT_LT(NumberBehind(file.bytes, "avih", 8 + 16), std::uint32_t{frameCount}) << "the first part's alone";
        std::uint64_t at = 0;
        for (std::size_t i = 0; i < parts; ++i) {
            ASSERT_LT(at + 8, file.bytes.size());
            const std::uint64_t bytes =
                NumberBehind({file.bytes.begin() + std::ptrdiff_t(at), file.bytes.end()}, "RIFF", 4) + 8;
            EXPECT_TRUE(i == 0 || part < 1500 || bytes <= part) << bytes;
            at += bytes;
        }
        EXPECT_EQ(at, file.bytes.size());
        // Without them: by the old index and the parts' own data.
        MemoryFile bare = file;
        for (auto found = bare.bytes.begin();
             (found = std::search(found, bare.bytes.end(), indexTag.begin(), indexTag.end())) != bare.bytes.end();)
            *found = 'J';
        ExpectWhole(bare);
        bare.bytes.resize(bare.bytes.size() - 1);
        EXPECT_THROW(ReadAviFile(bare), AviFault);
    }
}

TEST(AviOutput, AnIndexIsNotReadAgainAndAgain)
{
    MemoryFile file = WriteClip(12'000);
    const auto list = std::search(file.bytes.begin(), file.bytes.end(), indexTag.begin(), indexTag.end()) + 8;
    *(list + 4) = 0;
    *(list + 5) = 1; // 256 entries
    for (std::ptrdiff_t entry = 1; entry < 256; ++entry)
        std::copy_n(list + 24, 16, list + 24 + entry * 16);
    EXPECT_THROW(ReadAviFile(file), AviFault);
}

TEST(AviOutput, TooManyPartsAreRefused)
{
    MemoryFile file;
    AviStream pictures;
    pictures.type = TagOf("vids");
    pictures.format = Format();
    AviOutput output(file, {pictures}, 1);
    for (std::uint32_t i = 0; i < AviOutput::mostParts; ++i)
        output.Add(0, {}, 1);
    EXPECT_THROW(output.Add(0, {}, 1), AviFault);
}

} // namespace
} // namespace vixahost::media
