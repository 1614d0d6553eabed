#include "host/media/ClipWriter.h"

#include "host/base/HostError.h"
#include "host/base/Text.h"
#include "host/media/AviHeader.h"
#include "host/media/ClipReader.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <utility>

namespace vixahost::media {

using Microsoft::WRL::ComPtr;

namespace {

constexpr std::uint64_t largestFile = 0x7FFFFFFF;
constexpr std::uint64_t headerRoom = 65'536;
constexpr std::uint64_t chunkRoom = 8 + 16 + 1; // a chunk's header, its row in the index, its padding

std::size_t StoredBytes(const FrameFormat& format, ClipDepth depth)
{
    const std::size_t row =
        depth == ClipDepth::Rgb32 ? std::size_t(format.width) * 4 : (std::size_t(format.width) * 3 + 3) / 4 * 4;
    return row * std::size_t(format.height);
}

void Require(HRESULT result, const std::filesystem::path& file)
{
    if (FAILED(result))
        throw FailedJob("Can't write " + Show(file) + " (" + Show(result) +
                        "); is the disk full or the folder protected?");
}

// A chunk is cut in two at most once per frame.
std::uint64_t SoundBytes(const AviStream& stream, std::int64_t frames)
{
    return stream.ChunkBytes() + (stream.chunks.size() + static_cast<std::uint64_t>(frames)) * chunkRoom;
}

// What a new file takes over of a stream's header.
AVISTREAMINFOW InformationOf(const AviStream& stream)
{
    const auto code = [](const Tag& tag) { return mmioFOURCC(tag[0], tag[1], tag[2], tag[3]); };
    AVISTREAMINFOW information = {};
    information.fccType = code(stream.type);
    information.fccHandler = code(stream.handler);
    information.dwFlags = stream.flags;
    information.wPriority = stream.priority;
    information.wLanguage = stream.language;
    information.dwInitialFrames = stream.initialFrames;
    information.dwScale = stream.scale;
    information.dwRate = stream.rate;
    information.dwStart = stream.start;
    information.dwQuality = stream.quality;
    information.dwSampleSize = stream.sampleSize;
    std::copy_n(stream.name.begin(), std::min<std::size_t>(stream.name.size(), std::size(information.szName) - 1),
                information.szName);
    return information;
}

} // namespace

ClipDepth DepthFor(const FrameFormat& format, std::int64_t frames, std::uint64_t soundBytes)
{
    for (const ClipDepth depth : {ClipDepth::Rgb32, ClipDepth::Rgb24}) {
        const std::uint64_t bytes =
            static_cast<std::uint64_t>(frames) * (StoredBytes(format, depth) + chunkRoom) + soundBytes + headerRoom;
        if (bytes <= largestFile)
            return depth;
    }
    throw FailedJob("The result would be larger than the 2 GB that an AVI file may have; split the clip first.");
}

// Copies one sound stream, a piece at a time, so that it lies between the frames it belongs to.
class ClipWriter::SoundCopy
{
public:
    SoundCopy(IAVIFile* target, FileBytes& from, const AviStream& stream, const std::filesystem::path& file)
        : source(from), sound(stream), path(file)
    {
        AVISTREAMINFOW information = InformationOf(sound);
        Require(target->CreateStream(&sink, &information), path);
        std::vector<std::uint8_t> block = sound.format;
        Require(sink->SetFormat(0, block.data(), static_cast<LONG>(block.size())), path);
    }

    // Copies up to the sample that sounds at a time in units of 100 ns.
    void CopyUntil(REFERENCE_TIME time)
    {
        limit = static_cast<double>(time) / 1e7 * sound.rate / sound.scale;
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
        const std::size_t size = sound.sampleSize;
        while (static_cast<double>(copied) < limit) {
            const std::size_t whole = size > 0 ? (data.size() - done) / size : 0;
            if (whole == 0) {
                if (chunk == sound.chunks.size())
                    return;
                Load(sound.chunks[chunk++]);
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

    // Behind what is left of the last one.
    void Load(const AviChunk& next)
    {
        data.erase(data.begin(), data.begin() + static_cast<std::ptrdiff_t>(done));
        done = 0;
        const std::size_t left = data.size();
        data.resize(left + next.bytes);
        if (!ReadChunk(source, next, std::span(data).subspan(left)))
            throw FailedJob("The clip's sound is damaged; get a whole copy of the clip.");
    }

    void Write(std::span<std::uint8_t> bytes, std::size_t samples)
    {
        std::uint8_t nothing = 0; // no place, not even for no bytes, is an error
        // -1: behind what is there. The interface counts what was written in its own way.
        const HRESULT result = sink->Write(-1, static_cast<LONG>(samples), bytes.empty() ? &nothing : bytes.data(),
                                           static_cast<LONG>(bytes.size()), AVIIF_KEYFRAME, nullptr, nullptr);
        if (result == AVIERR_BADPARAM && sound.sampleSize == 0)
            throw FailedJob("This system can't write the clip's sound, whose samples have no fixed size; convert it to "
                            "PCM first.");
        Require(result, path);
        copied += samples;
    }

    FileBytes& source;
    const AviStream& sound;
    const std::filesystem::path& path;
    ComPtr<IAVIStream> sink;
    double limit = 0;         // in samples
    std::uint64_t copied = 0; // in samples
    std::size_t chunk = 0;    // the next one
    std::size_t done = 0;     // the bytes of the data that are through
    std::vector<std::uint8_t> data;
};

ClipWriter::ClipWriter(std::filesystem::path target, ClipReader& source)
    : path(std::move(target)), format(source.Format())
{
    std::uint64_t soundBytes = 0;
    for (const AviStream* const stream : source.Sound())
        soundBytes += SoundBytes(*stream, source.FrameCount());
    depth = DepthFor(format, source.FrameCount(), soundBytes);
    if (depth == ClipDepth::Rgb24)
        narrow.resize(StoredBytes(format, depth));

    Require(session.Open(path, OF_CREATE | OF_WRITE | OF_SHARE_EXCLUSIVE, file), path);
    AVISTREAMINFOW information = InformationOf(source.Pictures());
    information.fccHandler = mmioFOURCC('D', 'I', 'B', ' ');
    information.dwSampleSize = 0;
    information.dwSuggestedBufferSize = static_cast<DWORD>(StoredBytes(format, depth));
    SetRect(&information.rcFrame, 0, 0, format.width, format.height);
    Require(file->CreateStream(&video, &information), path);
    BITMAPINFOHEADER header = {};
    header.biSize = sizeof header;
    header.biWidth = format.width;
    header.biHeight = format.height;
    header.biPlanes = 1;
    header.biBitCount = static_cast<WORD>(depth);
    header.biSizeImage = static_cast<DWORD>(StoredBytes(format, depth));
    Require(video->SetFormat(0, &header, sizeof header), path);
    for (const AviStream* const stream : source.Sound())
        sound.push_back(std::make_unique<SoundCopy>(file.Get(), source.Bytes(), *stream, path));
}

ClipWriter::~ClipWriter() = default;

void ClipWriter::Write(std::span<const std::uint8_t> frame)
{
    std::span<const std::uint8_t> stored = frame;
    if (depth == ClipDepth::Rgb24) {
        const std::size_t rowBytes = narrow.size() / static_cast<std::size_t>(format.height);
        const std::uint8_t* in = frame.data();
        for (int y = 0; y < format.height; ++y) {
            std::uint8_t* out = narrow.data() + static_cast<std::size_t>(y) * rowBytes;
            for (int x = 0; x < format.width; ++x, in += 4, out += 3)
                std::copy_n(in, 3, out);
        }
        stored = narrow;
    }
    Require(video->Write(-1, 1, const_cast<std::uint8_t*>(stored.data()), static_cast<LONG>(stored.size()),
                         AVIIF_KEYFRAME, nullptr, nullptr),
            path);
    ++frames;
    for (const auto& copy : sound)
        copy->CopyUntil(format.TimeOf(frames));
}

void ClipWriter::Finish()
{
    for (const auto& copy : sound)
        copy->CopyAll();
    sound.clear();
    video.Reset();
    file.Reset(); // writes the header and the index; what goes wrong shows only in the file
    if (MendSoundLengths(path) != static_cast<std::uint64_t>(frames))
        throw FailedJob("The written clip lacks frames; is the disk full?");
}

} // namespace vixahost::media
