// The bytes of a media sample, bounded by what the sample really holds.
#pragma once

#include <strmif.h>

#include <cstdint>
#include <span>

namespace vixa {

// The sample's valid bytes: its actual data length, but never more than its buffer. Empty when there is no sample, no
// buffer or a length below 1.
std::span<std::uint8_t> ValidBytesOf(IMediaSample* sample) noexcept;

// The sample's whole buffer, whatever its actual data length says. A size of 0 or less tells nothing; then it is the
// actual data length. Empty when there is none.
std::span<std::uint8_t> BufferOf(IMediaSample* sample) noexcept;

} // namespace vixa
