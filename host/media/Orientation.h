// Which side of a picture is up, as cameras write it down: the field's orientation tag (number 274, values 1 to 8).
#pragma once

#include "host/media/Picture.h"

#include <cstdint>
#include <span>

namespace vixahost::media {

// The orientation of a picture file's first picture: from the Exif segment of a JPEG file or the Exif chunk of a PNG
// file, or from the first directory of a TIFF file. 1 (upright) when the file doesn't say, says nonsense or is damaged.
// Reads nothing outside the span.
unsigned OrientationOf(std::span<const std::uint8_t> file) noexcept;

// The picture as it is to be seen, from the picture as it is stored; a value outside 1 to 8 counts as 1.
Picture TurnUpright(const Picture& stored, unsigned orientation);

} // namespace vixahost::media
