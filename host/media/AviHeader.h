// What the host looks at in an AVI file's own bytes, where the AVI file interface doesn't tell or doesn't do it right.
#pragma once

#include <filesystem>

namespace vixahost::media {

// True when the file begins as an AVI clip does.
bool IsAvi(const std::filesystem::path& file);

// Throws FailedJob when the clip is shorter than its header says, or goes on in further parts (OpenDML), of which the
// AVI file interface would silently read the first only.
void RequireWholeAvi(const std::filesystem::path& file);

// Corrects the length of each sound stream with samples of one size: it counts samples, but an implementation of the
// interface was seen to count the blocks they were written in. Changes nothing where the length is right already.
void MendSoundLengths(const std::filesystem::path& file);

} // namespace vixahost::media
