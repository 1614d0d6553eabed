// A frame cut into bands of rows, each with the neighbours that the effects look at.
#pragma once

#include <algorithm>
#include <cstddef>

namespace vixahost::media {

// Up to this many bytes a frame goes through the graph in one piece. What is larger goes in bands, so that the graph
// needs no buffer of the frame's size; a smaller picture would gain nothing.
inline constexpr std::size_t bandBytes = std::size_t{64} << 20;

// Bands of equal height that cover a frame from its first row to its last. Effects may change a row by looking `reach`
// rows up and down, and may treat a band's first and last row as the frame's border: so only rows that lie `reach` rows
// inside a band are right, unless the band's end is the frame's.
//
// Some effects work on pairs of pixels, counted from the frame's first one: the last of an odd number stays as it was.
// So the last band is odd exactly when the frame is, and the odd pixel of any other lies in its outermost row.
class Bands
{
public:
    struct Band
    {
        int first;     // its first row
        int keepBegin; // the rows of its result that are taken
        int keepEnd;
    };

    // `most`: the bytes that a band may have. One that can't have so few, because it needs `reach` rows on both sides,
    // has more.
    constexpr Bands(int frameWidth, int frameHeight, int reachedRows, std::size_t most = bandBytes)
        : height(frameHeight), reach(reachedRows), rows(frameHeight)
    {
        const std::size_t fitting = most / (static_cast<std::size_t>(frameWidth) * 4);
        if (fitting >= static_cast<std::size_t>(frameHeight))
            return;
        rows = std::max(static_cast<int>(fitting), 2 * reach + 2);
        rows = std::min(rows - (height - rows) % 2, height); // odd exactly when the height is
        step = std::max(rows - 2 * reach, 1);
        count = 1 + (height - rows + step - 1) / step;
    }

    constexpr int Rows() const noexcept { return rows; } // of each band
    constexpr int Reach() const noexcept { return reach; }
    constexpr int Count() const noexcept { return count; }
    constexpr Band At(int index) const noexcept
    {
        const bool last = index + 1 == count;
        return {First(index), index == 0 ? 0 : First(index) + reach, last ? height : First(index + 1) + reach};
    }

private:
    constexpr int First(int index) const noexcept { return std::min(index * step, height - rows); }

    int height, reach, rows;
    int step = 1, count = 1;
};

} // namespace vixahost::media
