// A picture as the frames of a graph, and a graph's frames as a picture.
#pragma once

#include "host/media/Bands.h"
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

// Both ends of a graph for one picture of any size: it goes through in bands, and the results replace its colours; its
// alpha stays. A band is written before the next one is read, so besides the picture only a band's rows are in memory.
class BandedPicture : public FrameReader, public FrameWriter
{
public:
    // The picture must outlive this. `reach`: see Bands.
    BandedPicture(Picture& target, int reach, std::size_t most = bandBytes);
    FrameFormat Format() const override { return {picture.width, bands.Rows(), 25, 1}; }
    int FramesAPicture() const override { return bands.Count(); }
    bool Read(std::span<std::uint8_t> band) override;
    void Write(std::span<const std::uint8_t> band) override;
    bool Whole() const noexcept { return written == bands.Count(); }

private:
    Picture& picture;
    Bands bands;
    int read = 0, written = 0;
    std::vector<std::uint8_t> overlap; // the next band's first rows as they were before this band's result
};

} // namespace vixahost::media
