#include "host/media/PictureFrames.h"

#include "host/base/HostError.h"

#include <algorithm>

namespace vixahost::media {

bool PictureReader::Read(std::span<std::uint8_t> frame)
{
    if (left == 0)
        return false;
    --left;
    std::uint8_t* out = frame.data();
    for (int y = picture.height; y-- > 0;) {
        const std::uint8_t* in = picture.Row(y);
        for (int x = 0; x < picture.width; ++x, in += 4, out += 4) {
            std::copy_n(in, 3, out);
            out[3] = 0;
        }
    }
    return true;
}

void PictureWriter::Write(std::span<const std::uint8_t> frame)
{
    if (frame.size() != picture.pixels.size())
        throw FailedJob("The graph gave a frame of another size than the picture.");
    const std::uint8_t* in = frame.data();
    for (int y = picture.height; y-- > 0;) {
        std::uint8_t* out = picture.Row(y);
        for (int x = 0; x < picture.width; ++x, in += 4, out += 4)
            std::copy_n(in, 3, out);
    }
    ++frames;
}

} // namespace vixahost::media
