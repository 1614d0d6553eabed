// Where programs and libraries that run were loaded from.
#pragma once

#include <windows.h>

#include <filesystem>

namespace vixahost {

// The file of a loaded module; null: of this program.
std::filesystem::path FileOf(HMODULE module);

// This program's own file.
std::filesystem::path ThisProgram();

} // namespace vixahost
