// The decoder that the platform's AVI file interface has for a clip.
#pragma once

#include "host/base/Handles.h"
#include "host/media/AviInterface.h"
#include "host/media/Decoder.h"

#include <cstdint>
#include <filesystem>
#include <span>

namespace vixahost::media {

class ClipDecoder final : public Decoder
{
public:
    // Throws NoDecoder, and FailedJob for a clip that the interface can't open.
    ClipDecoder(std::filesystem::path clip, const FrameFormat& frames);

    const DecodedClip& Clip() const noexcept override { return facts; }
    bool Decode(std::int64_t index, std::span<std::uint8_t> frame) override;

private:
    void Convert(const BITMAPINFO& info, const std::uint8_t* bits, std::span<std::uint8_t> frame);

    std::filesystem::path path;
    DecodedClip facts;
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
