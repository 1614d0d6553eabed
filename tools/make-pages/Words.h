// The pages' text source (words.txt): sections of "key: value" lines.
#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace vixa::pages {

struct Section
{
    std::string name;
    std::vector<std::pair<std::string, std::string>> lines;

    // All lines of that key, in their order.
    std::vector<std::string> All(const std::string& key) const;
    // The one line of that key. Throws std::runtime_error when there is none, or more.
    std::string One(const std::string& key) const;
};

// Throws std::runtime_error for a line that is neither.
std::vector<Section> ReadWords(const std::filesystem::path& file);

// The whole file. Throws std::runtime_error when there is none.
std::string ContentOf(const std::filesystem::path& file);

} // namespace vixa::pages
