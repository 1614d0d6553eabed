#include "host/media/ClipWriter.h"

#include "host/base/HostError.h"
#include "host/base/Text.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace vixahost::media {

namespace {

AviStream PicturesOf(const FrameFormat& format, const AviStream* origin)
{
    AviStream stream;
    if (origin)
        stream = *origin;
    stream.type = TagOf("vids");
    stream.handler = TagOf("DIB ");
    stream.rate = format.rate;
    stream.scale = format.scale;
    stream.sampleSize = 0;
    BITMAPINFOHEADER header = {};
    header.biSize = sizeof header;
    header.biWidth = format.width;
    header.biHeight = format.height;
    header.biPlanes = 1;
    header.biBitCount = 32;
    header.biSizeImage = static_cast<DWORD>(format.FrameBytes());
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(&header);
    stream.format.assign(bytes, bytes + sizeof header);
    return stream;
}

std::vector<AviStream> StreamsOf(const FrameFormat& format, const AviStream* pictures,
                                 const std::vector<std::unique_ptr<SoundReader>>& sounds)
{
    std::vector<AviStream> streams = {PicturesOf(format, pictures)};
    for (const auto& sound : sounds)
        streams.push_back(sound->Stream());
    return streams;
}

} // namespace

// Copies one sound stream, a piece at a time, so that it lies between the frames it belongs to.
class ClipWriter::SoundCopy
{
public:
    SoundCopy(AviOutput& target, std::size_t streamNumber, std::unique_ptr<SoundReader> from)
        : file(target), number(streamNumber), sound(std::move(from))
    {
    }

    // Copies up to the sample that sounds at a time in units of 100 ns.
    void CopyUntil(REFERENCE_TIME time)
    {
        limit = static_cast<double>(time) / 1e7 * sound->Stream().rate / sound->Stream().scale;
        Copy();
    }

    void CopyAll()
    {
        limit = std::numeric_limits<double>::infinity();
        Copy();
    }

private:
    // A sample without a fixed size is a chunk, which may be empty. Samples of one size are cut where they are due, and
    // may go on in the next chunk.
    void Copy()
    {
        const std::size_t size = sound->Stream().sampleSize;
        while (static_cast<double>(copied) < limit) {
            const std::size_t whole = size > 0 ? (data.size() - done) / size : 0;
            if (whole == 0) {
                if (!Load())
                    return;
                if (size == 0) {
                    Write(data, 1);
                    done = data.size();
                }
                continue;
            }
            const double due = std::ceil(std::min(limit - static_cast<double>(copied), static_cast<double>(whole)));
            const auto count = std::min(whole, static_cast<std::size_t>(due));
            Write(std::span(data).subspan(done, count * size), count);
            done += count * size;
        }
    }

    // Behind what is left of the last one; false when there is no more.
    bool Load()
    {
        data.erase(data.begin(), data.begin() + static_cast<std::ptrdiff_t>(done));
        done = 0;
        return sound->Read(data);
    }

    void Write(std::span<const std::uint8_t> bytes, std::size_t samples)
    {
        file.Add(number, bytes, samples);
        copied += samples;
    }

    AviOutput& file;
    std::size_t number; // of the stream
    std::unique_ptr<SoundReader> sound;
    double limit = 0;         // in samples
    std::uint64_t copied = 0; // in samples
    std::size_t done = 0;     // the bytes of the data that are through
    std::vector<std::uint8_t> data;
};

ClipWriter::ClipWriter(const TargetFile& finished, const FrameFormat& size, const AviStream* pictures,
                       std::vector<std::unique_ptr<SoundReader>> sounds, std::uint64_t partBytes)
    : target(finished), format(size), file(finished), output(file, StreamsOf(format, pictures, sounds), partBytes)
{
    for (auto& stream : sounds)
        sound.push_back(std::make_unique<SoundCopy>(output, sound.size() + 1, std::move(stream)));
}

ClipWriter::~ClipWriter() = default;

void ClipWriter::Write(std::span<const std::uint8_t> frame)
try {
    output.Add(0, frame, 1);
    ++frames;
    for (const auto& copy : sound)
        copy->CopyUntil(format.TimeOf(frames));
} catch (const AviFault& fault) {
    throw FailedJob(Show(target.Name()) + " " + fault.what());
}

void ClipWriter::Finish()
{
    for (const auto& copy : sound)
        copy->CopyAll();
    output.Finish();
    file.Close();
}

} // namespace vixahost::media
