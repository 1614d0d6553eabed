// The platform's decoder for one clip, in the process that uses it.
#pragma once

#include "host/base/Handles.h"
#include "host/media/AviInterface.h"

#include <cstdint>
#include <filesystem>
#include <span>

namespace vixahost::media {

// One thread, in which COM must be running.
class ClipDecoder
{
public:
    // Throws FailedJob for a clip that the platform can't open or has no decoder for.
    ClipDecoder(std::filesystem::path clip, int frameWidth, int frameHeight);

    // Frame `index` as 32-bit RGB, bottom-up. Throws FailedJob.
    void Decode(std::int64_t index, std::span<std::uint8_t> frame);

private:
    void Convert(const BITMAPINFO& info, const std::uint8_t* bits, std::span<std::uint8_t> frame);

    std::filesystem::path path;
    int width, height;
    AviSession session;
    Microsoft::WRL::ComPtr<IAVIFile> file;
    Microsoft::WRL::ComPtr<IAVIStream> video;
    Microsoft::WRL::ComPtr<IGetFrame> decoder;
    LONG first = 0;

    // For frames that aren't 32-bit: a bitmap of the frame's size that the system converts into.
    UniqueMemoryDC convertDC;
    UniqueBitmap convertBitmap;
    std::uint8_t* convertBits = nullptr; // owned by the bitmap
};

} // namespace vixahost::media
