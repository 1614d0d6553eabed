// Packed DIBs from outside: whatever the parser accepts must lie within the block, and every pixel operation must stay
// within the pixels it was given. The sanitizers see a byte too far.
#include "bitmap/DibLayout.h"
#include "bitmap/Pixels.h"

#include <cstdlib>
#include <cstring>
#include <vector>

using namespace vixa::bitmap;

namespace {

void require(bool holds)
{
    if (!holds)
        std::abort();
}

void readEverything(const Pixels& pixels)
{
    for (const std::int32_t y : {-1, 0, pixels.height / 2, pixels.height - 1, pixels.height})
        for (const std::int32_t x : {-1, 0, pixels.width / 2, pixels.width - 1, pixels.width})
            require((pixelColor(pixels, x, y) == noColor) ==
                    (x < 0 || y < 0 || x >= pixels.width || y >= pixels.height ||
                     (pixels.bitCount != 1 && pixels.bitCount < 24)));
    const bool hasColors = pixels.bitCount >= 24;
    const Color corner = pixelColor(pixels, pixels.width - 1, 0);
    require(containsColor(pixels, corner) == hasColors);
}

void changeEverything(const WritablePixels& pixels, const DibLayout& layout)
{
    const Color corner = pixelColor(pixels, 0, pixels.height - 1);
    const std::vector<std::uint8_t> other(pixels.bytes.size(), 0x77);
    if (layout.bitCount >= 24) {
        replaceKeyColor(pixels, {other, layout.width, layout.height, layout.stride, layout.bitCount}, corner);
        require(pixelColor(pixels, 0, pixels.height - 1) == 0x777777);
    }
    if (layout.bitCount == 32) {
        const ColorVariation variation = colorVariation(pixels, 100.0);
        require(variation.variation >= 0.0f && variation.variation <= 256.0f);
        const auto mask = layoutOf(layout.width, layout.height, 1);
        require(mask.has_value());
        const std::vector<std::uint8_t> maskBytes(static_cast<std::size_t>(mask->pixelBytes), 0x55);
        const Pixels maskPixels = {maskBytes, mask->width, mask->height, mask->stride, 1};
        tint(pixels, {-7, -7, layout.width / 2, INT32_MAX}, tintTables(corner, 200), &maskPixels);
        tint(pixels, {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX}, tintTables(0xFFFFFF, 255), nullptr);
        require(pixelColor(pixels, layout.width - 1, 0) == 0xFFFFFF);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto layout = parsePackedDib({reinterpret_cast<const std::byte*>(data), size});
    if (!layout)
        return 0;
    require(layout->width > 0 && layout->height > 0 && layout->headerBytes >= dibHeaderBytes &&
            layout->tableBytes >= 0);
    require(std::int64_t{layout->width} * layout->bitCount <= std::int64_t{layout->stride} * 8);
    require(static_cast<std::size_t>(layout->totalBytes()) <= size);

    // What a load makes of it: a picture of its own with a full colour table.
    const auto own = layoutOf(layout->width, layout->height, layout->bitCount);
    require(own && own->pixelBytes == layout->pixelBytes &&
            (own->tableBytes >= layout->tableBytes || own->bitCount > 8));
    const std::uint8_t* const from = data + layout->pixelOffset();
    std::vector<std::uint8_t> bytes(from, from + layout->pixelBytes);
    const WritablePixels pixels = {bytes, own->width, own->height, own->stride, own->bitCount};
    readEverything(pixels);
    changeEverything(pixels, *own);
    return 0;
}
