// Whether the user wants to hear what a job is made of (--verbose), on standard error.
#pragma once

#include <atomic>

namespace vixahost {

inline std::atomic<bool> verbose = false;

} // namespace vixahost
