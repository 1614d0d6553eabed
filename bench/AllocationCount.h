// How often a program takes memory in large pieces: this replaces its operator new.
#pragma once

#include <cstddef>

namespace vixahost::bench {

// From now on counts, from 0, what the program itself (not a library) takes in one piece of that many bytes or more.
void CountAllocationsFrom(std::size_t bytes) noexcept;
std::size_t LargeAllocations() noexcept;

} // namespace vixahost::bench
