// A file that appears under its name only when it is whole.
#pragma once

#include "host/base/Handles.h"
#include "host/base/HostError.h"

#include <filesystem>

namespace vixahost {

// Between construction and Commit the data goes to a temporary file beside the target (same folder, so that the rename
// is one step of the file system). Whatever ends the job before Commit removes it; an older target stays as it was.
// What a process that was killed left behind is removed by the next one that writes to the same target.
class TargetFile
{
public:
    // Throws FailedJob when the target's folder is missing or the target is a folder itself.
    explicit TargetFile(std::filesystem::path file);
    ~TargetFile();
    TargetFile(const TargetFile&) = delete;
    TargetFile& operator=(const TargetFile&) = delete;

    const std::filesystem::path& Name() const noexcept { return target; }
    const std::filesystem::path& Temporary() const noexcept { return temporary; }
    // Why the data can't be written, named by the target and, when it is full, by its disk; `error` is the system's.
    FailedJob WriteFault(unsigned long error) const;

    // Puts the temporary, closed by now, in the target's place. Throws FailedJob.
    void Commit();

private:
    std::filesystem::path target;
    std::filesystem::path temporary;
    UniqueFile hold; // of the temporary, locked as long as this lives
};

// True when both names lead to one existing file, however they are spelled.
bool IsSameFile(const std::filesystem::path& one, const std::filesystem::path& other);

} // namespace vixahost
