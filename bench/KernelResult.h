// What an effect must make of a frame: the pixel kernels' own plain form, reached without the library and its filters.
#pragma once

#include "host/effects/EffectStack.h"

#include <cstdint>
#include <span>

namespace vixahost::bench {

// Changes a frame (32-bit RGB, bottom-up, `width` by `height` pixels) as the step's effect does with its parameters.
void ApplyKernel(const effects::EffectStep& step, std::span<std::uint8_t> frame, int width, int height);

} // namespace vixahost::bench
