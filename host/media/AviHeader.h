// AVI files on the disk, where only their structure counts.
#pragma once

#include "host/media/AviFile.h"

#include <filesystem>

namespace vixahost::media {

// True when the file begins as an AVI clip does.
bool IsAvi(const std::filesystem::path& file);

// Throws FailedJob with the file's name for what ReadAviFile refuses.
AviFile ReadClipStructure(FileBytes& bytes, const std::filesystem::path& file);

} // namespace vixahost::media
