#include "tools/make-pages/Words.h"

#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

namespace vixa::pages {

std::vector<std::string> Section::All(const std::string& key) const
{
    std::vector<std::string> values;
    for (const auto& [own, value] : lines)
        if (own == key)
            values.push_back(value);
    return values;
}

std::string Section::One(const std::string& key) const
{
    const auto values = All(key);
    if (values.size() != 1)
        throw std::runtime_error("words.txt: " + name + " has " + std::to_string(values.size()) + " lines \"" + key +
                                 "\"");
    return values.front();
}

std::vector<Section> ReadWords(const std::filesystem::path& file)
{
    std::vector<Section> sections;
    std::istringstream stream(ContentOf(file));
    for (std::string line; std::getline(stream, line);) {
        if (line.empty() || line.front() == '#')
            continue;
        if (line.front() == '[') {
            sections.push_back({line.substr(1, line.find(']') - 1), {}});
            continue;
        }
        const auto colon = line.find(": ");
        if (colon == std::string::npos || sections.empty())
            throw std::runtime_error("words.txt: this is no line of an effect: " + line);
        sections.back().lines.emplace_back(line.substr(0, colon), line.substr(colon + 2));
    }
    return sections;
}

std::string ContentOf(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
        throw std::runtime_error(file.string() + " can't be read");
    return {std::istreambuf_iterator<char>(stream), {}};
}

} // namespace vixa::pages
