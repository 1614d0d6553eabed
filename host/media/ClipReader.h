// An AVI clip's frames and sound.
#pragma once

#include "host/base/Handles.h"
#include "host/media/AviInterface.h"
#include "host/media/Frames.h"

#include <cstdint>
#include <filesystem>
#include <vector>

namespace vixahost::media {

// Decodes with whatever the system has for the clip's format. One thread at a time.
class ClipReader : public FrameReader
{
public:
    // Throws FailedJob for a clip that is damaged, has no pictures, or no decoder on this system.
    explicit ClipReader(const std::filesystem::path& file);

    FrameFormat Format() const override { return format; }
    std::int64_t FrameCount() const noexcept { return count; }
    bool Read(std::span<std::uint8_t> frame) override;
    // The next Read gives frame `index`; one beyond the clip counts as its nearest end.
    void Seek(std::int64_t index) noexcept;

    // What the stream's header says (rate, scale, start, quality, name), for a copy of the clip.
    const AVISTREAMINFOW& Information() const noexcept { return information; }
    // The clip's sound streams; empty for a silent clip.
    const std::vector<Microsoft::WRL::ComPtr<IAVIStream>>& Sound() const noexcept { return sound; }

private:
    void ReadFormat();
    void OpenDecoder();
    // The frame at `position` as the clip or its decoder gives it: a header, and the bits behind or apart from it.
    struct StoredFrame
    {
        const BITMAPINFO* info;
        const std::uint8_t* bits;
    };
    StoredFrame ReadStored();
    void Convert(const StoredFrame& stored, std::span<std::uint8_t> frame);

    std::filesystem::path path;
    AviSession session;
    Microsoft::WRL::ComPtr<IAVIFile> file;
    Microsoft::WRL::ComPtr<IAVIStream> video;
    std::vector<Microsoft::WRL::ComPtr<IAVIStream>> sound;
    AVISTREAMINFOW information = {};
    FrameFormat format;
    LONG first = 0;
    LONG count = 0;
    LONG position = 0;

    std::vector<std::uint8_t> formatBlock;     // a BITMAPINFO with room for a whole colour table
    std::vector<std::uint8_t> stored;          // the last frame of an uncompressed clip; stays for a frame without data
    Microsoft::WRL::ComPtr<IGetFrame> decoder; // for a compressed clip

    // For frames that aren't 32-bit: a bitmap of the frame's size that the system converts into.
    UniqueMemoryDC convertDC;
    UniqueBitmap convertBitmap;
    std::uint8_t* convertBits = nullptr; // owned by the bitmap
};

} // namespace vixahost::media
