// The pixel arithmetic of the thirteen effects, over frames in memory.
//
// A frame is a span of 32-bit pixels (byte 0 blue, 1 green, 2 red, 3 a fourth byte), rows without padding, changed in
// place; it may start at any address. Nothing outside the span is read or written, nothing is allocated, nothing fails,
// and calls on different frames may run on different threads at once.
//
// The arithmetic exists at several levels, one per instruction set; all of them give the same bytes for every input.
#pragma once

#include "effects/kernels/Parameters.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace vixa::kernels {

using Frame = std::span<std::uint8_t>;

struct PointStep;

struct KernelSet
{
    // Maps bytes 0 to 2 of each whole pixel through the table.
    void (*gamma)(Frame frame, const GammaTable& table) noexcept;

    // Scales bytes 0 to 2 of each whole pixel to `factor` percent and clears byte 3.
    void (*multiply)(Frame frame, std::int32_t factor) noexcept;

    // Inverts the channels that `mask` selects (bit 0 blue, 1 green, 2 red) and clears the others and byte 3, in each
    // whole pair of pixels. A mask of 0 leaves the frame alone.
    void (*invert)(Frame frame, std::int32_t mask) noexcept;

    // Raises or lowers one channel, with saturation, in each whole pixel of the chosen hue.
    void (*filterColor)(Frame frame, const FilterColorParameters& parameters) noexcept;

    // Adds the offsets with saturation in each whole pair of pixels.
    void (*add)(Frame frame, const AddParameters& parameters) noexcept;

    // Applies the 3 x 3 kernel to the inner pixels of the first |height| rows of `width` pixels; the outermost rows and
    // columns become 0 in all four bytes, and so does every pixel of a picture below 3 x 3. The frame stays as it is
    // when there is no kernel yet, when it is shorter than the picture, when the picture is empty (width below 1 or
    // height 0) or when `scratch` is smaller than ConvolutionScratchBytes(width); what scratch holds before and after
    // has no meaning.
    void (*convolve)(Frame frame, std::int32_t width, std::int32_t height, const ConvolutionParameters& parameters,
                     Frame scratch) noexcept;

    // The same in pieces, for a picture whose rows become ready from the first on: goes on where `done` rows are
    // finished, given that the first `ready` rows are there, and returns how many rows are finished now. Between the
    // calls for one frame scratch is kept, and finished rows may be changed; the call with all rows ready (`ready` may
    // be more) finishes them all. Rows that are not ready are not touched. A frame that stays as it is counts as
    // finished as far as it is ready.
    std::size_t (*convolveRows)(Frame frame, std::int32_t width, std::int32_t height,
                                const ConvolutionParameters& parameters, Frame scratch, std::size_t done,
                                std::size_t ready) noexcept;

    // Several effects that look at each pixel alone, one after the other, in one pass over the whole pixels of a frame;
    // PlanPoint (Plan.h) prepares them. The result goes to as many bytes at `to`, which are the frame's own or apart
    // from it; the fourth bytes may be kept as they are. Null at the levels that have none.
    void (*points)(std::span<const std::uint8_t> frame, std::uint8_t* to, std::span<const PointStep> steps,
                   bool keepFourth) noexcept;
};

// The bytes of working memory that `convolve` asks for: a few rows; 0 for a width below 1.
std::size_t ConvolutionScratchBytes(std::int32_t width) noexcept;

// Instruction sets, each holding the ones before it.
enum class Level
{
    Scalar, // plain C++: the definition of every effect
    Sse2,
    Avx2,
    Avx512, // F, BW, VL, VBMI and VNNI
};

// The highest level that this build holds and that both the processor and the operating system allow.
Level HighestLevel() noexcept;

// All kernels at one level; a level above the highest is lowered to it. The highest level is the fastest, with the few
// exceptions in docs/performance.md; lower ones are for tests, benchmarks and hosts that compare.
const KernelSet& KernelsOf(Level level) noexcept;

const char* NameOf(Level level) noexcept;

} // namespace vixa::kernels
