#include "bitmap/DrawLayout.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace vixa::bitmap {

namespace {

// Floating-point coordinates of hostile scales can lie far outside of what an integer holds: they stop at its ends.
std::int32_t Saturated(double value) noexcept
{
    constexpr double lowest = std::numeric_limits<std::int32_t>::min();
    constexpr double highest = std::numeric_limits<std::int32_t>::max();
    return std::isnan(value) ? 0 : static_cast<std::int32_t>(std::clamp(value, lowest, highest));
}

std::int32_t Rounded(double value) noexcept
{
    return Saturated(std::floor(value + 0.5));
}

struct RealRect
{
    double left, top, right, bottom;

    Rect ToPixels() const noexcept { return {Rounded(left), Rounded(top), Rounded(right), Rounded(bottom)}; }
};

RealRect Real(const Rect& rect) noexcept
{
    return {double(rect.left), double(rect.top), double(rect.right), double(rect.bottom)};
}

// A rectangle of the given size around the centre of `around`.
RealRect Centred(const RealRect& around, double width, double height) noexcept
{
    const double left = (around.left + around.right - width) / 2.0;
    const double top = (around.top + around.bottom - height) / 2.0;
    return {left, top, left + width, top + height};
}

RealRect WholeOf(Size picture) noexcept
{
    return {0.0, 0.0, double(picture.width), double(picture.height)};
}

bool DrawsNothing(Size picture, const Rect& destination, Scale scale) noexcept
{
    return picture.width < 1 || picture.height < 1 || destination.IsEmpty() || !scale.DrawsAnything();
}

RealRect Fitted(Size picture, const Rect& destination, Scale scale) noexcept
{
    const auto width = double(destination.Width()), height = double(destination.Height());
    const double aspect = double(picture.width) / picture.height * (scale.x / scale.y);
    return width / height > aspect ? Centred(Real(destination), height * aspect, height)
                                   : Centred(Real(destination), width, width / aspect);
}

// The part of the picture that has the destination's aspect, taken from its middle.
RealRect Cropped(Size picture, const Rect& destination, Scale scale) noexcept
{
    RealRect part = WholeOf(picture);
    const double w = picture.width, h = picture.height;
    const double aspect = double(destination.Width()) / double(destination.Height()) * (scale.y / scale.x);
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

Size CentredSize(Size picture, const Rect& destination, Scale scale) noexcept
{
    return {Saturated(std::min(std::trunc(picture.width * scale.x), double(destination.Width()))),
            Saturated(std::min(std::trunc(picture.height * scale.y), double(destination.Height())))};
}

Size ScaledTile(Size picture, Scale scale) noexcept
{
    return {Rounded(picture.width * scale.x), Rounded(picture.height * scale.y)};
}

} // namespace

Rect Intersect(const Rect& a, const Rect& b) noexcept
{
    const Rect both = {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
                       std::min(a.bottom, b.bottom)};
    return both.IsEmpty() ? Rect{} : both;
}

bool Scale::DrawsAnything() const noexcept
{
    return std::isfinite(x) && std::isfinite(y) && x > 0.0 && y > 0.0;
}

std::optional<Copy> LayoutCopy(Size picture, const Rect& destination, Layout layout, Scale scale) noexcept
{
    if (DrawsNothing(picture, destination, scale))
        return std::nullopt;
    RealRect source = WholeOf(picture);
    RealRect target = Real(destination);
    if (layout == Layout::Fit) {
        target = Fitted(picture, destination, scale);
    } else if (layout == Layout::Fill) {
        source = Cropped(picture, destination, scale);
    } else if (layout == Layout::Centre) {
        const Size drawn = CentredSize(picture, destination, scale);
        target = Centred(Real(destination), drawn.width, drawn.height);
        source = Centred(WholeOf(picture), drawn.width / scale.x, drawn.height / scale.y);
    }
    const Copy copy = {source.ToPixels(), target.ToPixels()};
    if (copy.destination.IsEmpty())
        return std::nullopt;
    return copy;
}

TileGrid::TileGrid(Size pictureSize, const Rect& area, const Rect& clip, Scale factors) noexcept
    : picture(pictureSize), destination(area), scale(factors)
{
    if (DrawsNothing(picture, destination, scale))
        return;
    tileSize = ScaledTile(picture, scale);
    const Rect visible = clip.IsEmpty() ? destination : Intersect(destination, clip);
    if (tileSize.width < 1 || tileSize.height < 1 || visible.IsEmpty())
        return;
    const auto before = [](std::int64_t distance, std::int64_t tile) { return distance / tile; };
    const auto upTo = [](std::int64_t distance, std::int64_t tile) { return (distance + tile - 1) / tile; };
    firstColumn = before(std::int64_t{visible.left} - destination.left, tileSize.width);
    lastColumn = upTo(std::int64_t{visible.right} - destination.left, tileSize.width);
    firstRow = before(std::int64_t{visible.top} - destination.top, tileSize.height);
    lastRow = upTo(std::int64_t{visible.bottom} - destination.top, tileSize.height);
}

Copy TileGrid::Tile(std::int64_t column, std::int64_t row) const noexcept
{
    const auto place = [](std::int64_t index, std::int32_t start, std::int32_t size, std::int32_t end) {
        const std::int64_t from = start + index * size;
        return std::pair(static_cast<std::int32_t>(from),
                         static_cast<std::int32_t>(std::min<std::int64_t>(from + size, end)));
    };
    const auto sourceExtent = [](std::int64_t drawn, double factor, std::int32_t most) {
        return std::clamp(Saturated(std::trunc(double(drawn) / factor)), 1, most);
    };
    const auto [left, right] = place(firstColumn + column, destination.left, tileSize.width, destination.right);
    const auto [top, bottom] = place(firstRow + row, destination.top, tileSize.height, destination.bottom);
    const Rect target = {left, top, right, bottom};
    return {{0, 0, sourceExtent(target.Width(), scale.x, picture.width),
             sourceExtent(target.Height(), scale.y, picture.height)},
            target};
}

Size DrawnSize(Size picture, const Rect& destination, Layout layout, Scale scale) noexcept
{
    if (DrawsNothing(picture, destination, scale))
        return {};
    Size size = {Saturated(double(destination.Width())), Saturated(double(destination.Height()))};
    if (layout == Layout::Fit) {
        const Rect target = Fitted(picture, destination, scale).ToPixels();
        size = {Saturated(double(target.Width())), Saturated(double(target.Height()))};
    } else if (layout == Layout::Centre) {
        size = CentredSize(picture, destination, scale);
    } else if (layout == Layout::Tile) {
        const Size tile = ScaledTile(picture, scale);
        size = {std::min(size.width, tile.width), std::min(size.height, tile.height)};
    }
    return size.width < 1 || size.height < 1 ? Size{} : size;
}

} // namespace vixa::bitmap
