// What one vector level provides: bare loops over bytes in memory. Everything that depends on parameters alone
// (patterns, multipliers, checked sizes) is worked out before, in code that every processor can run, so the level's own
// files hold nothing else: no class templates, no library code that the linker could share with code for smaller
// machines.
#pragma once

#include <vixavideofx/DataBlocks.h>

#include <cstddef>
#include <cstdint>

namespace vixa::kernels {

using vixavideofx::ConvolutionKind;

enum class PointKind : std::uint8_t
{
    Gamma,
    Multiply,
    Invert,
    FilterColor,
    Add,
};

// A point effect with what its function below is given; what its kind does not name is ignored.
struct PointStep
{
    PointKind kind{};
    std::uint8_t colour = 0; // Filter color
    bool brighten = false;
    std::uint32_t first = 0;             // multiplier, pattern, magnitude or what is added
    std::uint32_t second = 0;            // what is subtracted
    const std::uint8_t* table = nullptr; // Gamma
};

struct VectorKernels
{
    // `table` has 256 entries; `pixels` are counted in pixels of four bytes throughout.
    void (*gamma)(std::uint8_t* frame, std::size_t pixels, const std::uint8_t* table) noexcept;

    // Multiplier in 1/256, 0 to 32767.
    void (*multiply)(std::uint8_t* frame, std::size_t pixels, std::uint32_t multiplier) noexcept;

    void (*invert)(std::uint8_t* frame, std::size_t pixels, std::uint32_t pattern) noexcept;

    // Colour 0 to 2; magnitude at most 255.
    void (*filterColor)(std::uint8_t* frame, std::size_t pixels, int colour, std::uint32_t magnitude,
                        bool brighten) noexcept;

    void (*add)(std::uint8_t* frame, std::size_t pixels, std::uint32_t add, std::uint32_t subtract) noexcept;

    // Width at least 1, height at least 3; scratch as ConvolutionScratchBytes says. Goes on where `done` rows have been
    // made, fewer than height, as far as the first `ready` rows, at least one, allow; returns how many are made then:
    // all when all are ready. Scratch holds what the next call for this frame needs.
    std::size_t (*convolve)(std::uint8_t* frame, std::size_t width, std::size_t height, ConvolutionKind kind,
                            std::uint8_t* scratch, std::size_t done, std::size_t ready) noexcept;

    // So many point effects, one after the other, in one pass from a frame to itself or to another one that it does not
    // overlap; on request with the fourth bytes as they were. Null in SSE2, whose gamma is no vector code.
    void (*points)(const std::uint8_t* from, std::uint8_t* to, std::size_t pixels, const PointStep* steps,
                   std::size_t count, bool keepFourth) noexcept;
};

// The widest vector of any level.
inline constexpr std::size_t widestVector = 64;
inline constexpr std::size_t cacheLine = 64;

extern const VectorKernels sse2Kernels;
extern const VectorKernels avx2Kernels;
extern const VectorKernels avx512Kernels;

} // namespace vixa::kernels
