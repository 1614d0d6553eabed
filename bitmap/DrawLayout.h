// The five ways to lay a picture out in a rectangle, as rectangles. Portable: who draws gets integers.
#pragma once

#include <cstdint>
#include <optional>

namespace vixa::bitmap {

enum class Layout
{
    Stretch = 0,
    Fit = 1,
    Fill = 2,
    Centre = 3,
    Tile = 4,
};

// The layout of a caller's number; whatever is not 1 to 4 stretches.
constexpr Layout LayoutFrom(int number) noexcept
{
    return number >= 1 && number <= 4 ? static_cast<Layout>(number) : Layout::Stretch;
}

struct Size
{
    std::int32_t width = 0;
    std::int32_t height = 0;
    bool operator==(const Size&) const = default;
};

// Pixels from left up to but without right, from top up to but without bottom.
struct Rect
{
    std::int32_t left = 0;
    std::int32_t top = 0;
    std::int32_t right = 0;
    std::int32_t bottom = 0;
    bool operator==(const Rect&) const = default;

    std::int64_t Width() const noexcept { return std::int64_t{right} - left; }
    std::int64_t Height() const noexcept { return std::int64_t{bottom} - top; }
    bool IsEmpty() const noexcept { return Width() < 1 || Height() < 1; }
};

// The part that two rectangles share; empty when they share none.
Rect Intersect(const Rect& a, const Rect& b) noexcept;

// Factors on the picture's pixels; only finite ones above 0 draw anything.
struct Scale
{
    double x = 1.0;
    double y = 1.0;
    bool DrawsAnything() const noexcept;
};

// One stretched copy: a part of the picture and where it goes.
struct Copy
{
    Rect source;
    Rect destination;
};

// The copy that draws a picture of `picture` pixels into `destination` with any layout but Tile. Nothing when there is
// nothing to draw: an empty picture or destination, a scale that draws nothing, a result below one pixel.
std::optional<Copy> LayoutCopy(Size picture, const Rect& destination, Layout layout, Scale scale) noexcept;

// The tiles of Layout::Tile that meet the visible part of a destination, row by row.
class TileGrid
{
public:
    // `clip` limits which tiles are drawn, not where they lie; an empty clip stands for all of `area`.
    TileGrid(Size pictureSize, const Rect& area, const Rect& clip, Scale factors) noexcept;

    std::int64_t Columns() const noexcept { return lastColumn - firstColumn; }
    std::int64_t Rows() const noexcept { return lastRow - firstRow; }

    // The tile in a column and row counted from the first visible one. The destination's right and bottom edges cut it
    // off; its source holds at least one pixel and none beyond the picture.
    Copy Tile(std::int64_t column, std::int64_t row) const noexcept;

private:
    Size picture;
    Rect destination;
    Scale scale;
    Size tileSize;
    std::int64_t firstColumn = 0, lastColumn = 0, firstRow = 0, lastRow = 0;
};

// The size that a whole picture has once drawn into `destination`: the destination's for Stretch and Fill, the fitted
// size for Fit, the scaled size limited to the destination for Centre and Tile. (0, 0) when nothing is drawn.
Size DrawnSize(Size picture, const Rect& destination, Layout layout, Scale scale) noexcept;

} // namespace vixa::bitmap
