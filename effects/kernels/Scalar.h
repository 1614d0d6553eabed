// The plain form of the kernels: the definition that every faster form must equal, byte for byte.
#pragma once

#include "effects/kernels/Kernels.h"

namespace vixa::kernels::scalar {

void Gamma(Frame frame, const GammaTable& table) noexcept;
void Multiply(Frame frame, std::int32_t factor) noexcept;
void Invert(Frame frame, std::int32_t mask) noexcept;
void FilterColor(Frame frame, const FilterColorParameters& parameters) noexcept;
void Add(Frame frame, const AddParameters& parameters) noexcept;
void Convolve(Frame frame, std::int32_t width, std::int32_t height, const ConvolutionParameters& parameters,
              Frame scratch) noexcept;

} // namespace vixa::kernels::scalar
