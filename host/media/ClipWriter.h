// Writes an AVI clip: uncompressed RGB, and another clip's sound.
#pragma once

#include "host/base/TargetFile.h"
#include "host/media/AviOutput.h"
#include "host/media/FileOnDisk.h"
#include "host/media/Frames.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace vixahost::media {

// Frames have 32 bits a pixel, all four bytes as they come. A clip of more than 2 GB has several parts (OpenDML).
class ClipWriter : public FrameWriter
{
public:
    // A new file in the place of the target's temporary one, with the frames' size and rate, what `pictures` (null:
    // nothing) says of them besides, and sound. The target and what the sound reads must outlive the writer. Throws
    // FailedJob.
    ClipWriter(const TargetFile& finished, const FrameFormat& size, const AviStream* pictures,
               std::vector<std::unique_ptr<SoundReader>> sounds, std::uint64_t partBytes = AviOutput::usualPart);
    ~ClipWriter() override;

    // Throws FailedJob as soon as something can't be written.
    void Write(std::span<const std::uint8_t> frame) override;

    // Writes the rest of the sound and closes the file. Throws FailedJob.
    void Finish() override;

private:
    class SoundCopy;

    const TargetFile& target;
    FrameFormat format;
    NewFile file;
    AviOutput output;
    std::vector<std::unique_ptr<SoundCopy>> sound;
    std::int64_t frames = 0;
};

} // namespace vixahost::media
