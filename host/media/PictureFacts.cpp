#include "host/media/PictureFacts.h"

#include <cstddef>
#include <cstring>

namespace vixahost::media {

namespace {

using Bytes = std::span<const std::uint8_t>;

// Numbers out of bytes in either order; nothing beyond the end.
class Numbers
{
public:
    Numbers(Bytes from, bool bigEndian) : bytes(from), big(bigEndian) {}

    std::optional<std::uint32_t> At(std::size_t offset, std::size_t size) const
    {
        if (offset > bytes.size() || bytes.size() - offset < size)
            return std::nullopt;
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < size; ++i)
            value = value << 8 | bytes[offset + (big ? i : size - 1 - i)];
        return value;
    }

private:
    Bytes bytes;
    bool big;
};

bool StartsWith(Bytes bytes, const void* text, std::size_t length)
{
    return bytes.size() >= length && std::memcmp(bytes.data(), text, length) == 0;
}

unsigned OrientationInTiff(Bytes tiff)
{
    const bool big = StartsWith(tiff, "MM\0*", 4);
    if (!big && !StartsWith(tiff, "II*\0", 4))
        return 1;
    const Numbers numbers(tiff, big);
    const std::uint32_t directory = numbers.At(4, 4).value_or(0);
    const std::uint32_t entries = numbers.At(directory, 2).value_or(0);
    for (std::uint32_t i = 0; i < entries; ++i) {
        // 12 bytes each: tag, type, count, and the value itself where it fits.
        const std::size_t entry = std::size_t{directory} + 2 + std::size_t{i} * 12;
        if (numbers.At(entry, 2) != 274u)
            continue;
        const std::uint32_t value = numbers.At(entry + 8, 2).value_or(1);
        return numbers.At(entry + 2, 2) == 3u && value >= 1 && value <= 8 ? value : 1;
    }
    return 1;
}

bool IsJpeg(Bytes file)
{
    return StartsWith(file, "\xFF\xD8\xFF", 3);
}

bool IsPng(Bytes file)
{
    return StartsWith(file, "\x89PNG\r\n\x1A\n", 8);
}

// Calls see(marker, content) for each segment before the picture's own data, until it answers true. Bytes between
// segments are skipped, as codecs do.
template <typename See>
void ForJpegSegments(Bytes file, See see)
{
    const Numbers numbers(file, true);
    for (std::size_t at = 2; at < file.size();) {
        if (file[at] != 0xFF) {
            ++at;
            continue;
        }
        const std::uint32_t marker = numbers.At(at + 1, 1).value_or(0);
        const bool isAlone = marker == 0 || marker == 1 || marker == 0xFF || (marker >= 0xD0 && marker <= 0xD7);
        if (isAlone) {
            at += marker == 0xFF ? 1 : 2;
            continue;
        }
        const std::uint32_t length = numbers.At(at + 2, 2).value_or(0);
        if (marker == 0xDA || length < 2 || file.size() - at - 2 < length ||
            see(marker, file.subspan(at + 4, length - 2)))
            return;
        at += 2 + std::size_t{length};
    }
}

unsigned OrientationInJpeg(Bytes file)
{
    unsigned orientation = 1;
    ForJpegSegments(file, [&](std::uint32_t marker, Bytes segment) {
        const bool found = marker == 0xE1 && StartsWith(segment, "Exif\0", 6);
        if (found)
            orientation = OrientationInTiff(segment.subspan(6));
        return found;
    });
    return orientation;
}

std::optional<StoredSize> SizeInJpeg(Bytes file)
{
    std::optional<StoredSize> size;
    ForJpegSegments(file, [&](std::uint32_t marker, Bytes frame) {
        // The start of a frame; three of the numbers stand for other things.
        if (marker < 0xC0 || marker > 0xCF || marker == 0xC4 || marker == 0xC8 || marker == 0xCC)
            return false;
        const Numbers numbers(frame, true);
        const auto bits = numbers.At(0, 1), height = numbers.At(1, 2), width = numbers.At(3, 2);
        if (bits && height && width)
            size = StoredSize{*width, *height, *bits > 8 ? 2u : 1u};
        return true;
    });
    return size;
}

unsigned OrientationInPng(Bytes file)
{
    const Numbers numbers(file, true);
    for (std::size_t at = 8;;) {
        const std::optional<std::uint32_t> length = numbers.At(at, 4);
        // Each chunk: length, four letters, content, checksum.
        if (!length || file.size() - at < 12 || file.size() - at - 12 < *length)
            return 1;
        if (StartsWith(file.subspan(at + 4), "eXIf", 4))
            return OrientationInTiff(file.subspan(at + 8, *length));
        at += 12 + std::size_t{*length};
    }
}

std::optional<StoredSize> SizeInPng(Bytes file)
{
    const Numbers numbers(file, true);
    const auto width = numbers.At(16, 4), height = numbers.At(20, 4), bits = numbers.At(24, 1);
    if (!width || !height || !bits)
        return std::nullopt;
    return StoredSize{*width, *height, *bits > 8 ? 2u : 1u};
}

} // namespace

unsigned OrientationOf(Bytes file) noexcept
{
    if (IsJpeg(file))
        return OrientationInJpeg(file);
    if (IsPng(file))
        return OrientationInPng(file);
    return OrientationInTiff(file);
}

std::optional<StoredSize> StoredSizeOf(Bytes file) noexcept
{
    if (IsJpeg(file))
        return SizeInJpeg(file);
    return IsPng(file) ? SizeInPng(file) : std::nullopt;
}

Picture TurnUpright(const Picture& stored, unsigned orientation)
{
    // What the tag's values say of the stored picture: which of its ends is to be seen at the right, at the bottom,
    // and whether its rows are to be seen as columns.
    const bool sideways = orientation >= 5 && orientation <= 8;
    const bool fromRight = orientation == 2 || orientation == 3 || orientation == 7 || orientation == 8;
    const bool fromBottom = orientation == 3 || orientation == 4 || orientation == 6 || orientation == 7;
    Picture upright(sideways ? stored.height : stored.width, sideways ? stored.width : stored.height);
    upright.dpiX = sideways ? stored.dpiY : stored.dpiX;
    upright.dpiY = sideways ? stored.dpiX : stored.dpiY;
    for (int y = 0; y < upright.height; ++y) {
        for (int x = 0; x < upright.width; ++x) {
            const int column = sideways ? y : x, row = sideways ? x : y;
            const int fromX = fromRight ? stored.width - 1 - column : column;
            const int fromY = fromBottom ? stored.height - 1 - row : row;
            std::memcpy(upright.Row(y) + std::ptrdiff_t{x} * 4, stored.Row(fromY) + std::ptrdiff_t{fromX} * 4, 4);
        }
    }
    return upright;
}

} // namespace vixahost::media
