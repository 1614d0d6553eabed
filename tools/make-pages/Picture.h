// A picture as a plug-in gets it: 32-bit pixels (blue lowest, then green, red, alpha), the topmost row first.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace vixa::pages {

struct Picture
{
    std::size_t width = 0;
    std::size_t height = 0;
    std::vector<std::uint32_t> pixels; // opaque

    bool operator==(const Picture&) const = default;
};

// A PNG file. Throws std::runtime_error with a line that says which file and why.
Picture ReadPng(const std::filesystem::path& file);
void WritePng(const std::filesystem::path& file, const Picture& picture);

} // namespace vixa::pages
