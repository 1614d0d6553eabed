// What flows through the host's graph: frames of one size, from a reader to a writer.
#pragma once

#include "host/media/Sound.h"
#include "host/media/YuvPixels.h"

#include <strmif.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace vixahost::media {

// 32-bit RGB, rows bottom-up and without padding: blue, green, red and a byte without colour.
struct FrameFormat
{
    int width = 0; // pixels
    int height = 0;
    std::uint32_t rate = 1; // frames per second are rate / scale
    std::uint32_t scale = 1;

    std::size_t FrameBytes() const noexcept
    {
        return static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4;
    }
    // When frame `index` begins, in units of 100 ns.
    REFERENCE_TIME TimeOf(std::int64_t index) const noexcept
    {
        // Whole seconds apart, so that the product stays within 64 bits for any rate and scale.
        const std::int64_t units = index * scale;
        return units / rate * 10'000'000 + units % rate * 10'000'000 / rate;
    }
};

// A frame that several hold.
using FrameBytes = std::vector<std::uint8_t>;
using SharedFrame = std::shared_ptr<const FrameBytes>;

// Gives frames one after the other. Called on the graph's streaming thread only.
class FrameReader
{
public:
    virtual ~FrameReader() = default;
    virtual FrameFormat Format() const = 0;
    // How many frames, one after the other, make up one picture.
    virtual int FramesAPicture() const { return 1; }
    // 0 when only the end will tell.
    virtual std::int64_t FrameCount() const noexcept { return 0; }
    // What the frames were before they became RGB; none for those that were no YUV.
    virtual std::optional<YuvFrames> Yuv() const { return std::nullopt; }
    // What the AVI clip that frames come from says of them, for a copy; null for frames from elsewhere.
    virtual const AviStream* AviPictures() const { return nullptr; }
    // Whether sound belongs to the frames.
    virtual bool HasSound() const { return false; }
    // From its beginning; empty where it can't be had. The reader must outlive it. Throws HostError.
    virtual std::vector<std::unique_ptr<SoundReader>> Sound() { return {}; }
    // Whether a frame that was read had transparency, which no clip keeps.
    virtual bool HadAlpha() const { return false; }
    // The first frame's number, where frames are files with numbers.
    virtual std::optional<std::int64_t> FirstNumber() const { return std::nullopt; }
    // Fills `frame` (Format().FrameBytes() bytes) with the next frame; false when there is none. Throws HostError.
    virtual bool Read(std::span<std::uint8_t> frame) = 0;
};

// Gives them in any order.
class ClipFrames : public FrameReader
{
public:
    // The next Read gives frame `index`; one beyond the clip counts as its nearest end.
    virtual void Seek(std::int64_t index) noexcept = 0;
};

// Takes frames one after the other. Called on the graph's streaming thread only.
class FrameWriter
{
public:
    virtual ~FrameWriter() = default;
    // Throws HostError; the graph then stops.
    virtual void Write(std::span<const std::uint8_t> frame) = 0;
    // After the last one; what was written is whole then. Throws HostError.
    virtual void Finish() {}
    // Then puts it in its place, where that isn't done for the writer. Throws HostError.
    virtual void Commit() {}
};

} // namespace vixahost::media
