// What hosts at their worst do to a library, all of it at once and for as long as wanted: link queries, objects that
// come and go on other threads, frames with types and lengths that lie, and panels that are disturbed, taken away and
// let go of at any moment.
#pragma once

#include <filesystem>
#include <functional>
#include <string>

namespace vixahost::validate {

// Says every minute, and at the end, how often what was done. Throws FailedJob when the library answers wrongly or an
// object is left. A crash ends the process with status 3, a thread that makes no progress for two minutes with status
// 4, after a line about it.
void Attack(const std::filesystem::path& file, int minutes, const std::function<void(const std::string&)>& say);

} // namespace vixahost::validate
