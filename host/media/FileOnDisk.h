// A file's bytes, for the readers that take them from anywhere.
#pragma once

#include "host/base/Handles.h"
#include "host/base/TargetFile.h"
#include "host/media/AviOutput.h"

#include <filesystem>

namespace vixahost::media {

// Nobody may write to the file meanwhile. Any thread, several at once.
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

// A new file in the place of a target's temporary one.
class NewFile : public BytesSink
{
public:
    // The target must outlive this. Throws FailedJob.
    explicit NewFile(const TargetFile& finished);

    // Throws FailedJob at the first byte that the disk doesn't take.
    void Write(std::uint64_t offset, std::span<const std::uint8_t> bytes) override;
    void Close() override;

private:
    const TargetFile& target;
    UniqueFile file;
};

} // namespace vixahost::media
