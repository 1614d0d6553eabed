// Two parts joined: nothing is lost but at most one backslash, and exactly one is added where both lack it.
#include "sxs/SxsConfiguration.h"

#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const auto cut = static_cast<std::ptrdiff_t>(data[0] % size);
    const std::wstring head(data + 1, data + 1 + cut), tail(data + 1 + cut, data + size);
    const std::wstring joined = SxsConfiguration::JoinPath(head, tail);
    if (!joined.starts_with(head) || !joined.ends_with(tail))
        std::abort();
    const std::size_t parts = head.size() + tail.size();
    if (head.empty() || tail.empty()) {
        if (joined.size() != parts)
            std::abort();
        return 0;
    }
    const int backslashes = head.ends_with(L'\\') + tail.starts_with(L'\\');
    if (joined.size() + static_cast<std::size_t>(backslashes) != parts + 1)
        std::abort();
    if (backslashes == 0 && joined[head.size()] != L'\\')
        std::abort();
    return 0;
}
