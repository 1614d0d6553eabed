#include "host/media/ContactSheet.h"

#include "host/media/Canvas.h"

#include <algorithm>

namespace vixahost::media {

Picture DrawContactSheet(const std::string& heading, const std::vector<SheetTile>& tiles)
{
    constexpr int shrink = 2, margin = 16, header = 56, caption = 48;
    const int columns = std::min(5, static_cast<int>(tiles.size()));
    const int rows = (static_cast<int>(tiles.size()) + columns - 1) / columns;
    const int tileWidth = tiles.front().picture.width / shrink, tileHeight = tiles.front().picture.height / shrink;

    Canvas canvas(margin + columns * (tileWidth + margin), header + rows * (tileHeight + caption + margin));
    canvas.FillRectangle(0, 0, canvas.Width(), canvas.Height(), {244, 244, 242});
    canvas.DrawLine(margin, 14, canvas.Width() - 2 * margin, heading, {26, true, {30, 30, 40}});
    for (std::size_t i = 0; i < tiles.size(); ++i) {
        const int left = margin + static_cast<int>(i) % columns * (tileWidth + margin);
        const int top = header + static_cast<int>(i) / columns * (tileHeight + caption + margin);
        canvas.FillRectangle(left - 1, top - 1, tileWidth + 2, tileHeight + 2, {120, 120, 120});
        canvas.DrawPicture(left, top, tiles[i].picture, shrink);
        canvas.DrawLine(left, top + tileHeight + 4, tileWidth, tiles[i].title, {17, true, {30, 30, 40}});
        canvas.DrawLine(left, top + tileHeight + 27, tileWidth, tiles[i].note, {13, false, {90, 90, 100}});
    }
    return canvas.ToPicture();
}

} // namespace vixahost::media
