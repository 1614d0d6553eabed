#include "filter/SampleBytes.h"

#include <algorithm>

namespace vixa {

std::span<std::uint8_t> BufferOf(IMediaSample* sample) noexcept
{
    BYTE* bytes = nullptr;
    if (!sample || FAILED(sample->GetPointer(&bytes)) || !bytes)
        return {};
    return {bytes, static_cast<std::size_t>(std::max(0L, sample->GetSize()))};
}

std::span<std::uint8_t> ValidBytesOf(IMediaSample* sample) noexcept
{
    const auto buffer = BufferOf(sample);
    if (buffer.empty())
        return {};
    const auto length = static_cast<std::size_t>(std::max(0L, sample->GetActualDataLength()));
    return buffer.first(std::min(length, buffer.size()));
}

} // namespace vixa
