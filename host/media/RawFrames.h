// Frames that follow each other in a stream without an index: YUV4MPEG2 ("y4m"), or bare 32-bit RGB. Portable.
#pragma once

#include "host/media/AviFile.h"
#include "host/media/YuvPixels.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace vixahost::media {

// A stream's bytes, one after the other. One thread at a time.
class ByteSource
{
public:
    virtual ~ByteSource() = default;
    // How many bytes were there; fewer than asked for only at the stream's end. Throws when it can't be read.
    virtual std::size_t Read(std::span<std::uint8_t> into) = 0;
};

// Why a stream can't be taken, as the rest of a sentence that begins with the stream's name.
class RawFault : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

struct RawFormat
{
    int width = 0, height = 0;          // pixels
    std::uint32_t rate = 25, scale = 1; // frames per second are rate / scale
    std::optional<YuvLayout> yuv = {};  // planar; none: blue, green, red and a byte without colour, rows from the top
    std::optional<YuvRange> range = {};
    // What y4m says of pixels' shape, fields and where chroma lies, handed on as it stands: " Ip A1:1 C420jpeg".
    std::string tags = {};

    std::size_t FrameBytes() const noexcept;
};

// The first line of a y4m stream without its end. Throws RawFault, also for what is no such line, for samples of more
// than 8 bits and for a size or rate of no sense.
RawFormat ReadY4mHeader(std::string_view line);
// Such a line with its end.
std::string Y4mHeader(const RawFormat& format);

// The planar layout that keeps the chroma of frames in another, or all of RGB's.
YuvLayout PlanarFor(const std::optional<YuvLayout>& layout) noexcept;

class RawInput
{
public:
    // A y4m stream: reads its first line. The source must outlive this.
    explicit RawInput(ByteSource& bytes);
    // Bare frames of this format. Throws RawFault for a size that no frame in memory can have.
    RawInput(ByteSource& bytes, RawFormat frames);

    const RawFormat& Format() const noexcept { return format; }
    // Fills `stored` (the format's FrameBytes) with the next frame; false at the stream's end. Throws RawFault when the
    // stream ends within a frame or goes on with something else.
    bool Next(std::span<std::uint8_t> stored);
    // Of a y4m stream: goes to the next frame's samples.
    bool Begin();

private:
    std::string Line(std::string begun);

    ByteSource& source;
    RawFormat format;
    bool y4m;
    std::int64_t frame = 0;
};

// A y4m stream in a file, where each frame's samples begin.
struct Y4mFile
{
    RawFormat format;
    std::vector<std::uint64_t> frames;
};
// Throws RawFault as the functions above.
Y4mFile ReadY4mFile(FileBytes& file);

} // namespace vixahost::media
