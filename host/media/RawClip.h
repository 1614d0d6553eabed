// Frames without an index, from standard input and to standard output, or in files.
#pragma once

#include "host/base/Handles.h"
#include "host/base/TargetFile.h"
#include "host/media/AviOutput.h"
#include "host/media/FileOnDisk.h"
#include "host/media/Frames.h"
#include "host/media/RawFrames.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vixahost::media {

// Frames as they are stored become those of the graph.
class RawFrameFormat
{
public:
    RawFrameFormat(RawFormat frames, const YuvChoice& choice);

    const RawFormat& Stored() const noexcept { return stored; }
    FrameFormat Frames() const { return {stored.width, stored.height, stored.rate, stored.scale}; }
    std::optional<YuvFrames> Yuv() const;
    void ToRgb(std::span<const std::uint8_t> bytes, std::span<std::uint8_t> frame) const;

private:
    RawFormat stored;
    std::optional<YuvColours> colours;
    std::optional<YuvPixels> pixels;
};

// Standard input.
class RawReader final : public FrameReader
{
public:
    // `bare`: of frames of 32-bit RGB without any header; none: y4m. Throws FailedJob.
    RawReader(const std::optional<RawFormat>& bare, const YuvChoice& choice);
    ~RawReader() override;

    FrameFormat Format() const override { return format->Frames(); }
    std::optional<YuvFrames> Yuv() const override { return format->Yuv(); }
    bool Read(std::span<std::uint8_t> frame) override;

private:
    std::unique_ptr<ByteSource> stream;
    std::unique_ptr<RawInput> input;
    std::optional<RawFrameFormat> format;
    std::vector<std::uint8_t> stored;
};

// A y4m file.
class Y4mReader final : public ClipFrames
{
public:
    // Throws FailedJob, also for a file that ends within a frame or has none.
    Y4mReader(const std::filesystem::path& path, const YuvChoice& choice);

    FrameFormat Format() const override { return format->Frames(); }
    std::optional<YuvFrames> Yuv() const override { return format->Yuv(); }
    std::int64_t FrameCount() const noexcept override { return static_cast<std::int64_t>(frames.size()); }
    bool Read(std::span<std::uint8_t> frame) override;
    void Seek(std::int64_t index) noexcept override;

private:
    std::string name; // for messages
    FileOnDisk file;
    std::optional<RawFrameFormat> format;
    std::vector<std::uint64_t> frames; // where they begin
    std::int64_t position = 0;
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

// For a reader's frames: as y4m with as much chroma as they came with and, where they were YUV, their colours, else the
// chosen ones; or bare. The target as above.
std::unique_ptr<RawWriter> NewRawWriter(const TargetFile* target, const FrameReader& reader, const YuvChoice& choice,
                                        bool bare);

} // namespace vixahost::media
