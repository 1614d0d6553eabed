#include "host/media/ClipReader.h"

#include "host/base/HostError.h"
#include "host/base/Text.h"
#include "host/media/AviHeader.h"
#include "host/media/DibSize.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>

namespace vixahost::media {

namespace {

BITMAPINFO Rgb32(int width, int height)
{
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biSizeImage = static_cast<DWORD>(width) * static_cast<DWORD>(height) * 4;
    return info;
}

std::size_t ColourTableBytes(const BITMAPINFOHEADER& header)
{
    if (header.biCompression == BI_BITFIELDS && header.biSize == sizeof(BITMAPINFOHEADER))
        return 3 * sizeof(DWORD);
    if (header.biBitCount > 8)
        return header.biClrUsed * sizeof(RGBQUAD);
    return (header.biClrUsed ? header.biClrUsed : std::size_t{1} << header.biBitCount) * sizeof(RGBQUAD);
}

} // namespace

ClipReader::ClipReader(const std::filesystem::path& clip) : path(clip)
{
    RequireWholeAvi(path);
    const std::string damaged = Show(path) + " is a damaged AVI clip; get a whole copy of it";
    if (const HRESULT result = session.Open(path, OF_READ | OF_SHARE_DENY_WRITE, file); FAILED(result))
        throw FailedJob(damaged + " (" + Show(result) + ").");
    if (FAILED(file->GetStream(&video, streamtypeVIDEO, 0)))
        throw FailedJob(Show(path) + " has no pictures; name a clip that has some.");
    if (FAILED(video->Info(&information, sizeof information)) || information.dwRate == 0 || information.dwScale == 0)
        throw FailedJob(damaged + ".");
    ReadFormat();
    first = AVIStreamStart(video.Get());
    count = AVIStreamLength(video.Get());
    if (count <= 0)
        throw FailedJob(Show(path) + " holds no frame; name a clip that has some.");
    for (LONG number = 0;; ++number) {
        Microsoft::WRL::ComPtr<IAVIStream> stream;
        if (FAILED(file->GetStream(&stream, streamtypeAUDIO, number)))
            break;
        sound.push_back(stream);
    }
}

void ClipReader::ReadFormat()
{
    LONG bytes = 0;
    if (FAILED(video->ReadFormat(0, nullptr, &bytes)) || bytes < static_cast<LONG>(sizeof(BITMAPINFOHEADER)))
        throw FailedJob(Show(path) + " is a damaged AVI clip; get a whole copy of it.");
    formatBlock.resize(static_cast<std::size_t>(bytes) + 256 * sizeof(RGBQUAD));
    video->ReadFormat(0, formatBlock.data(), &bytes);
    auto& header = reinterpret_cast<BITMAPINFO*>(formatBlock.data())->bmiHeader;
    const std::int64_t width = header.biWidth, height = std::abs(std::int64_t{header.biHeight});
    if (header.biSize < sizeof(BITMAPINFOHEADER) || header.biSize > static_cast<DWORD>(bytes) || width <= 0 ||
        height == 0)
        throw FailedJob(Show(path) + " is a damaged AVI clip; get a whole copy of it.");
    if (!DibBytes(width, height, 32))
        throw FailedJob(Show(path) + " has frames that don't fit a 32-bit program; make it smaller first.");
    format = {static_cast<int>(width), static_cast<int>(height), information.dwRate, information.dwScale};
    if (header.biCompression != BI_RGB) {
        OpenDecoder();
    } else {
        const std::optional<std::size_t> frameBytes = DibBytes(width, height, header.biBitCount);
        if (!frameBytes)
            throw FailedJob(Show(path) + " has frames of an unknown depth; convert it to 24 or 32 bits first.");
        // Nothing is allocated for a frame that the file can't hold.
        if (*frameBytes > std::filesystem::file_size(path))
            throw FailedJob(Show(path) + " is a damaged AVI clip; get a whole copy of it.");
        stored.resize(*frameBytes);
    }
    header.biClrUsed = std::min<DWORD>(header.biClrUsed, 256);
}

void ClipReader::OpenDecoder()
{
    BITMAPINFOHEADER wanted = Rgb32(format.width, format.height).bmiHeader;
    decoder.Attach(AVIStreamGetFrameOpen(video.Get(), &wanted));
    if (!decoder)
        decoder.Attach(AVIStreamGetFrameOpen(video.Get(), nullptr)); // whatever it likes to give
    if (decoder)
        return;
    DWORD code = reinterpret_cast<const BITMAPINFOHEADER*>(formatBlock.data())->biCompression;
    if (code < 256) // one of the numbers that have no letters
        code = information.fccHandler;
    std::string letters;
    for (int shift = 0; shift < 32; shift += 8) {
        const char letter = static_cast<char>(code >> shift);
        letters += letter >= 32 && letter < 127 ? letter : '?';
    }
    throw FailedJob("This system has no decoder for " + Show(path) + " (format \"" + letters +
                    "\"); convert the clip to uncompressed RGB first.");
}

ClipReader::StoredFrame ClipReader::ReadStored()
{
    const std::string undecodable =
        "Frame " + std::to_string(position) + " of " + Show(path) + " can't be decoded; the clip is damaged.";
    if (decoder) {
        const auto* info = static_cast<const BITMAPINFO*>(AVIStreamGetFrame(decoder.Get(), first + position));
        if (!info || info->bmiHeader.biWidth != format.width || std::abs(info->bmiHeader.biHeight) != format.height)
            throw FailedJob(undecodable);
        return {info, reinterpret_cast<const std::uint8_t*>(info) + info->bmiHeader.biSize +
                          ColourTableBytes(info->bmiHeader)};
    }
    LONG bytes = 0, samples = 0;
    const HRESULT result =
        video->Read(first + position, 1, stored.data(), static_cast<LONG>(stored.size()), &bytes, &samples);
    // A frame without data shows the one before it once more.
    if (FAILED(result) || (bytes != 0 && static_cast<std::size_t>(bytes) != stored.size()))
        throw FailedJob(undecodable);
    return {reinterpret_cast<const BITMAPINFO*>(formatBlock.data()), stored.data()};
}

bool ClipReader::Read(std::span<std::uint8_t> frame)
{
    if (position == count)
        return false;
    const StoredFrame from = ReadStored();
    const BITMAPINFOHEADER& header = from.info->bmiHeader;
    const std::size_t row = static_cast<std::size_t>(format.width) * 4;
    if (header.biBitCount != 32 || header.biCompression != BI_RGB)
        Convert(from, frame);
    else if (header.biHeight > 0)
        std::memcpy(frame.data(), from.bits, frame.size());
    else
        for (int y = 0; y < format.height; ++y)
            std::memcpy(frame.data() + static_cast<std::size_t>(format.height - 1 - y) * row,
                        from.bits + static_cast<std::size_t>(y) * row, row);
    ++position;
    return true;
}

void ClipReader::Seek(std::int64_t index) noexcept
{
    position = static_cast<LONG>(std::clamp<std::int64_t>(index, 0, count));
}

void ClipReader::Convert(const StoredFrame& from, std::span<std::uint8_t> frame)
{
    if (!convertBitmap) {
        const BITMAPINFO info = Rgb32(format.width, format.height);
        void* bits = nullptr;
        convertDC.reset(CreateCompatibleDC(nullptr));
        convertBitmap.reset(CreateDIBSection(convertDC.get(), &info, DIB_RGB_COLORS, &bits, nullptr, 0));
        convertBits = static_cast<std::uint8_t*>(bits);
    }
    const int rows = !convertBitmap ? 0
                                    : SetDIBits(convertDC.get(), convertBitmap.get(), 0,
                                                static_cast<UINT>(format.height), from.bits, from.info, DIB_RGB_COLORS);
    if (rows != format.height)
        throw FailedJob("Frames of " + Show(path) + " can't be turned into 32-bit RGB; convert the clip first.");
    GdiFlush();
    std::memcpy(frame.data(), convertBits, frame.size());
}

} // namespace vixahost::media
