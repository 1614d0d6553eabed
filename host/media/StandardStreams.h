// Standard input and output. The system's calls wait for a silent neighbour as long as it likes; the host waits no
// longer than the user does.
#pragma once

#include "host/media/AviOutput.h"
#include "host/media/RawFrames.h"

#include <memory>

namespace vixahost::media {

class ByteQueue;

// Reads ahead in a thread of its own, which outlives this when it still waits for the system then.
class StandardInput final : public ByteSource
{
public:
    StandardInput();
    ~StandardInput() override;

    // Throws FailedJob, and StoppedJob when the user stops the job while there is nothing to read.
    std::size_t Read(std::span<std::uint8_t> into) override;

private:
    std::shared_ptr<ByteQueue> queue;
};

// Writes behind in such a thread.
class StandardOutput final : public BytesSink
{
public:
    StandardOutput();
    ~StandardOutput() override;

    // The offset is taken to be the end. Throws FailedJob, also when nobody reads any more, and StoppedJob when the
    // user stops the job while nobody reads.
    void Write(std::uint64_t offset, std::span<const std::uint8_t> bytes) override;
    // Throws as above.
    void Close() override;

private:
    std::shared_ptr<ByteQueue> queue;
};

} // namespace vixahost::media
