// Drawing layouts with sizes, rectangles and scales of every kind: what is drawn stays within the destination, tile
// sources within the picture, and no floating-point value leaves the range of an integer.
#include "bitmap/DrawLayout.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

using namespace vixa::bitmap;

namespace {

void require(bool holds)
{
    if (!holds)
        std::abort();
}

// Mostly values that a program would use, sometimes any bits at all.
double takeScale(FuzzedDataProvider& input)
{
    if (input.ConsumeBool())
        return input.ConsumeFloatingPointInRange(0.0, 8.0);
    double value = 0.0;
    const auto bits = input.ConsumeIntegral<std::uint64_t>();
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

std::int32_t takeCoordinate(FuzzedDataProvider& input)
{
    return input.ConsumeBool() ? input.ConsumeIntegralInRange(-300, 300) : input.ConsumeIntegral<std::int32_t>();
}

Rect takeRect(FuzzedDataProvider& input)
{
    const std::int32_t left = takeCoordinate(input), top = takeCoordinate(input);
    return {left, top, takeCoordinate(input), takeCoordinate(input)};
}

bool within(const Rect& inner, const Rect& outer)
{
    return inner.left >= outer.left && inner.top >= outer.top && inner.right <= outer.right &&
           inner.bottom <= outer.bottom;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    const Size picture = {takeCoordinate(input), takeCoordinate(input)};
    const Rect destination = takeRect(input), clip = takeRect(input);
    const Scale scale = {takeScale(input), takeScale(input)};
    const Layout layout = layoutFrom(input.ConsumeIntegralInRange(-1, 6));

    const auto copy = layoutCopy(picture, destination, layout, scale);
    require(!copy || (!copy->destination.isEmpty() && within(copy->destination, destination)));
    const Size drawn = drawnSize(picture, destination, layout, scale);
    require(drawn == Size() || (drawn.width > 0 && drawn.height > 0 && drawn.width <= destination.width() &&
                                drawn.height <= destination.height()));

    const TileGrid tiles(picture, destination, clip, scale);
    require(tiles.columns() >= 0 && tiles.rows() >= 0);
    if (tiles.columns() > 0 && tiles.rows() > 0)
        for (const std::int64_t row : {std::int64_t{0}, tiles.rows() / 2, tiles.rows() - 1})
            for (const std::int64_t column : {std::int64_t{0}, tiles.columns() / 2, tiles.columns() - 1}) {
                const Copy tile = tiles.tile(column, row);
                require(!tile.destination.isEmpty() && within(tile.destination, destination));
                require(!tile.source.isEmpty() && within(tile.source, {0, 0, picture.width, picture.height}));
                if (!clip.isEmpty())
                    require(!intersect(tile.destination, clip).isEmpty());
            }
    return 0;
}
