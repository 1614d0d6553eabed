// What follows from the parameters before the first pixel is touched; the same at every level. Frame sizes come from
// media types and are hostile until checked here.
#pragma once

#include "effects/kernels/Step.h"
#include "effects/kernels/VectorKernels.h"

namespace vixa::kernels {

// A magnitude, of either sign, as it fits into one byte: 255 beyond that.
std::uint8_t ByteMagnitude(std::int32_t value) noexcept;

// `factor` percent in 1/256, computed in 32 bits that wrap and truncated toward zero.
std::int32_t MultiplierOf(std::int32_t factor) noexcept;

// Whether the vector forms can multiply by it.
bool FitsVectors(std::int32_t multiplier) noexcept;

// One pixel with 255 in each channel that the mask selects.
std::uint32_t InvertPattern(std::int32_t mask) noexcept;

// One pixel each of what is added to every pixel and of what is then taken from it.
struct AddPatterns
{
    std::uint32_t add = 0;
    std::uint32_t subtract = 0;
};
AddPatterns AddPatternsOf(const AddParameters& parameters) noexcept;

// Fills in the step of a point effect; false for one that vectors can't do or that changes nothing. The step refers to
// the parameters.
bool PlanPoint(const StepParameters& parameters, PointStep& point) noexcept;

// What a convolution has to do with a frame.
struct ConvolutionPlan
{
    std::size_t width = 0; // in pixels
    std::size_t height = 0;
    std::int32_t divisor = 1;
    std::int32_t offset = 0;
    bool leaveAlone = true;
};
ConvolutionPlan PlanConvolution(Frame frame, std::int32_t width, std::int32_t height,
                                const ConvolutionParameters& parameters, Frame scratch) noexcept;

} // namespace vixa::kernels
