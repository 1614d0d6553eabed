// A night's work in minutes: frames through a row of effects while other threads change parameters, instruction sets,
// the language and panels.
#pragma once

#include <filesystem>
#include <functional>
#include <string>

namespace vixahost::validate {

// Says every minute, and at the end, how many frames went through and what the process holds. Throws FailedJob when a
// frame comes out as none of the results that are possible, when something is refused, or when memory, handles, drawing
// objects or windows have grown. A crash ends the process with status 3.
void Soak(const std::filesystem::path& file, int minutes, const std::function<void(const std::string&)>& say);

} // namespace vixahost::validate
