// Writes an AVI clip: uncompressed RGB, with another clip's sound.
#pragma once

#include "host/media/AviInterface.h"
#include "host/media/Frames.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <vector>

namespace vixahost::media {

class ClipReader;

// How many bits a pixel of the written clip has. 32 keep all four bytes; 24 leave the colourless one out and are taken
// when the clip would else outgrow the two gigabytes that an AVI file may have.
enum class ClipDepth : std::uint16_t
{
    Rgb24 = 24,
    Rgb32 = 32,
};

// The depth for `frames` frames and `soundBytes` of sound with its place in the index. Throws FailedJob when neither
// fits.
ClipDepth DepthFor(const FrameFormat& format, std::int64_t frames, std::uint64_t soundBytes);

class ClipWriter : public FrameWriter
{
public:
    // A new file with the size, rate and sound of `source`, which must outlive the writer. Throws FailedJob.
    ClipWriter(std::filesystem::path target, ClipReader& source);
    ~ClipWriter() override;

    void Write(std::span<const std::uint8_t> frame) override;

    // Writes the rest of the sound and closes the file. Throws FailedJob, also when the finished file doesn't hold
    // what was written.
    void Finish();

    ClipDepth Depth() const noexcept { return depth; }

private:
    class SoundCopy;

    std::filesystem::path path;
    FrameFormat format;
    ClipDepth depth = ClipDepth::Rgb32;
    AviSession session;
    Microsoft::WRL::ComPtr<IAVIFile> file;
    Microsoft::WRL::ComPtr<IAVIStream> video;
    std::vector<std::unique_ptr<SoundCopy>> sound;
    std::vector<std::uint8_t> narrow; // one frame of 24 bits, rows padded to 4 bytes
    std::int64_t frames = 0;
};

} // namespace vixahost::media
