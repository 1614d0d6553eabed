// Streams of frames from outside: whatever their first line says, frames have the size that was told, and a line that
// is written says the same.
#include "host/media/RawFrames.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

using namespace vixahost::media;

namespace {

class Memory : public ByteSource
{
public:
    explicit Memory(std::span<const std::uint8_t> content) : left(content) {}
    std::size_t Read(std::span<std::uint8_t> into) override
    {
        const std::size_t bytes = std::min(into.size(), left.size());
        std::copy_n(left.begin(), bytes, into.begin());
        left = left.subspan(bytes);
        return bytes;
    }

private:
    std::span<const std::uint8_t> left;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Memory bytes({data, size});
    try {
        RawInput input(bytes);
        const RawFormat& format = input.Format();
        const std::string line = Y4mHeader(format);
        const RawFormat again = ReadY4mHeader(std::string_view(line).substr(0, line.size() - 1));
        if (again.FrameBytes() != format.FrameBytes() || again.rate != format.rate || again.scale != format.scale ||
            format.FrameBytes() == 0)
            std::abort();
        if (format.FrameBytes() > (1 << 20))
            return 0;
        const YuvPixels pixels(*format.yuv, ColoursFor({}, format.width, format.height), format.width, format.height);
        std::vector<std::uint8_t> stored(format.FrameBytes());
        std::vector<std::uint8_t> frame(static_cast<std::size_t>(format.width) *
                                        static_cast<std::size_t>(format.height) * 4);
        while (input.Next(stored)) {
            pixels.ToRgb(stored, frame);
            pixels.FromRgb(frame, stored);
        }
    } catch (const RawFault&) {
    }
    return 0;
}
