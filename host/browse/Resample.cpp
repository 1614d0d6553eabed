#include "host/browse/Resample.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <vector>

namespace vixahost::browse {

namespace {

// Which source positions one target position along an axis is made of: `taps` of them, spread evenly over its area.
std::vector<int> Taps(int source, int target, int taps)
{
    std::vector<int> positions(static_cast<std::size_t>(target) * static_cast<std::size_t>(taps));
    for (int i = 0; i < target * taps; ++i) {
        const auto position = (2 * std::int64_t{i} + 1) * source / (2 * std::int64_t{target} * taps);
        positions[static_cast<std::size_t>(i)] = static_cast<int>(position);
    }
    return positions;
}

int TapsFor(int source, int target)
{
    return std::clamp((source + target - 1) / target, 1, 3);
}

const std::uint32_t* RowOf(const FrameView& frame, int y)
{
    const std::size_t row = static_cast<std::size_t>(frame.width) * 4;
    return reinterpret_cast<const std::uint32_t*>(frame.bytes.data() +
                                                  static_cast<std::size_t>(frame.height - 1 - y) * row);
}

// Sums two channels at once: the odd bytes and the even bytes of a pixel have room for nine addends each.
template <int Across, int Down>
void DrawReducedRow(const std::array<const std::uint32_t*, 3>& rows, const int* columns, int count, std::uint32_t* out)
{
    constexpr std::uint32_t half = Across * Down / 2, factor = (65536 + Across * Down - 1) / (Across * Down);
    for (int i = 0; i < count; ++i, columns += Across) {
        std::uint32_t even = 0, odd = 0;
        for (std::size_t y = 0; y < Down; ++y)
            for (std::size_t x = 0; x < Across; ++x) {
                const std::uint32_t pixel = rows[y][columns[x]];
                even += pixel & 0x00FF00FF;
                odd += (pixel >> 8) & 0x00FF00FF;
            }
        // The factor rounds up by less than a sum of nine bytes can show.
        const std::uint32_t blue = ((even & 0xFFFF) + half) * factor >> 16, red = ((even >> 16) + half) * factor >> 16;
        const std::uint32_t green = ((odd & 0xFFFF) + half) * factor >> 16;
        out[i] = blue | green << 8 | red << 16;
    }
}

using RowFunction = void (*)(const std::array<const std::uint32_t*, 3>&, const int*, int, std::uint32_t*);

constexpr RowFunction rowFunctions[3][3] = {{DrawReducedRow<1, 1>, DrawReducedRow<1, 2>, DrawReducedRow<1, 3>},
                                            {DrawReducedRow<2, 1>, DrawReducedRow<2, 2>, DrawReducedRow<2, 3>},
                                            {DrawReducedRow<3, 1>, DrawReducedRow<3, 2>, DrawReducedRow<3, 3>}};

} // namespace

Placement Fit(int width, int height, int paneWidth, int paneHeight, double atMost)
{
    if (width <= 0 || height <= 0 || paneWidth <= 0 || paneHeight <= 0)
        return {};
    const double scale =
        std::min({static_cast<double>(paneWidth) / width, static_cast<double>(paneHeight) / height, atMost});
    const int columns = std::clamp(static_cast<int>(std::floor(width * scale + 0.5)), 1, paneWidth);
    const int rows = std::clamp(static_cast<int>(std::floor(height * scale + 0.5)), 1, paneHeight);
    return {(paneWidth - columns) / 2, (paneHeight - rows) / 2, columns, rows};
}

Placement Zoomed(int width, int height, int paneWidth, int paneHeight, const Zoom& zoom)
{
    const auto axis = [&](int length, int pane, double centre, int& begin, int& size) {
        size = std::max(static_cast<int>(std::floor(length * zoom.factor + 0.5)), 1);
        // Past the edge no more than needed.
        begin = size <= pane ? (pane - size) / 2
                             : std::clamp(static_cast<int>(std::floor(pane / 2.0 - size * centre)), pane - size, 0);
    };
    Placement place;
    axis(width, paneWidth, zoom.centreX, place.left, place.width);
    axis(height, paneHeight, zoom.centreY, place.top, place.height);
    return place;
}

void DrawFrame(const FrameView& frame, const Placement& place, int begin, int end, const PaneView& pane)
{
    begin = std::clamp(begin, std::max(place.left, 0), std::min(place.left + place.width, pane.width));
    end = std::clamp(end, begin, std::min(place.left + place.width, pane.width));
    const std::size_t needed = static_cast<std::size_t>(frame.width) * static_cast<std::size_t>(frame.height) * 4;
    if (begin >= end || place.height <= 0 || frame.width <= 0 || frame.height <= 0 || frame.bytes.size() < needed)
        return;
    const int across = TapsFor(frame.width, place.width), down = TapsFor(frame.height, place.height);
    const std::vector<int> columns = Taps(frame.width, place.width, across);
    const std::vector<int> lines = Taps(frame.height, place.height, down);
    const RowFunction draw = rowFunctions[across - 1][down - 1];
    const int* const first = columns.data() + (begin - place.left) * across;
    for (int y = std::max(0, -place.top); y < std::min(place.height, pane.height - place.top); ++y) {
        std::array<const std::uint32_t*, 3> rows = {};
        for (int tap = 0; tap < down; ++tap)
            rows[static_cast<std::size_t>(tap)] = RowOf(
                frame,
                lines[static_cast<std::size_t>(y) * static_cast<std::size_t>(down) + static_cast<std::size_t>(tap)]);
        draw(rows, first, end - begin, pane.pixels + static_cast<std::ptrdiff_t>(place.top + y) * pane.width + begin);
    }
}

} // namespace vixahost::browse
