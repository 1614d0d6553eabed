#include "host/base/NearestNames.h"

#include "host/base/Text.h"

#include <algorithm>
#include <numeric>
#include <sstream>

namespace vixahost {

std::size_t EditDistance(std::string_view one, std::string_view other)
{
    // Three rows of the distance table: the one being filled and the two before it (a swap looks back two rows).
    std::vector<std::size_t> older(other.size() + 1), old(other.size() + 1), row(other.size() + 1);
    std::iota(old.begin(), old.end(), std::size_t{0});
    for (std::size_t i = 1; i <= one.size(); ++i) {
        row[0] = i;
        for (std::size_t j = 1; j <= other.size(); ++j) {
            const std::size_t change = old[j - 1] + (one[i - 1] == other[j - 1] ? 0 : 1);
            row[j] = std::min({old[j] + 1, row[j - 1] + 1, change});
            if (i > 1 && j > 1 && one[i - 1] == other[j - 2] && one[i - 2] == other[j - 1])
                row[j] = std::min(row[j], older[j - 2] + 1);
        }
        std::swap(older, old);
        std::swap(old, row);
    }
    return old[other.size()];
}

namespace {

std::size_t Remoteness(const std::string& wanted, const std::string& name)
{
    if (!wanted.empty() && name.find(wanted) != std::string::npos)
        return 0;
    std::size_t best = EditDistance(wanted, name);
    // A single word of the name counts as well, a little less than the whole name.
    std::istringstream words(name);
    for (std::string word; words >> word;)
        best = std::min(best, EditDistance(wanted, word) + 1);
    return best;
}

} // namespace

std::vector<std::string> NearestNames(std::string_view wanted, std::span<const std::string> names)
{
    const std::string lower = LowerCase(wanted);
    std::vector<std::pair<std::size_t, std::string>> ranked;
    for (const std::string& name : names)
        ranked.emplace_back(Remoteness(lower, LowerCase(name)), name);
    std::stable_sort(ranked.begin(), ranked.end(), [](const auto& a, const auto& b) { return a.first < b.first; });

    std::vector<std::string> nearest;
    for (const auto& [remoteness, name] : ranked)
        if (nearest.size() < 3 && remoteness <= ranked.front().first + 1)
            nearest.push_back(name);
    return nearest;
}

std::string Alternatives(std::span<const std::string> names)
{
    std::string text;
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (i > 0)
            text += i + 1 == names.size() ? " or " : ", ";
        text += '"' + names[i] + '"';
    }
    return text;
}

} // namespace vixahost
