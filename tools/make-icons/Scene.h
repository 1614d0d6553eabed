// The scene that every icon shows: a red-roofed house on a green hill below a blue sky with a sun.
#pragma once

#include "tools/make-icons/Picture.h"

namespace vixa::icons {

inline constexpr int iconWidth = 36;
inline constexpr int iconHeight = 34;

// The scene at `scale` pixels per icon pixel, with `margin` more pixels on each side, so that what a filter does to the
// outermost pixels can be cut off.
Picture PaintScene(int scale, int margin);

} // namespace vixa::icons
