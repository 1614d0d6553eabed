// A file's bytes, for the readers that take them from anywhere.
#pragma once

#include "host/base/Handles.h"
#include "host/media/AviFile.h"

#include <filesystem>

namespace vixahost::media {

// Nobody may write to the file meanwhile.
class FileOnDisk : public FileBytes
{
public:
    // A file that can't be opened has no bytes.
    explicit FileOnDisk(const std::filesystem::path& path);

    std::uint64_t Size() const override { return size; }
    bool Read(std::uint64_t offset, std::span<std::uint8_t> into) override;

private:
    UniqueFile file;
    std::uint64_t size = 0;
};

} // namespace vixahost::media
