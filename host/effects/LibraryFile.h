// A library's file as it lies there: the programs that it is for, and its version. Nothing is loaded.
#pragma once

#include <filesystem>
#include <string>

namespace vixahost::effects {

// What a user named, as a whole path; the library beside the program for an empty name.
std::filesystem::path LibraryOr(const std::filesystem::path& named);

// The width of this program's addresses, in bits; it loads libraries of the same width only.
inline constexpr int ownWidth = 8 * sizeof(void*);

// 32 or 64 for a program or library for x86 or x86-64; 0 for any other file, and for one that can't be read.
int WidthOf(const std::filesystem::path& file);

// As "1.0.0"; empty for a file without a version.
std::string VersionOf(const std::filesystem::path& file);

// The host program that can load a library of the other width: beside the library, or in a package's folder for that
// width ("x86", "x64") beside this program's own. Empty when there is none.
std::filesystem::path HostFor(const std::filesystem::path& library);

// "VixaVideoFX.dll is a 64-bit library, which a 32-bit program can't load", and what to do instead.
std::string WidthComplaint(const std::filesystem::path& library);

} // namespace vixahost::effects
