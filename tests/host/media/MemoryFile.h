// A file in memory, for the readers and writers that take their bytes from anywhere.
#pragma once

#include "host/media/AviOutput.h"

#include <algorithm>
#include <vector>

namespace vixahost::test {

class MemoryFile : public media::FileBytes, public media::BytesSink
{
public:
    explicit MemoryFile(std::vector<std::uint8_t> content = {}) : bytes(std::move(content)) {}

    std::uint64_t Size() const override { return bytes.size(); }
    bool Read(std::uint64_t offset, std::span<std::uint8_t> into) override
    {
        if (offset > bytes.size() || into.size() > bytes.size() - offset)
            return false;
        std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(offset), into.size(), into.begin());
        return true;
    }
    void Write(std::uint64_t offset, std::span<const std::uint8_t> data) override
    {
        bytes.resize(std::max<std::size_t>(bytes.size(), static_cast<std::size_t>(offset) + data.size()));
        std::ranges::copy(data, bytes.begin() + static_cast<std::ptrdiff_t>(offset));
    }

    std::vector<std::uint8_t> bytes;
};

} // namespace vixahost::test
