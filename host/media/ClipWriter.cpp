#include "host/media/ClipWriter.h"

#include "host/base/HostError.h"
#include "host/base/Text.h"
#include "host/media/AviHeader.h"
#include "host/media/ClipReader.h"

#include <algorithm>

namespace vixahost::media {

using Microsoft::WRL::ComPtr;

namespace {

constexpr std::uint64_t largestFile = 0x7FFFFFFF;
constexpr std::uint64_t headerRoom = 64 * 1024;
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

std::uint64_t SoundBytes(IAVIStream* stream)
{
    AVISTREAMINFOW information = {};
    if (FAILED(stream->Info(&information, sizeof information)))
        return 0;
    if (information.dwSampleSize > 0)
        return std::uint64_t{information.dwLength} * information.dwSampleSize;
    std::uint64_t bytes = 0;
    const LONG end = AVIStreamEnd(stream);
    for (LONG sample = AVIStreamStart(stream); sample < end; ++sample) {
        LONG size = 0;
        if (SUCCEEDED(stream->Read(sample, 1, nullptr, 0, &size, nullptr)))
            bytes += static_cast<std::uint64_t>(size) + chunkRoom;
    }
    return bytes;
}

} // namespace

ClipDepth DepthFor(const FrameFormat& format, std::int64_t frames, std::uint64_t soundBytes)
{
    for (const ClipDepth depth : {ClipDepth::Rgb32, ClipDepth::Rgb24}) {
        // Sound comes along in at most one more chunk per frame.
        const std::uint64_t bytes =
            static_cast<std::uint64_t>(frames) * (StoredBytes(format, depth) + 2 * chunkRoom) + soundBytes + headerRoom;
        if (bytes <= largestFile)
            return depth;
    }
    throw FailedJob("The result would be larger than the 2 GB that an AVI file may have; split the clip first.");
}

// Copies one sound stream, a piece at a time, so that it lies between the frames it belongs to.
class ClipWriter::SoundCopy
{
public:
    SoundCopy(IAVIFile* target, ComPtr<IAVIStream> from, const std::filesystem::path& file)
        : source(std::move(from)), path(file)
    {
        std::vector<std::uint8_t> format;
        LONG formatBytes = 0;
        position = AVIStreamStart(source.Get());
        end = AVIStreamEnd(source.Get());
        if (FAILED(source->Info(&information, sizeof information)) ||
            FAILED(source->ReadFormat(position, nullptr, &formatBytes)) || formatBytes <= 0 ||
            information.dwRate == 0 || information.dwScale == 0)
            throw FailedJob("The clip's sound is damaged; get a whole copy of the clip.");
        format.resize(static_cast<std::size_t>(formatBytes));
        source->ReadFormat(position, format.data(), &formatBytes);
        Require(target->CreateStream(&sink, &information), path);
        Require(sink->SetFormat(0, format.data(), formatBytes), path);
        // Half a second of samples of one size, or room for the largest single sample.
        const std::uint64_t samples = information.dwRate / information.dwScale / 2 + 1;
        if (information.dwSampleSize > 0)
            buffer.resize(static_cast<std::size_t>(samples * information.dwSampleSize));
    }

    // Copies up to the sample that sounds at a time in units of 100 ns.
    void CopyUntil(REFERENCE_TIME time)
    {
        const std::int64_t samples =
            time / 10'000 * information.dwRate / (std::int64_t{information.dwScale} * 1000) + information.dwStart;
        CopyTo(static_cast<LONG>(std::min<std::int64_t>(samples, end)));
    }

    void CopyAll() { CopyTo(end); }

private:
    void CopyTo(LONG limit)
    {
        while (position < limit) {
            LONG bytes = 0, samples = 0;
            LONG wanted = 1;
            if (information.dwSampleSize > 0) {
                wanted = std::min(limit - position, static_cast<LONG>(buffer.size() / information.dwSampleSize));
            } else if (SUCCEEDED(source->Read(position, 1, nullptr, 0, &bytes, nullptr)) &&
                       static_cast<std::size_t>(bytes) > buffer.size()) {
                buffer.resize(static_cast<std::size_t>(bytes));
            }
            const HRESULT result =
                source->Read(position, wanted, buffer.data(), static_cast<LONG>(buffer.size()), &bytes, &samples);
            if (FAILED(result) || samples <= 0)
                throw FailedJob("The clip's sound is damaged (" + Show(result) + "); get a whole copy of the clip.");
            // -1: behind what is there. The interface counts what was written in its own way.
            Require(sink->Write(-1, samples, buffer.data(), bytes, AVIIF_KEYFRAME, nullptr, nullptr), path);
            position += samples;
        }
    }

    ComPtr<IAVIStream> source, sink;
    const std::filesystem::path& path;
    AVISTREAMINFOW information = {};
    LONG position = 0, end = 0;
    std::vector<std::uint8_t> buffer;
};

ClipWriter::ClipWriter(const std::filesystem::path& target, const ClipReader& source)
    : path(target), format(source.Format())
{
    std::uint64_t soundBytes = 0;
    for (const auto& stream : source.Sound())
        soundBytes += SoundBytes(stream.Get());
    depth = DepthFor(format, source.FrameCount(), soundBytes);
    if (depth == ClipDepth::Rgb24)
        narrow.resize(StoredBytes(format, depth));

    Require(session.Open(path, OF_CREATE | OF_WRITE | OF_SHARE_EXCLUSIVE, file), path);
    AVISTREAMINFOW information = source.Information();
    information.fccHandler = mmioFOURCC('D', 'I', 'B', ' ');
    information.dwSampleSize = 0;
    information.dwFormatChangeCount = 0;
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
    for (const auto& stream : source.Sound())
        sound.push_back(std::make_unique<SoundCopy>(file.Get(), stream, path));
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
    MendSoundLengths(path);
    RequireWholeAvi(path);
    if (ClipReader(path).FrameCount() != frames)
        throw FailedJob("The written clip lacks frames; is the disk full?");
}

} // namespace vixahost::media
