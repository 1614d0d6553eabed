#include "host/media/PictureFrames.h"

#include "host/base/HostError.h"

#include <algorithm>

namespace vixahost::media {

namespace {

// A frame's rows go from the picture's bottom to its top.
void ColoursOf(const Picture& picture, int firstRow, std::span<std::uint8_t> rows)
{
    std::uint8_t* out = rows.data();
    for (int y = picture.height - firstRow; out != rows.data() + rows.size();) {
        const std::uint8_t* in = picture.Row(--y);
        for (int x = 0; x < picture.width; ++x, in += 4, out += 4) {
            std::copy_n(in, 3, out);
            out[3] = 0;
        }
    }
}

void TakeColours(Picture& picture, int firstRow, std::span<const std::uint8_t> rows)
{
    const std::uint8_t* in = rows.data();
    for (int y = picture.height - firstRow; in != rows.data() + rows.size();) {
        std::uint8_t* out = picture.Row(--y);
        for (int x = 0; x < picture.width; ++x, in += 4, out += 4)
            std::copy_n(in, 3, out);
    }
}

void RequireSize(std::size_t given, std::size_t wanted)
{
    if (given != wanted)
        throw FailedJob("The graph gave a frame of another size than the picture.");
}

} // namespace

bool PictureReader::Read(std::span<std::uint8_t> frame)
{
    if (left == 0)
        return false;
    --left;
    ColoursOf(picture, 0, frame);
    return true;
}

void PictureWriter::Write(std::span<const std::uint8_t> frame)
{
    RequireSize(frame.size(), picture.pixels.size());
    TakeColours(picture, 0, frame);
    ++frames;
}

BandedPicture::BandedPicture(Picture& target, int reach, std::size_t most)
    : picture(target), bands(target.width, target.height, reach, most)
{
}

bool BandedPicture::Read(std::span<std::uint8_t> band)
{
    if (read == bands.Count())
        return false;
    const std::size_t row = picture.RowBytes();
    const Bands::Band now = bands.At(read++);
    std::copy(overlap.begin(), overlap.end(), band.begin());
    ColoursOf(picture, now.first + static_cast<int>(overlap.size() / row), band.subspan(overlap.size()));
    overlap.clear();
    if (read < bands.Count()) {
        const auto begin = band.begin() + static_cast<std::ptrdiff_t>(row) * (bands.At(read).first - now.first);
        overlap.assign(begin, begin + static_cast<std::ptrdiff_t>(row) * bands.Reach());
    }
    return true;
}

void BandedPicture::Write(std::span<const std::uint8_t> band)
{
    RequireSize(band.size(), Format().FrameBytes());
    const Bands::Band now = bands.At(written);
    const std::size_t row = picture.RowBytes();
    TakeColours(picture, now.keepBegin,
                band.subspan(static_cast<std::size_t>(now.keepBegin - now.first) * row,
                             static_cast<std::size_t>(now.keepEnd - now.keepBegin) * row));
    ++written;
}

} // namespace vixahost::media
