// Frames without an index, from standard input and to standard output, or in files.
#pragma once

#include "host/base/Handles.h"
#include "host/base/TargetFile.h"
#include "host/media/AviOutput.h"
#include "host/media/Frames.h"
#include "host/media/RawFrames.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vixahost::media {

class RawReader : public FrameReader
{
public:
    // Empty path: standard input. `bare`: of frames of 32-bit RGB without any header; none: y4m. Throws FailedJob.
    RawReader(const std::filesystem::path& file, const std::optional<RawFormat>& bare, const YuvChoice& choice);
    ~RawReader() override;

    FrameFormat Format() const override;
    std::optional<YuvFrames> Yuv() const override;
    bool Read(std::span<std::uint8_t> frame) override;

private:
    class Stream;

    const RawFormat& Stored() const noexcept { return input->Format(); }

    std::string name; // for messages
    std::unique_ptr<Stream> stream;
    std::unique_ptr<RawInput> input;
    std::optional<YuvColours> colours;
    std::optional<YuvPixels> pixels;
    std::vector<std::uint8_t> stored;
};

class RawWriter : public FrameWriter
{
public:
    // Null: standard output; else the target must outlive this. Throws FailedJob.
    RawWriter(const TargetFile* target, RawFormat frames, const YuvColours& colours);
    ~RawWriter() override;

    // Throws FailedJob, also when nobody reads standard output any more.
    void Write(std::span<const std::uint8_t> frame) override;
    void Finish() override;

private:
    void Put(std::span<const std::uint8_t> bytes);

    RawFormat format;
    std::optional<YuvPixels> pixels;
    std::unique_ptr<BytesSink> sink;
    std::uint64_t end = 0;
    std::vector<std::uint8_t> stored;
};

// How a reader's frames leave: as y4m with as much chroma as they came with, or bare.
RawFormat RawFormatOf(const FrameReader& reader, const YuvColours& colours, bool bare);

} // namespace vixahost::media
