// A clip's sound, on its way into a copy.
#pragma once

#include "host/media/AviFile.h"

#include <cstdint>
#include <vector>

namespace vixahost::media {

// One stream, a piece at a time; one thread at a time, which may be another than the frames'.
class SoundReader
{
public:
    virtual ~SoundReader() = default;
    // Its header and format; of its chunks nothing.
    virtual const AviStream& Stream() const noexcept = 0;
    // Appends the next piece to the data; false at the end. Throws HostError.
    virtual bool Read(std::vector<std::uint8_t>& data) = 0;
};

} // namespace vixahost::media
