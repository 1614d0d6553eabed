// AVI files on the disk, where only their structure counts.
#pragma once

#include "host/media/AviFile.h"

#include <filesystem>

namespace vixahost::media {

// True when the file begins as an AVI clip does.
bool IsAvi(const std::filesystem::path& file);

// Throws FailedJob with the file's name for what ReadAviFile refuses.
AviFile ReadClipStructure(FileBytes& bytes, const std::filesystem::path& file);

// Corrects the length of each sound stream with samples of one size: it counts samples, but an implementation of the
// AVI file interface was seen to count the blocks they were written in. Changes nothing where the length is right
// already. Answers how many frames of pictures the file holds. Throws FailedJob.
std::uint64_t MendSoundLengths(const std::filesystem::path& file);

} // namespace vixahost::media
