// A frame made to fit a window.
#pragma once

#include <cstdint>
#include <span>

namespace vixahost::browse {

// Where a picture of one size lies in a pane of another: whole, centred, in its own proportions.
struct Placement
{
    int left = 0, top = 0, width = 0, height = 0;
};

// `atMost` limits the enlargement: 1 shows a small picture in its own size. The result is at least one pixel wide and
// high, and empty when one of the sizes is.
Placement Fit(int width, int height, int paneWidth, int paneHeight, double atMost);

// Where it lies enlarged or reduced by `factor`, the point at these shares of its width and height in the pane's
// middle; along an axis on which it fits into the pane it is centred.
struct Zoom
{
    double factor, centreX, centreY;
};
Placement Zoomed(int width, int height, int paneWidth, int paneHeight, const Zoom& zoom);

// A frame of 32-bit pixels, rows bottom-up without padding.
struct FrameView
{
    std::span<const std::uint8_t> bytes;
    int width = 0, height = 0;
};

// Pixels of the pane, 32-bit, rows top-down.
struct PaneView
{
    std::uint32_t* pixels = nullptr;
    int width = 0, height = 0;
};

// Draws the columns [begin, end) of the pane that lie on the placed picture. Reduced, every pixel is the mean of up to
// three by three spread over its area; enlarged, the nearest is taken, so that pixels can be seen as such.
void DrawFrame(const FrameView& frame, const Placement& place, int begin, int end, const PaneView& pane);

} // namespace vixahost::browse
