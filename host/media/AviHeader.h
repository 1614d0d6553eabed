// AVI files on the disk, where only their structure counts.
#pragma once

#include "host/media/AviFile.h"

#include <filesystem>
#include <string>

namespace vixahost::media {

// True when the file begins as an AVI clip does.
bool IsAvi(const std::filesystem::path& file);

// Throws FailedJob for a file that is no AVI clip although its name says so.
void RefuseFalseName(const std::filesystem::path& file);

// Throws FailedJob for a clip that no decoder can open because its film is missing; one of the system's decoders would
// wait for it now and then.
void RefuseWithoutFilm(const std::filesystem::path& file);

// The command by which FFmpeg makes a clip of it that is read here.
std::string ConversionOf(const std::filesystem::path& file);
// What helps where the system has no decoder for a clip: one or two sentences.
std::string WaysOutFor(const std::filesystem::path& file);

// Throws FailedJob with the file's name for what ReadAviFile refuses.
AviFile ReadClipStructure(FileBytes& bytes, const std::filesystem::path& file);

} // namespace vixahost::media
