// Packed DIBs from outside: whatever the parser accepts must lie within the block, and every pixel operation must stay
// within the pixels it was given. The sanitizers see a byte too far.
#include "bitmap/DibLayout.h"
#include "bitmap/Pixels.h"

#include <cstdlib>
#include <cstring>
#include <vector>

using namespace vixa::bitmap;

namespace {

void Require(bool holds)
{
    if (!holds)
        std::abort();
}

void ReadEverything(const Pixels& pixels)
{
    for (const std::int32_t y : {-1, 0, pixels.height / 2, pixels.height - 1, pixels.height})
        for (const std::int32_t x : {-1, 0, pixels.width / 2, pixels.width - 1, pixels.width})
            Require((PixelColor(pixels, x, y) == noColor) ==
                    (x < 0 || y < 0 || x >= pixels.width || y >= pixels.height ||
                     (pixels.bitCount != 1 && pixels.bitCount < 24)));
    const bool hasColors = pixels.bitCount >= 24;
    const Color corner = PixelColor(pixels, pixels.width - 1, 0);
    Require(ContainsColor(pixels, corner) == hasColors);
}

void ChangeEverything(const WritablePixels& pixels, const DibLayout& layout)
{
    const Color corner = PixelColor(pixels, 0, pixels.height - 1);
    const std::vector<std::uint8_t> other(pixels.bytes.size(), 0x77);
    if (layout.bitCount >= 24) {
        ReplaceKeyColor(pixels, {other, layout.width, layout.height, layout.stride, layout.bitCount}, corner);
        Require(PixelColor(pixels, 0, pixels.height - 1) == 0x777777);
    }
    if (layout.bitCount == 32) {
        const ColorVariation variation = ColorVariationOf(pixels, 100.0);
        Require(variation.variation >= 0.0f && variation.variation <= 256.0f);
        const auto mask = LayoutOf(layout.width, layout.height, 1);
        Require(mask.has_value());
        const std::vector<std::uint8_t> maskBytes(static_cast<std::size_t>(mask->pixelBytes), 0x55);
        const Pixels maskPixels = {maskBytes, mask->width, mask->height, mask->stride, 1};
        Tint(pixels, {-7, -7, layout.width / 2, INT32_MAX}, MakeTintTables(corner, 200), &maskPixels);
        Tint(pixels, {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX}, MakeTintTables(0xFFFFFF, 255), nullptr);
        Require(PixelColor(pixels, layout.width - 1, 0) == 0xFFFFFF);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto layout = ParsePackedDib({reinterpret_cast<const std::byte*>(data), size});
    if (!layout)
        return 0;
    Require(layout->width > 0 && layout->height > 0 && layout->headerBytes >= dibHeaderBytes &&
            layout->tableBytes >= 0);
    Require(std::int64_t{layout->width} * layout->bitCount <= std::int64_t{layout->stride} * 8);
    Require(static_cast<std::size_t>(layout->TotalBytes()) <= size);

    // What a load makes of it: a picture of its own with a full colour table.
    const auto own = LayoutOf(layout->width, layout->height, layout->bitCount);
    Require(own && own->pixelBytes == layout->pixelBytes &&
            (own->tableBytes >= layout->tableBytes || own->bitCount > 8));
    const std::uint8_t* const from = data + layout->PixelOffset();
    std::vector<std::uint8_t> bytes(from, from + layout->pixelBytes);
    const WritablePixels pixels = {bytes, own->width, own->height, own->stride, own->bitCount};
    ReadEverything(pixels);
    ChangeEverything(pixels, *own);
    return 0;
}
