// A picture as the frames of a graph, and a graph's frames as a picture.
#pragma once

#include "host/media/Frames.h"
#include "host/media/Picture.h"

namespace vixahost::media {

// Gives the same picture a number of times, its alpha left aside (the fourth byte is 0).
class PictureReader : public FrameReader
{
public:
    // The picture must outlive the reader.
    explicit PictureReader(const Picture& source, int times = 1) : picture(source), left(times) {}
    FrameFormat Format() const override { return {picture.width, picture.height, 25, 1}; }
    bool Read(std::span<std::uint8_t> frame) override;

private:
    const Picture& picture;
    int left;
};

// Keeps the last frame's colours; the alpha of the picture it writes into stays.
class PictureWriter : public FrameWriter
{
public:
    // The picture must outlive the writer and have the frames' size.
    explicit PictureWriter(Picture& target) : picture(target) {}
    void Write(std::span<const std::uint8_t> frame) override;
    int FramesWritten() const noexcept { return frames; }

private:
    Picture& picture;
    int frames = 0;
};

} // namespace vixahost::media
