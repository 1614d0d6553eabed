// The effects' arithmetic in its plainest form, written from the data blocks' meaning: what a frame must come out as.
#pragma once

#include <guiddef.h>

#include <cstdint>
#include <span>
#include <vector>

namespace vixahost::validate {

// `frame` holds width x |height| pixels of 4 bytes (blue, green, red, a fourth); rows follow without padding.
std::vector<std::uint8_t> ExpectedFrame(const GUID& effect, std::span<const std::int32_t> block,
                                        std::vector<std::uint8_t> frame, int width, int height);

} // namespace vixahost::validate
