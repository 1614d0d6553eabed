// What a picture file says of itself that the platform's codecs don't tell, or tell too late. Portable.
#pragma once

#include "host/media/Picture.h"

#include <cstdint>
#include <optional>
#include <span>

namespace vixahost::media {

// Which side of a file's first picture is up, as cameras write it down (tag 274, values 1 to 8): from the Exif segment
// of a JPEG file or the Exif chunk of a PNG file, or from the first directory of a TIFF file. 1 (upright) when the file
// doesn't say, says nonsense or is damaged. Reads nothing outside the span.
unsigned OrientationOf(std::span<const std::uint8_t> file) noexcept;

// What a codec makes room for.
struct StoredSize
{
    std::uint32_t width, height; // pixels
    std::uint32_t sampleBytes;   // of each of a pixel's channels, 1 or 2
};

// The size that a PNG or JPEG file announces, read as their codecs read it; none for other files, and where there is no
// such header. Reads nothing outside the span.
std::optional<StoredSize> StoredSizeOf(std::span<const std::uint8_t> file) noexcept;

// The picture as it is to be seen, from the picture as it is stored; a value outside 1 to 8 counts as 1.
Picture TurnUpright(const Picture& stored, unsigned orientation);

} // namespace vixahost::media
