// Drawing layouts with sizes, rectangles and scales of every kind: what is drawn stays within the destination, tile
// sources within the picture, and no floating-point value leaves the range of an integer.
#include "bitmap/DrawLayout.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

using namespace vixa::bitmap;

namespace {

void Require(bool holds)
{
    if (!holds)
        std::abort();
}

// Mostly values that a program would use, sometimes any bits at all.
double TakeScale(FuzzedDataProvider& input)
{
    if (input.ConsumeBool())
        return input.ConsumeFloatingPointInRange(0.0, 8.0);
    double value = 0.0;
    const auto bits = input.ConsumeIntegral<std::uint64_t>();
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

std::int32_t TakeCoordinate(FuzzedDataProvider& input)
{
    return input.ConsumeBool() ? input.ConsumeIntegralInRange(-300, 300) : input.ConsumeIntegral<std::int32_t>();
}

Rect TakeRect(FuzzedDataProvider& input)
{
    const std::int32_t left = TakeCoordinate(input), top = TakeCoordinate(input);
    return {left, top, TakeCoordinate(input), TakeCoordinate(input)};
}

bool Within(const Rect& inner, const Rect& outer)
{
    return inner.left >= outer.left && inner.top >= outer.top && inner.right <= outer.right &&
           inner.bottom <= outer.bottom;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    const Size picture = {TakeCoordinate(input), TakeCoordinate(input)};
    const Rect destination = TakeRect(input), clip = TakeRect(input);
    const Scale scale = {TakeScale(input), TakeScale(input)};
    const Layout layout = LayoutFrom(input.ConsumeIntegralInRange(-1, 6));

    const auto copy = LayoutCopy(picture, destination, layout, scale);
    Require(!copy || (!copy->destination.IsEmpty() && Within(copy->destination, destination)));
    const Size drawn = DrawnSize(picture, destination, layout, scale);
    Require(drawn == Size() || (drawn.width > 0 && drawn.height > 0 && drawn.width <= destination.Width() &&
                                drawn.height <= destination.Height()));

    const TileGrid tiles(picture, destination, clip, scale);
    Require(tiles.Columns() >= 0 && tiles.Rows() >= 0);
    if (tiles.Columns() > 0 && tiles.Rows() > 0)
        for (const std::int64_t row : {std::int64_t{0}, tiles.Rows() / 2, tiles.Rows() - 1})
            for (const std::int64_t column : {std::int64_t{0}, tiles.Columns() / 2, tiles.Columns() - 1}) {
                const Copy tile = tiles.Tile(column, row);
                Require(!tile.destination.IsEmpty() && Within(tile.destination, destination));
                Require(!tile.source.IsEmpty() && Within(tile.source, {0, 0, picture.width, picture.height}));
                if (!clip.IsEmpty())
                    Require(!Intersect(tile.destination, clip).IsEmpty());
            }
    return 0;
}
