#include "filter/SampleBytes.h"

#include <algorithm>

namespace vixa {

namespace {

// The actual data length; a negative one counts as 0.
std::size_t LengthOf(IMediaSample& sample) noexcept
{
    return static_cast<std::size_t>(std::max(0L, sample.GetActualDataLength()));
}

} // namespace

std::span<std::uint8_t> BufferOf(IMediaSample* sample) noexcept
{
    BYTE* bytes = nullptr;
    if (!sample || FAILED(sample->GetPointer(&bytes)) || !bytes)
        return {};
    const long size = sample->GetSize();
    return {bytes, size > 0 ? static_cast<std::size_t>(size) : LengthOf(*sample)};
}

std::span<std::uint8_t> ValidBytesOf(IMediaSample* sample) noexcept
{
    const auto buffer = BufferOf(sample);
    return buffer.empty() ? buffer : buffer.first(std::min(LengthOf(*sample), buffer.size()));
}

} // namespace vixa
