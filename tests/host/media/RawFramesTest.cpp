// Streams of frames: what their first line says, and where they may end.
#include "host/media/RawFrames.h"
#include "tests/host/media/MemoryFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace vixahost::media {
namespace {

class Text : public ByteSource
{
public:
    explicit Text(std::string content) : text(std::move(content)) {}
    std::size_t Read(std::span<std::uint8_t> into) override
    {
        const std::size_t bytes = std::min(into.size(), text.size());
        std::copy_n(text.begin(), bytes, into.begin());
        text.erase(0, bytes);
        return bytes;
    }

private:
    std::string text;
};

TEST(RawFrames, TheFirstLineIsUnderstood)
{
    const RawFormat format = ReadY4mHeader("YUV4MPEG2 W17 H5 F30000:1001 Ip A10:11 C422 Xother XCOLORRANGE=FULL");
    EXPECT_EQ(format.width, 17);
    EXPECT_EQ(format.height, 5);
    EXPECT_EQ(format.rate, 30000u);
    EXPECT_EQ(format.scale, 1001u);
    EXPECT_EQ(format.yuv, YuvLayout::I422);
    EXPECT_EQ(format.range, YuvRange::Full);
    EXPECT_EQ(format.FrameBytes(), std::size_t{17 * 5 + 2 * 9 * 5});
    EXPECT_EQ(Y4mHeader(format), "YUV4MPEG2 W17 H5 F30000:1001 Ip A10:11 C422 XCOLORRANGE=FULL\n");
    EXPECT_EQ(Y4mHeader({2, 2, 25, 1, YuvLayout::I420}), "YUV4MPEG2 W2 H2 F25:1 C420jpeg XCOLORRANGE=LIMITED\n");
    const RawFormat bare = ReadY4mHeader("YUV4MPEG2 W2 H2 F0:0");
    EXPECT_TRUE(bare.yuv == YuvLayout::I420 && bare.rate == 25 && bare.scale == 1);
    for (const char* const line : {"", "RIFF", "YUV4MPEG2X W2 H2", "YUV4MPEG2 W2", "YUV4MPEG2 W-2 H2",
                                   "YUV4MPEG2 W2x H2", "YUV4MPEG2 W99999 H99999", "YUV4MPEG2 W99999999999 H1",
                                   "YUV4MPEG2 W2 H2 F1:0", "YUV4MPEG2 W2 H2 F1:61", "YUV4MPEG2 W2 H2 C420p10"})
        EXPECT_THROW(ReadY4mHeader(line), RawFault) << line;
}

TEST(RawFrames, AStreamEndsBetweenFramesOnly)
{
    const std::string header = "YUV4MPEG2 W2 H1 Cmono\n", frames = "FRAME\nabFRAME Xmore\ncd";
    std::vector<std::uint8_t> frame(2);
    Text whole(header + frames);
    RawInput input(whole);
    EXPECT_TRUE(input.Next(frame));
    EXPECT_TRUE(input.Next(frame));
    EXPECT_EQ(frame, (std::vector<std::uint8_t>{'c', 'd'}));
    EXPECT_FALSE(input.Next(frame));
    const auto fileOf = [](const std::string& text) {
        test::MemoryFile file({text.begin(), text.end()});
        return ReadY4mFile(file);
    };
    const std::uint64_t first = header.size() + 6;
    EXPECT_EQ(fileOf(header + frames).frames, (std::vector<std::uint64_t>{first, first + 2 + 12}));
    for (const std::size_t bytes : {1u, 6u, 7u, 10u, 14u, 21u}) {
        EXPECT_THROW(fileOf(header + frames.substr(0, bytes)), RawFault) << bytes;
        Text cut(header + frames.substr(0, bytes));
        RawInput cutInput(cut);
        EXPECT_THROW(while (cutInput.Next(frame)){}, RawFault) << bytes;
    }
    Text other(header + "FRAME\nabFRAMES\n");
    RawInput wrong(other);
    EXPECT_TRUE(wrong.Next(frame));
    EXPECT_THROW(wrong.Next(frame), RawFault);
    Text endless(std::string(9000, 'Y'));
    EXPECT_THROW(RawInput{endless}, RawFault);
    Text bare(std::string(12, 'x'));
    std::vector<std::uint8_t> pixels(8);
    RawInput pairs(bare, {2, 1});
    EXPECT_TRUE(pairs.Next(pixels));
    EXPECT_THROW(pairs.Next(pixels), RawFault);
}

} // namespace
} // namespace vixahost::media
