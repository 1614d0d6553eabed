// One effect over a picture whose rows stand from the top, from one buffer into another, with its alpha kept.
#pragma once

#include "effects/kernels/Step.h"

#include <cstddef>
#include <cstdint>

namespace vixa::frei0r {

// A picture of 32-bit pixels (byte 0 blue, 1 green, 2 red, 3 alpha), its topmost row first, rows without padding.
struct PictureSize
{
    std::size_t width; // at least 1
    std::size_t height;
};

// Writes to `out` what the effect makes of `in`: the colours that the library gives for the same picture in its own
// order of rows, the lowest first, and the alpha of `in`. The two are one buffer or don't overlap. A convolution's size
// and scratch are set here. Memory is had for the length of the call, some 200 KB for usual widths; when there is none
// the picture is copied as it is. Any threads may call at once.
void Render(kernels::StepParameters effect, const std::uint32_t* in, std::uint32_t* out, PictureSize size) noexcept;

} // namespace vixa::frei0r
