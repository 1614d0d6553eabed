#include "host/media/ClipDecoder.h"

#include "host/base/HostError.h"
#include "host/base/ResultCode.h"
#include "host/base/Text.h"
#include "host/media/AviHeader.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

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

// "MJPG", or the number of a format that has no letters.
std::string FormatName(IAVIStream* video)
{
    AVISTREAMINFOW information = {};
    video->Info(&information, sizeof information);
    std::vector<std::uint8_t> format(sizeof(BITMAPINFOHEADER));
    auto bytes = static_cast<LONG>(format.size());
    video->ReadFormat(0, format.data(), &bytes);
    DWORD code = reinterpret_cast<const BITMAPINFOHEADER*>(format.data())->biCompression;
    if (code < 256)
        code = information.fccHandler;
    std::string letters;
    for (int shift = 0; shift < 32; shift += 8) {
        const char letter = static_cast<char>(code >> shift);
        letters += letter >= 32 && letter < 127 ? letter : '?';
    }
    return letters;
}

} // namespace

ClipDecoder::ClipDecoder(std::filesystem::path clip, const FrameFormat& frames)
    : path(std::move(clip)), facts{frames}, width(frames.width), height(frames.height)
{
    const std::string damaged = Show(path) + " is a damaged AVI clip; get a whole copy of it";
    if (const HRESULT result = session.Open(path, file); FAILED(result))
        throw FailedJob(damaged + ": " + Explain(result) + ".");
    if (FAILED(file->GetStream(&video, streamtypeVIDEO, 0)))
        throw FailedJob(damaged + ".");
    first = AVIStreamStart(video.Get());
    BITMAPINFOHEADER wanted = Rgb32(width, height).bmiHeader;
    // Not Attach: this platform's ComPtr counts one more there.
    *decoder.GetAddressOf() = AVIStreamGetFrameOpen(video.Get(), &wanted);
    if (!decoder)
        *decoder.GetAddressOf() = AVIStreamGetFrameOpen(video.Get(), nullptr); // whatever it likes to give
    if (!decoder)
        throw NoDecoder("This system has no decoder for " + Show(path) + " (format \"" + FormatName(video.Get()) +
                        "\"). " + WaysOutFor(path));
}

bool ClipDecoder::Decode(std::int64_t index, std::span<std::uint8_t> frame)
{
    const auto* const info =
        static_cast<const BITMAPINFO*>(AVIStreamGetFrame(decoder.Get(), static_cast<LONG>(first + index)));
    if (!info || info->bmiHeader.biWidth != width || std::abs(info->bmiHeader.biHeight) != height)
        throw FailedJob("Frame " + std::to_string(index) + " of " + Show(path) +
                        " can't be decoded; the clip is damaged.");
    const BITMAPINFOHEADER& header = info->bmiHeader;
    const std::uint8_t* const bits =
        reinterpret_cast<const std::uint8_t*>(info) + header.biSize + ColourTableBytes(header);
    if (header.biBitCount == 32 && header.biCompression == BI_RGB && header.biHeight > 0)
        std::memcpy(frame.data(), bits, frame.size());
    else
        Convert(*info, bits, frame);
    // Not every decoder writes the byte that has no colour; what stood there before differs from run to run.
    for (std::size_t i = 3; i < frame.size(); i += 4)
        frame[i] = 0;
    return true;
}

void ClipDecoder::Convert(const BITMAPINFO& info, const std::uint8_t* bits, std::span<std::uint8_t> frame)
{
    if (!convertBitmap) {
        const BITMAPINFO target = Rgb32(width, height);
        void* memory = nullptr;
        convertDC.reset(CreateCompatibleDC(nullptr));
        convertBitmap.reset(CreateDIBSection(convertDC.get(), &target, DIB_RGB_COLORS, &memory, nullptr, 0));
        convertBits = static_cast<std::uint8_t*>(memory);
    }
    const int rows = convertBitmap ? SetDIBits(convertDC.get(), convertBitmap.get(), 0, static_cast<UINT>(height), bits,
                                               &info, DIB_RGB_COLORS)
                                   : 0;
    if (rows != height)
        throw FailedJob("Frames of " + Show(path) + " can't be turned into 32-bit RGB; convert the clip first.");
    GdiFlush();
    std::memcpy(frame.data(), convertBits, frame.size());
}

} // namespace vixahost::media
