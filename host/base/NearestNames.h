// What a user may have meant by a name that doesn't exist.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vixahost {

// How many single-letter insertions, deletions, changes and swaps of neighbours turn one word into the other.
std::size_t EditDistance(std::string_view one, std::string_view other);

// The one to three names nearest to `wanted`, nearest first, the case of ASCII letters aside. A name that contains the
// wanted word, or one of whose words is nearly it, is nearer than one that is merely of similar length. Empty only
// when there are no names.
std::vector<std::string> NearestNames(std::string_view wanted, std::span<const std::string> names);

// "a", "b" or "c", each in double quotes.
std::string Alternatives(std::span<const std::string> names);

} // namespace vixahost
