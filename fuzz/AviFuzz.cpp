// AVI files from outside: whatever the reader accepts must lie within the file, and turning its frames into 32 bits
// must stay within what was read. The sanitizers see a byte too far.
#include "host/media/DibSize.h"
#include "host/media/ForeignClip.h"
#include "tests/host/media/MemoryFile.h"

#include <algorithm>
#include <cstdlib>

using namespace vixahost::media;
using vixahost::test::MemoryFile;

namespace {

void Require(bool holds)
{
    if (!holds)
        std::abort();
}

void ReadFrames(MemoryFile& file, const AviStream& pictures)
{
    const PictureLayout layout = LayoutOfFormat(pictures.format);
    const std::size_t bytes = DibBytes(layout.width, layout.height, 32).value();
    if (!layout.IsUncompressed() || bytes > (1 << 20)) // a frame of one bit a pixel grows
        return;
    std::vector<std::uint8_t> stored(layout.bytes), frame(bytes);
    for (std::size_t i = 0; i < std::min<std::size_t>(pictures.chunks.size(), 4); ++i) {
        if (pictures.chunks[i].bytes != layout.bytes || !ReadChunk(file, pictures.chunks[i], stored)) {
            continue;
        }
        if (layout.yuv) {
            const YuvPixels pixels(*layout.yuv, ColoursFor({}, layout.width, layout.height), layout.width,
                                   layout.height);
            pixels.ToRgb(stored, frame);
            pixels.FromRgb(frame, stored);
        } else {
            ToRgb32(layout, stored, frame);
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    MemoryFile file({data, data + size});
    LacksItsFilm(file);
    TellsOfSound(file);
    try {
        const AviFile clip = ReadAviFile(file);
        for (const AviStream& stream : clip.streams) {
            Require(stream.rate > 0 && stream.scale > 0);
            for (const AviChunk& chunk : stream.chunks)
                Require(chunk.content <= size && chunk.bytes <= size - chunk.content);
        }
        if (const AviStream* const pictures = clip.Pictures())
            ReadFrames(file, *pictures);
    } catch (const AviFault&) {
    }
    return 0;
}
