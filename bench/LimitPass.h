// The least that an in-place effect can do: every measurement is given as a multiple of it.
#pragma once

#include "effects/kernels/Kernels.h"

namespace vixa::bench {

// Loads, changes and stores each byte of the frame once, with the widest vectors of the machine.
void LimitPass(kernels::Frame frame) noexcept;

} // namespace vixa::bench
