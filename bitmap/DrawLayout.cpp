#include "bitmap/DrawLayout.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace vixa::bitmap {

namespace {

// Floating-point coordinates of hostile scales can lie far outside of what an integer holds: they stop at its ends.
std::int32_t saturated(double value) noexcept
{
    constexpr double lowest = std::numeric_limits<std::int32_t>::min();
    constexpr double highest = std::numeric_limits<std::int32_t>::max();
    return std::isnan(value) ? 0 : static_cast<std::int32_t>(std::clamp(value, lowest, highest));
}

std::int32_t rounded(double value) noexcept
{
    return saturated(std::floor(value + 0.5));
}

struct RealRect
{
    double left, top, right, bottom;

    Rect pixels() const noexcept { return {rounded(left), rounded(top), rounded(right), rounded(bottom)}; }
};

RealRect real(const Rect& rect) noexcept
{
    return {double(rect.left), double(rect.top), double(rect.right), double(rect.bottom)};
}

// A rectangle of the given size around the centre of `around`.
RealRect centred(const RealRect& around, double width, double height) noexcept
{
    const double left = (around.left + around.right - width) / 2.0;
    const double top = (around.top + around.bottom - height) / 2.0;
    return {left, top, left + width, top + height};
}

RealRect wholeOf(Size picture) noexcept
{
    return {0.0, 0.0, double(picture.width), double(picture.height)};
}

bool drawsNothing(Size picture, const Rect& destination, Scale scale) noexcept
{
    return picture.width < 1 || picture.height < 1 || destination.isEmpty() || !scale.drawsAnything();
}

RealRect fitted(Size picture, const Rect& destination, Scale scale) noexcept
{
    const double width = double(destination.width()), height = double(destination.height());
    const double aspect = double(picture.width) / picture.height * (scale.x / scale.y);
    return width / height > aspect ? centred(real(destination), height * aspect, height)
                                   : centred(real(destination), width, width / aspect);
}

// The part of the picture that has the destination's aspect, taken from its middle.
RealRect cropped(Size picture, const Rect& destination, Scale scale) noexcept
{
    RealRect part = wholeOf(picture);
    const double w = picture.width, h = picture.height;
    const double aspect = double(destination.width()) / double(destination.height()) * (scale.y / scale.x);
    if (aspect == 0.0)
        return part;
    if (w / h > aspect) {
        const double cut = (w - h * aspect) / 2.0;
        part.left += cut;
        part.right -= cut;
    } else {
        const double cut = (h - w / aspect) / 2.0;
        part.top += cut;
        part.bottom -= cut;
    }
    return part;
}

Size centredSize(Size picture, const Rect& destination, Scale scale) noexcept
{
    return {saturated(std::min(std::trunc(picture.width * scale.x), double(destination.width()))),
            saturated(std::min(std::trunc(picture.height * scale.y), double(destination.height())))};
}

Size scaledTile(Size picture, Scale scale) noexcept
{
    return {rounded(picture.width * scale.x), rounded(picture.height * scale.y)};
}

} // namespace

Rect intersect(const Rect& a, const Rect& b) noexcept
{
    const Rect both = {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
                       std::min(a.bottom, b.bottom)};
    return both.isEmpty() ? Rect{} : both;
}

bool Scale::drawsAnything() const noexcept
{
    return std::isfinite(x) && std::isfinite(y) && x > 0.0 && y > 0.0;
}

std::optional<Copy> layoutCopy(Size picture, const Rect& destination, Layout layout, Scale scale) noexcept
{
    if (drawsNothing(picture, destination, scale))
        return std::nullopt;
    RealRect source = wholeOf(picture);
    RealRect target = real(destination);
    if (layout == Layout::Fit) {
        target = fitted(picture, destination, scale);
    } else if (layout == Layout::Fill) {
        source = cropped(picture, destination, scale);
    } else if (layout == Layout::Centre) {
        const Size drawn = centredSize(picture, destination, scale);
        target = centred(real(destination), drawn.width, drawn.height);
        source = centred(wholeOf(picture), drawn.width / scale.x, drawn.height / scale.y);
    }
    const Copy copy = {source.pixels(), target.pixels()};
    if (copy.destination.isEmpty())
        return std::nullopt;
    return copy;
}

TileGrid::TileGrid(Size picture_, const Rect& destination_, const Rect& clip, Scale scale_) noexcept
    : picture(picture_), destination(destination_), scale(scale_)
{
    if (drawsNothing(picture, destination, scale))
        return;
    tileSize = scaledTile(picture, scale);
    const Rect visible = clip.isEmpty() ? destination : intersect(destination, clip);
    if (tileSize.width < 1 || tileSize.height < 1 || visible.isEmpty())
        return;
    const auto before = [](std::int64_t distance, std::int64_t tile) { return distance / tile; };
    const auto upTo = [](std::int64_t distance, std::int64_t tile) { return (distance + tile - 1) / tile; };
    firstColumn = before(std::int64_t{visible.left} - destination.left, tileSize.width);
    lastColumn = upTo(std::int64_t{visible.right} - destination.left, tileSize.width);
    firstRow = before(std::int64_t{visible.top} - destination.top, tileSize.height);
    lastRow = upTo(std::int64_t{visible.bottom} - destination.top, tileSize.height);
}

Copy TileGrid::tile(std::int64_t column, std::int64_t row) const noexcept
{
    const auto place = [](std::int64_t index, std::int32_t start, std::int32_t size, std::int32_t end) {
        const std::int64_t from = start + index * size;
        return std::pair(static_cast<std::int32_t>(from),
                         static_cast<std::int32_t>(std::min<std::int64_t>(from + size, end)));
    };
    const auto sourceExtent = [](std::int64_t drawn, double factor, std::int32_t most) {
        return std::clamp(saturated(std::trunc(double(drawn) / factor)), 1, most);
    };
    const auto [left, right] = place(firstColumn + column, destination.left, tileSize.width, destination.right);
    const auto [top, bottom] = place(firstRow + row, destination.top, tileSize.height, destination.bottom);
    const Rect target = {left, top, right, bottom};
    return {{0, 0, sourceExtent(target.width(), scale.x, picture.width),
             sourceExtent(target.height(), scale.y, picture.height)},
            target};
}

Size drawnSize(Size picture, const Rect& destination, Layout layout, Scale scale) noexcept
{
    if (drawsNothing(picture, destination, scale))
        return {};
    Size size = {saturated(double(destination.width())), saturated(double(destination.height()))};
    if (layout == Layout::Fit) {
        const Rect target = fitted(picture, destination, scale).pixels();
        size = {saturated(double(target.width())), saturated(double(target.height()))};
    } else if (layout == Layout::Centre) {
        size = centredSize(picture, destination, scale);
    } else if (layout == Layout::Tile) {
        const Size tile = scaledTile(picture, scale);
        size = {std::min(size.width, tile.width), std::min(size.height, tile.height)};
    }
    return size.width < 1 || size.height < 1 ? Size{} : size;
}

} // namespace vixa::bitmap
