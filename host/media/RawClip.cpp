#include "host/media/RawClip.h"

#include "host/base/HostError.h"
#include "host/base/Text.h"
#include "host/media/FileOnDisk.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace vixahost::media {

namespace {

// The other order of rows.
void TurnOver(const RawFormat& format, std::span<const std::uint8_t> from, std::span<std::uint8_t> to)
{
    const std::size_t row = static_cast<std::size_t>(format.width) * 4;
    for (std::size_t at = 0; at < from.size(); at += row)
        std::memcpy(to.data() + (to.size() - row - at), from.data() + at, row);
}

class StandardOutput : public BytesSink
{
public:
    void Write(std::uint64_t, std::span<const std::uint8_t> bytes) override
    {
        const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
        while (!bytes.empty()) {
            DWORD written = 0;
            const auto wanted = static_cast<DWORD>(std::min<std::size_t>(bytes.size(), 1 << 20));
            if (WriteFile(output, bytes.data(), wanted, &written, nullptr) && written > 0) {
                bytes = bytes.subspan(written);
                continue;
            }
            const DWORD error = GetLastError();
            if (error == ERROR_BROKEN_PIPE || error == ERROR_NO_DATA || error == ERROR_PIPE_NOT_CONNECTED)
                throw FailedJob("Whoever took the frames from standard output has stopped before the end.");
            throw FailedJob("Frames can't be written to standard output (system error " + std::to_string(error) +
                            "); is a disk full behind it?");
        }
    }
};

} // namespace

class RawReader::Stream : public ByteSource
{
public:
    Stream(const std::filesystem::path& path, std::string title) : name(std::move(title))
    {
        if (path.empty()) {
            handle = GetStdHandle(STD_INPUT_HANDLE);
            return;
        }
        file = Opened(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
        if (!file)
            throw FailedJob(name + " can't be opened (system error " + std::to_string(GetLastError()) + ").");
        handle = file.get();
    }

    std::size_t Read(std::span<std::uint8_t> into) override
    {
        std::size_t done = 0;
        while (done < into.size()) {
            DWORD got = 0;
            const auto wanted = static_cast<DWORD>(std::min<std::size_t>(into.size() - done, 1 << 20));
            if (!ReadFile(handle, into.data() + done, wanted, &got, nullptr)) {
                const DWORD error = GetLastError();
                if (error == ERROR_BROKEN_PIPE || error == ERROR_HANDLE_EOF)
                    return done; // its writer has gone
                throw FailedJob(name + " can't be read (system error " + std::to_string(error) + ").");
            }
            if (got == 0)
                return done;
            done += got;
        }
        return done;
    }

private:
    std::string name;
    UniqueFile file;
    HANDLE handle = nullptr;
};

RawReader::RawReader(const std::filesystem::path& file, const std::optional<RawFormat>& bare, const YuvChoice& choice)
    : name(file.empty() ? "Standard input" : vixahost::Show(file)), stream(std::make_unique<Stream>(file, name))
{
    try {
        input = bare ? std::make_unique<RawInput>(*stream, *bare) : std::make_unique<RawInput>(*stream);
    } catch (const RawFault& fault) {
        throw FailedJob(name + " " + fault.what());
    }
    const RawFormat& format = Stored();
    if (format.yuv) {
        YuvChoice chosen = choice;
        if (!chosen.range)
            chosen.range = format.range;
        colours = ColoursFor(chosen, format.width, format.height);
        pixels.emplace(*format.yuv, *colours, format.width, format.height);
    }
    stored.resize(format.FrameBytes());
}

RawReader::~RawReader() = default;

FrameFormat RawReader::Format() const
{
    return {Stored().width, Stored().height, Stored().rate, Stored().scale};
}

std::optional<YuvFrames> RawReader::Yuv() const
{
    return colours ? std::optional(YuvFrames{*Stored().yuv, *colours, Stored().tags}) : std::nullopt;
}

bool RawReader::Read(std::span<std::uint8_t> frame)
{
    try {
        if (!input->Next(stored))
            return false;
    } catch (const RawFault& fault) {
        throw FailedJob(name + " " + fault.what());
    }
    if (pixels)
        pixels->ToRgb(stored, frame);
    else
        TurnOver(Stored(), stored, frame);
    return true;
}

RawWriter::RawWriter(const TargetFile* target, RawFormat frames, const YuvColours& colours)
    : format(std::move(frames)), stored(format.FrameBytes())
{
    if (target)
        sink = std::make_unique<NewFile>(*target);
    else
        sink = std::make_unique<StandardOutput>();
    if (!format.yuv)
        return;
    pixels.emplace(*format.yuv, colours, format.width, format.height);
    const std::string header = Y4mHeader(format);
    Put({reinterpret_cast<const std::uint8_t*>(header.data()), header.size()});
}

RawWriter::~RawWriter() = default;

void RawWriter::Put(std::span<const std::uint8_t> bytes)
{
    sink->Write(end, bytes);
    end += bytes.size();
}

void RawWriter::Write(std::span<const std::uint8_t> frame)
{
    if (pixels) {
        constexpr std::uint8_t head[] = {'F', 'R', 'A', 'M', 'E', '\n'};
        pixels->FromRgb(frame, stored);
        Put(head);
    } else {
        TurnOver(format, frame, stored);
    }
    Put(stored);
}

void RawWriter::Finish()
{
    sink.reset();
}

RawFormat RawFormatOf(const FrameReader& reader, const YuvColours& colours, bool bare)
{
    const FrameFormat frames = reader.Format();
    RawFormat format = {frames.width, frames.height, frames.rate, frames.scale};
    if (bare)
        return format;
    const auto yuv = reader.Yuv();
    format.yuv = PlanarFor(yuv ? std::optional(yuv->layout) : std::nullopt);
    format.range = colours.range;
    if (yuv && yuv->layout == format.yuv)
        format.tags = yuv->tags;
    return format;
}

} // namespace vixahost::media
