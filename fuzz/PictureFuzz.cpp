// What is read of picture files before a codec sees them: nothing lies outside the file, and the answers are in range.
#include "host/media/PictureFacts.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const unsigned orientation = vixahost::media::OrientationOf({data, size});
    const auto stored = vixahost::media::StoredSizeOf({data, size});
    if (orientation < 1 || orientation > 8 || (stored && stored->sampleBytes != 1 && stored->sampleBytes != 2))
        std::abort();
    return 0;
}
